// Callbacks of the base library. A Closure (Callback<void()>) is a movable
// callable taking no arguments and returning nothing; it keeps callables of
// up to kInlineSize bytes inside itself, so posting the usual task costs no
// allocation, and larger ones on the heap. Bind makes a Closure from a
// function and all of its arguments; the closure owns the arguments (moved
// in when given as rvalues) and passes them to the function as lvalues each
// time it runs. Closures are plain values with no thread affinity.
#ifndef TESSEL_PLATFORM_BASE_CALLBACK_H_
#define TESSEL_PLATFORM_BASE_CALLBACK_H_

#include <cstddef>
#include <functional>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>

namespace base {

template <typename Signature>
class Callback;

template <>
class Callback<void()> {
 public:
  // Room for a std::function and a pointer, the largest task the library
  // posts, in a 48-byte closure.
  static constexpr std::size_t kInlineSize = 40;

  Callback() noexcept = default;
  Callback(std::nullptr_t) noexcept {}  // NOLINT: an empty callback
  // Takes `function` over. An empty std::function (or null pointer) gives an
  // empty callback.
  template <typename Function,
            typename = std::enable_if_t<!std::is_same_v<std::decay_t<Function>, Callback>>>
  Callback(Function&& function) {  // NOLINT: implicit, like std::function
    using Stored = std::decay_t<Function>;
    if constexpr (kMayBeEmpty<Stored>) {
      if (!function) return;
    }
    if constexpr (kStoredInline<Stored>) {
      ::new (static_cast<void*>(storage_)) Stored(std::forward<Function>(function));
      ops_ = &kInlineOps<Stored>;
    } else {
      ::new (static_cast<void*>(storage_)) Stored*(new Stored(std::forward<Function>(function)));
      ops_ = &kHeapOps<Stored>;
    }
  }
  Callback(Callback&& other) noexcept { TakeFrom(other); }
  Callback& operator=(Callback&& other) noexcept {
    if (this != &other) {
      Reset();
      TakeFrom(other);
    }
    return *this;
  }
  Callback(const Callback&) = delete;
  Callback& operator=(const Callback&) = delete;
  ~Callback() { Reset(); }

  explicit operator bool() const { return ops_ != nullptr; }
  // Runs the callable; the callback must not be empty.
  void operator()() { ops_->run(storage_); }
  void Run() { ops_->run(storage_); }

 private:
  struct Ops {
    void (*run)(void* storage);
    // Move-constructs the callable at `to` and destroys it at `from`.
    void (*relocate)(void* from, void* to);
    void (*destroy)(void* storage);
  };

  template <typename Stored>
  static constexpr bool kMayBeEmpty = std::is_pointer_v<Stored> ||
                                      std::is_member_pointer_v<Stored> ||
                                      std::is_same_v<Stored, std::function<void()>>;

  template <typename Stored>
  static constexpr bool kStoredInline = sizeof(Stored) <= kInlineSize &&
                                        alignof(Stored) <= alignof(std::max_align_t) &&
                                        std::is_nothrow_move_constructible_v<Stored>;

  template <typename Stored>
  static constexpr Ops kInlineOps = {
      [](void* storage) { (*static_cast<Stored*>(storage))(); },
      [](void* from, void* to) {
        ::new (to) Stored(std::move(*static_cast<Stored*>(from)));
        static_cast<Stored*>(from)->~Stored();
      },
      [](void* storage) { static_cast<Stored*>(storage)->~Stored(); },
  };

  template <typename Stored>
  static constexpr Ops kHeapOps = {
      [](void* storage) { (**static_cast<Stored**>(storage))(); },
      [](void* from, void* to) { ::new (to) Stored*(*static_cast<Stored**>(from)); },
      [](void* storage) { delete *static_cast<Stored**>(storage); },
  };

  void TakeFrom(Callback& other) noexcept {
    if (other.ops_ == nullptr) return;
    other.ops_->relocate(other.storage_, storage_);
    ops_ = other.ops_;
    other.ops_ = nullptr;
  }
  void Reset() noexcept {
    if (ops_ == nullptr) return;
    const Ops* ops = ops_;
    ops_ = nullptr;
    ops->destroy(storage_);
  }

  alignas(std::max_align_t) unsigned char storage_[kInlineSize];
  const Ops* ops_ = nullptr;
};

using Closure = Callback<void()>;

template <typename Function, typename... Args>
Closure Bind(Function function, Args&&... args) {
  return [function, bound = std::make_tuple(std::forward<Args>(args)...)]() mutable {
    std::apply(function, bound);
  };
}

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_CALLBACK_H_
