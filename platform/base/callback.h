// Callbacks of the base library: a Callback is a callable of a fixed
// signature, a Closure one that takes no arguments and returns nothing. Bind
// makes a Closure from a function and all of its arguments; the closure owns
// copies of the arguments (moved in when given as rvalues) and passes them to
// the function as lvalues each time it runs. Closures are plain values with no
// thread affinity.
#ifndef TESSEL_PLATFORM_BASE_CALLBACK_H_
#define TESSEL_PLATFORM_BASE_CALLBACK_H_

#include <functional>
#include <tuple>
#include <utility>

namespace base {

template <typename Signature>
using Callback = std::function<Signature>;
using Closure = Callback<void()>;

template <typename Function, typename... Args>
Closure Bind(Function function, Args&&... args) {
  return [function, bound = std::make_tuple(std::forward<Args>(args)...)]() mutable {
    std::apply(function, bound);
  };
}

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_CALLBACK_H_
