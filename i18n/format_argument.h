// An argument of the positional formatter that remembers what kind of value
// it is, so that a format string taken from a translation can fill a
// placeholder only with an argument its conversion fits. The template
// I18nUtils::formatMatch builds these from its arguments; they refer to the
// strings passed without owning them, so they live only for one call. Plain
// values, safe to share between threads.
#ifndef TESSEL_I18N_FORMAT_ARGUMENT_H_
#define TESSEL_I18N_FORMAT_ARGUMENT_H_

#include <cstddef>
#include <string>
#include <type_traits>

#include "common/tessel_export.h"

namespace I18N {

class FormatArgument {
 public:
  enum class Kind : unsigned char { kInteger, kReal, kString, kWideString, kPointer };

  // Integers of any width (bool and char included) and enumerations become
  // kInteger; float, double and long double become kReal (as a double);
  // char pointers, char arrays and std::string kString; wchar_t pointers and
  // arrays kWideString; any other object pointer and nullptr kPointer. Other
  // types do not compile.
  template <typename T>
  FormatArgument(const T& value) noexcept {  // NOLINT: implicit by design
    using V = std::decay_t<T>;
    if constexpr (std::is_integral_v<V> || std::is_enum_v<V>) {
      kind_ = Kind::kInteger;
      integer_ = static_cast<long long>(value);
    } else if constexpr (std::is_floating_point_v<V>) {
      kind_ = Kind::kReal;
      real_ = static_cast<double>(value);
    } else if constexpr (std::is_same_v<V, std::string>) {
      kind_ = Kind::kString;
      pointer_ = value.c_str();
    } else if constexpr (std::is_null_pointer_v<V>) {
      kind_ = Kind::kPointer;
      pointer_ = nullptr;
    } else {
      static_assert(std::is_pointer_v<V> && !std::is_function_v<std::remove_pointer_t<V>>,
                    "formatMatch takes numbers, strings and data pointers");
      using Pointee = std::remove_cv_t<std::remove_pointer_t<V>>;
      kind_ = std::is_same_v<Pointee, char>      ? Kind::kString
              : std::is_same_v<Pointee, wchar_t> ? Kind::kWideString
                                                 : Kind::kPointer;
      pointer_ = const_cast<const void*>(static_cast<const volatile void*>(value));
    }
  }

  Kind kind() const { return kind_; }
  // Meaningful for the kind named only.
  long long integer() const { return integer_; }
  double real() const { return real_; }
  const void* pointer() const { return pointer_; }

 private:
  Kind kind_;
  union {
    long long integer_;
    double real_;
    const void* pointer_;
  };
};

// The formatter behind the template I18nUtils::formatMatch: fills the
// positional placeholders of format as the variadic formatMatch would, the
// arguments taken in the same order, except that an argument fills a
// placeholder only when its kind fits the placeholder's conversion (integers
// for "diouxXc" with any length modifier, converted to the type the modifier
// names; reals for "aAeEfFgG"; kString for "%s"; kWideString for "%ls"; any
// pointer or string for "%p"). A placeholder without a fitting argument, or
// past the last one, stays as written; an argument that does not fit is
// still used up. arguments may be null when count is 0. Never reads past
// arguments[count - 1]. Thread-safe.
TESSEL_API std::string formatMatchArguments(const char* format, const FormatArgument* arguments,
                                            size_t count);

}  // namespace I18N

#endif  // TESSEL_I18N_FORMAT_ARGUMENT_H_
