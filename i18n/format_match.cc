// I18nUtils::formatMatch and formatMatchArguments: fill positional printf
// placeholders, from C varargs or from arguments that know their type.
#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "i18n/format_argument.h"
#include "i18n/i18n_utils.h"
#include "i18n/placeholder_scan.h"

namespace I18N {

namespace {

constexpr size_t kMaxValueBytes = 102397;
constexpr size_t kStackValueBytes = 256;

// The C type the variadic form reads for a placeholder.
enum class Slot { kInt, kLong, kLongLong, kDouble, kString, kWideString, kPointer };

// One value read for a slot.
union SlotValue {
  long long integer;
  double real;
  const void* pointer;
};

// The first placeholder of a position decides how its argument is formatted.
struct Record {
  std::string directive;       // what snprintf gets: "%", flags, clamped width and
                               // precision, kept length, conversion
  std::string_view length;     // the length modifier as written
  char conversion;
  std::string_view position;   // the position digits as written
  Slot slot;                   // what the variadic form reads
};

// The position digits as an argument index; -1 for position 0 and for
// positions beyond the int range, which are left in the text.
int indexOf(std::string_view digits) {
  long long value = 0;
  for (char c : digits) {
    value = value * 10 + (c - '0');
    if (value > INT_MAX) return -1;
  }
  return static_cast<int>(value) - 1;
}

// Width or precision digits, at most kMaxValueBytes: a larger one could only
// add padding or digits beyond the cut, and would cost its full length in
// snprintf.
std::string clampedNumber(std::string_view digits) {
  if (digits.empty()) return std::string();
  size_t value = 0;
  for (char c : digits) value = std::min(value * 10 + static_cast<size_t>(c - '0'), kMaxValueBytes);
  return std::to_string(value);
}

// Flags, width and precision of a placeholder as snprintf gets them.
std::string clampedPrefix(std::string_view text, const placeholder::Match& match) {
  const std::string_view width = text.substr(match.widthBegin, match.precisionBegin - match.widthBegin);
  const bool hasPrecision = match.precisionBegin < match.lengthBegin;
  const std::string_view precision =
      hasPrecision ? text.substr(match.precisionBegin + 1, match.lengthBegin - match.precisionBegin - 1)
                   : std::string_view();
  constexpr size_t kShortDigits = 5;  // below kMaxValueBytes whatever they are
  if (width.size() <= kShortDigits && precision.size() <= kShortDigits) {
    return std::string(text.substr(match.begin, match.lengthBegin - match.begin));
  }
  std::string prefix(text.substr(match.begin, match.widthBegin - match.begin));
  prefix += clampedNumber(width);
  if (hasPrecision) prefix += '.' + clampedNumber(precision);
  return prefix;
}

bool isIntegerConversion(char c) { return placeholder::isOneOf("diouxX", c); }

// The length modifier handed on to snprintf: only those that the argument
// read for it matches. "j", "z", "t" and "L" (and mixed "hl"/"lh") read an int
// or a double like no modifier, so they are dropped rather than let snprintf
// read a wider type than was passed.
std::string_view keptLength(std::string_view length, char conversion) {
  if (isIntegerConversion(conversion)) {
    return length == "hh" || length == "h" || length == "l" || length == "ll" ? length : "";
  }
  if (conversion == 'c' || conversion == 's') return length == "l" ? length : "";
  return "";
}

Slot slotOf(std::string_view length, char conversion) {
  if (isIntegerConversion(conversion)) {
    if (length == "l") return Slot::kLong;
    if (length == "ll") return Slot::kLongLong;
    return Slot::kInt;
  }
  if (conversion == 'c') return Slot::kInt;
  if (conversion == 's') return length == "l" ? Slot::kWideString : Slot::kString;
  if (conversion == 'p') return Slot::kPointer;
  return Slot::kDouble;
}

template <typename T>
std::string formatValue(const std::string& directive, T value) {
  char small[kStackValueBytes];
  const int needed = std::snprintf(small, sizeof small, directive.c_str(), value);
  if (needed < 0) return std::string();
  if (static_cast<size_t>(needed) < sizeof small) return std::string(small, needed);
  std::vector<char> large(std::min(static_cast<size_t>(needed), kMaxValueBytes) + 1);
  std::snprintf(large.data(), large.size(), directive.c_str(), value);
  return std::string(large.data(), large.size() - 1);
}

// An int read for "%c", "%hhd" or "%hd", narrowed as the conversion says.
std::string formatNarrowInt(const Record& record, int value) {
  if (record.conversion == 'c') {
    if (record.length == "l") {
      using WideUnit = std::make_unsigned_t<wchar_t>;
      return formatValue(record.directive, static_cast<wint_t>(static_cast<WideUnit>(value)));
    }
    return formatValue(record.directive, int(static_cast<char>(value)));
  }
  if (record.length == "hh") return formatValue(record.directive, int(static_cast<unsigned char>(value)));
  if (record.length == "h") return formatValue(record.directive, int(static_cast<unsigned short>(value)));
  return formatValue(record.directive, value);
}

std::string formatSlot(const Record& record, SlotValue value) {
  switch (record.slot) {
    case Slot::kInt: return formatNarrowInt(record, static_cast<int>(value.integer));
    case Slot::kLong: return formatValue(record.directive, static_cast<long>(value.integer));
    case Slot::kLongLong: return formatValue(record.directive, value.integer);
    case Slot::kDouble: return formatValue(record.directive, value.real);
    case Slot::kString: return formatValue(record.directive, static_cast<const char*>(value.pointer));
    case Slot::kWideString:
      return formatValue(record.directive, static_cast<const wchar_t*>(value.pointer));
    case Slot::kPointer: return formatValue(record.directive, value.pointer);
  }
  return std::string();
}

Record recordOf(std::string_view text, const placeholder::Match& match) {
  Record record;
  record.length = text.substr(match.lengthBegin, match.lengthSize);
  record.conversion = text[match.conversion];
  record.position = text.substr(match.conversion + 1, match.positionSize);
  record.slot = slotOf(record.length, record.conversion);
  record.directive = clampedPrefix(text, match);
  record.directive += keptLength(record.length, record.conversion);
  record.directive += record.conversion;
  return record;
}

// The common work of both forms. nextValue(record) is asked once per visited
// position, in order, for the text of the next argument formatted by the
// record; it returns nothing to leave that position's placeholders as written.
template <typename NextValue>
std::string fillPlaceholders(const char* format, NextValue&& nextValue) {
  if (format == nullptr) return std::string();
  const std::string_view text(format);
  const std::vector<placeholder::Match> found = placeholder::scan(text);

  // Each position's first placeholder, in the order of the positions.
  std::vector<std::pair<int, size_t>> firsts;
  for (size_t i = 0; i < found.size(); ++i) {
    const int index = indexOf(text.substr(found[i].conversion + 1, found[i].positionSize));
    if (index >= 0) firsts.emplace_back(index, i);
  }
  std::stable_sort(firsts.begin(), firsts.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  firsts.erase(std::unique(firsts.begin(), firsts.end(),
                           [](const auto& a, const auto& b) { return a.first == b.first; }),
               firsts.end());

  // Positions 1..K are visited in order; an index without a placeholder reads
  // no argument, and positions above K are never filled.
  const size_t visited = firsts.size();
  std::vector<std::optional<std::string>> values(visited);
  std::vector<std::string_view> digitsOf(visited);
  for (const auto& [index, first] : firsts) {
    if (static_cast<size_t>(index) >= visited) break;
    const Record record = recordOf(text, found[first]);
    digitsOf[index] = record.position;
    values[index] = nextValue(record);
  }

  // One pass over the format: inserted values are never searched again.
  std::string result;
  size_t copied = 0;
  for (const placeholder::Match& match : found) {
    const std::string_view digits = text.substr(match.conversion + 1, match.positionSize);
    const int index = indexOf(digits);
    if (index < 0 || static_cast<size_t>(index) >= visited || !values[index] || digitsOf[index] != digits) {
      continue;
    }
    result.append(text.substr(copied, match.begin - copied));
    result += *values[index];
    copied = match.end();
  }
  result.append(text.substr(copied));
  return result;
}

SlotValue readSlot(Slot slot, va_list* args) {
  SlotValue value{};
  switch (slot) {
    case Slot::kInt: value.integer = va_arg(*args, int); break;
    case Slot::kLong: value.integer = va_arg(*args, long); break;
    case Slot::kLongLong: value.integer = va_arg(*args, long long); break;
    case Slot::kDouble: value.real = va_arg(*args, double); break;
    case Slot::kString: value.pointer = va_arg(*args, const char*); break;
    case Slot::kWideString: value.pointer = va_arg(*args, const wchar_t*); break;
    case Slot::kPointer: value.pointer = va_arg(*args, const void*); break;
  }
  return value;
}

// The argument's value for the slot, or nothing when its kind does not fit.
std::optional<SlotValue> fittingValue(const FormatArgument& argument, Slot slot) {
  using Kind = FormatArgument::Kind;
  SlotValue value{};
  switch (argument.kind()) {
    case Kind::kInteger:
      if (slot != Slot::kInt && slot != Slot::kLong && slot != Slot::kLongLong) return std::nullopt;
      value.integer = argument.integer();
      return value;
    case Kind::kReal:
      if (slot != Slot::kDouble) return std::nullopt;
      value.real = argument.real();
      return value;
    case Kind::kString:
    case Kind::kWideString:
    case Kind::kPointer: {
      const Slot own = argument.kind() == Kind::kString       ? Slot::kString
                       : argument.kind() == Kind::kWideString ? Slot::kWideString
                                                              : Slot::kPointer;
      if (slot != own && slot != Slot::kPointer) return std::nullopt;
      value.pointer = argument.pointer();
      return value;
    }
  }
  return std::nullopt;
}

}  // namespace

std::string I18nUtils::formatMatch(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::string result = fillPlaceholders(format, [&args](const Record& record) {
    return std::optional<std::string>(formatSlot(record, readSlot(record.slot, &args)));
  });
  va_end(args);
  return result;
}

std::string formatMatchArguments(const char* format, const FormatArgument* arguments, size_t count) {
  size_t next = 0;
  return fillPlaceholders(format, [&](const Record& record) -> std::optional<std::string> {
    if (next == count) return std::nullopt;
    const std::optional<SlotValue> value = fittingValue(arguments[next++], record.slot);
    if (!value) return std::nullopt;
    return formatSlot(record, *value);
  });
}

}  // namespace I18N
