// I18nUtils::formatMatch: fills positional printf placeholders.
#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "i18n/i18n_utils.h"
#include "i18n/placeholder_scan.h"

namespace I18N {

namespace {

constexpr size_t kMaxValueBytes = 102397;
constexpr size_t kStackValueBytes = 256;

// The first placeholder of a position decides how its argument is formatted.
struct Record {
  std::string directive;  // what snprintf gets: "%", flags, width, precision, kept length, conversion
  std::string length;    // the length modifier as written
  char conversion;
  std::string position;  // the position digits as written
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

bool isIntegerConversion(char c) { return placeholder::isOneOf("diouxX", c); }

// The length modifier handed on to snprintf: only those that the argument
// read for it matches. "j", "z", "t" and "L" (and mixed "hl"/"lh") read an int
// or a double like no modifier, so they are dropped rather than let snprintf
// read a wider type than was passed.
std::string keptLength(const std::string& length, char conversion) {
  if (isIntegerConversion(conversion)) {
    return length == "hh" || length == "h" || length == "l" || length == "ll" ? length : "";
  }
  if (conversion == 'c' || conversion == 's') return length == "l" ? length : "";
  return "";
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

std::string formatInteger(const Record& record, va_list* args) {
  if (record.length == "l") return formatValue(record.directive, va_arg(*args, long));
  if (record.length == "ll") return formatValue(record.directive, va_arg(*args, long long));
  const int value = va_arg(*args, int);
  if (record.length == "hh") return formatValue(record.directive, int(static_cast<unsigned char>(value)));
  if (record.length == "h") return formatValue(record.directive, int(static_cast<unsigned short>(value)));
  return formatValue(record.directive, value);
}

std::string formatArgument(const Record& record, va_list* args) {
  const char c = record.conversion;
  if (isIntegerConversion(c)) return formatInteger(record, args);
  if (c == 'c') {
    const int value = va_arg(*args, int);
    if (record.length == "l") {
      using WideUnit = std::make_unsigned_t<wchar_t>;
      return formatValue(record.directive, static_cast<wint_t>(static_cast<WideUnit>(value)));
    }
    return formatValue(record.directive, int(static_cast<char>(value)));
  }
  if (c == 's') {
    if (record.length == "l") return formatValue(record.directive, va_arg(*args, const wchar_t*));
    return formatValue(record.directive, va_arg(*args, const char*));
  }
  if (c == 'p') return formatValue(record.directive, va_arg(*args, void*));
  return formatValue(record.directive, va_arg(*args, double));
}

Record recordOf(std::string_view text, const placeholder::Match& match) {
  Record record;
  record.length = std::string(text.substr(match.lengthBegin, match.lengthSize));
  record.conversion = text[match.conversion];
  record.position = std::string(text.substr(match.conversion + 1, match.positionSize));
  record.directive = std::string(text.substr(match.begin, match.lengthBegin - match.begin));
  record.directive += keptLength(record.length, record.conversion);
  record.directive += record.conversion;
  return record;
}

}  // namespace

std::string I18nUtils::formatMatch(const char* format, ...) {
  if (format == nullptr) return std::string();
  const std::string_view text(format);
  const std::vector<placeholder::Match> found = placeholder::scan(text);

  std::map<int, Record> records;
  for (const placeholder::Match& match : found) {
    const int index = indexOf(text.substr(match.conversion + 1, match.positionSize));
    if (index >= 0 && records.count(index) == 0) records.emplace(index, recordOf(text, match));
  }

  // Positions 1..K are visited in order; an index without a placeholder reads
  // no argument, and positions above K are never filled.
  const int visited = static_cast<int>(records.size());
  std::map<int, std::string> values;
  va_list args;
  va_start(args, format);
  for (int index = 0; index < visited; ++index) {
    const auto record = records.find(index);
    if (record != records.end()) values[index] = formatArgument(record->second, &args);
  }
  va_end(args);

  // One pass over the format: inserted values are never searched again.
  std::string result;
  size_t copied = 0;
  for (const placeholder::Match& match : found) {
    const std::string_view digits = text.substr(match.conversion + 1, match.positionSize);
    const auto value = values.find(indexOf(digits));
    if (value == values.end() || records.at(value->first).position != digits) continue;
    result.append(text.substr(copied, match.begin - copied));
    result += value->second;
    copied = match.end();
  }
  result.append(text.substr(copied));
  return result;
}

}  // namespace I18N
