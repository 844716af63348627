// The string core of StringUtils. Every classification here is the ASCII
// one, independent of the process's locale, except where the stream-based
// conversions of string2Bool say otherwise.
#include "common/string_utils.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iomanip>
#include <limits>
#include <memory>
#include <stdexcept>

#include "common/date_time.h"
#include "platform/local_time.h"

namespace tessel {

namespace {

bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }
bool IsAsciiUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsAsciiLower(char c) { return c >= 'a' && c <= 'z'; }
bool IsWordByte(char c) {
  return IsAsciiDigit(c) || IsAsciiUpper(c) || IsAsciiLower(c) || c == '_';
}

// The shape shared by both halves of an e-mail address: one or more runs of
// word bytes joined by single bytes of `joiners`, e.g. \w+([-.]\w+)*.
// Sets *dot_joiner_seen when a "." joined two runs (the domain needs one).
bool IsJoinedWords(const char* begin, const char* end, const char* joiners,
                   bool* dot_joiner_seen) {
  bool after_word = false;
  for (const char* p = begin; p != end; ++p) {
    if (IsWordByte(*p)) {
      after_word = true;
    } else if (after_word && *p != '\0' && std::strchr(joiners, *p) != nullptr) {
      after_word = false;
      if (*p == '.') *dot_joiner_seen = true;
    } else {
      return false;
    }
  }
  return after_word;
}

// Runs vsnprintf the way a Windows _vsnprintf reports: a count that does not
// fit `size` is negative, one that fills it exactly (no room for the NUL) is
// the count itself. glibc's own -1 (a real error) is reported apart.
int FormatAttempt(char* buffer, size_t size, const char* format, va_list args,
                  bool* failed) {
  va_list copy;
  va_copy(copy, args);
  const int n = std::vsnprintf(buffer, size, format, copy);
  va_end(copy);
  *failed = n < 0;
  if (n >= 0 && static_cast<size_t>(n) > size) return -1;
  return n;
}

// Formats with a buffer that starts at twice the format's length and grows
// by |n - size + 1| after each attempt that did not fit.
std::string FormatWithGrowingBuffer(const char* format, va_list args) {
  size_t size = 2 * std::strlen(format);
  for (;;) {
    std::unique_ptr<char[]> buffer(new char[size == 0 ? 1 : size]);
    bool failed = false;
    const int n = FormatAttempt(buffer.get(), size, format, args, &failed);
    if (failed) return std::string();
    if (n >= 0 && static_cast<size_t>(n) < size) return std::string(buffer.get());
    // Truncated (negative): the size doubles; exactly filled: it becomes n + 1.
    const long long grow = static_cast<long long>(n) - static_cast<long long>(size) + 1;
    size += static_cast<size_t>(grow < 0 ? -grow : grow);
  }
}

}  // namespace

std::string StringUtils::intToString(const int& value, const unsigned int& width) {
  if (width == 0) return std::to_string(value);
  char width_text[16];
  std::snprintf(width_text, sizeof width_text, "%d", static_cast<int>(width));
  const std::string format = std::string(width < 10 ? "%0" : "%") + width_text + "d";
  return string_format(format.c_str(), value);
}

bool StringUtils::isNumberString(const std::string& text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (!IsAsciiDigit(c)) return false;
  }
  return true;
}

bool StringUtils::string2Bool(std::string text) {
  bool result = false;
  if (isNumberString(text)) {
    // Numeric bool extraction: 0 and 1 read, any other number fails (and
    // would set the value to true, hence the check of the stream).
    std::istringstream in(text);
    bool value = false;
    if (in >> value) result = value;
    return result;
  }
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  std::istringstream in(text);
  bool value = false;
  if (in >> std::boolalpha >> value) result = value;
  return result;
}

int StringUtils::stringToInt(const std::string& text, const int& default_value) {
  try {
    return std::stoi(text);
  } catch (const std::invalid_argument&) {
    return default_value;
  } catch (const std::out_of_range&) {
    return default_value;
  }
}

bool StringUtils::hasPrefix(std::string text, std::string prefix) {
  return prefix.size() <= text.size() && text.compare(0, prefix.size(), prefix) == 0;
}

bool StringUtils::hasSuffix(std::string text, std::string suffix) {
  return suffix.size() <= text.size() &&
         text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string& StringUtils::trim(std::string& text) {
  if (text.empty()) return text;
  text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
  for (char c : {' ', '\n', '\t'}) {
    const size_t keep = text.find_last_not_of(c);
    text.erase(keep == std::string::npos ? 0 : keep + 1);
  }
  return text;
}

std::string StringUtils::to_lowercase(std::string& text) {
  for (char& c : text) {
    if (IsAsciiUpper(c)) c = static_cast<char>(c + ('a' - 'A'));
  }
  return text;
}

std::string StringUtils::to_uppercase(const std::string& text) {
  std::string result(text);
  for (char& c : result) {
    if (IsAsciiLower(c)) c = static_cast<char>(c - ('a' - 'A'));
  }
  return result;
}

const std::string& StringUtils::replace_all_distinct(std::string& text,
                                                     const std::string& old_value,
                                                     const std::string& new_value) {
  if (old_value.empty()) return text;
  size_t found = text.find(old_value);
  if (found == std::string::npos) return text;
  // The search resumes after each inserted text, i.e. after the replaced
  // occurrence in the original: building a new string gives the same result
  // without shifting the tail once per replacement.
  std::string result;
  result.reserve(text.size());
  size_t from = 0;
  while (found != std::string::npos) {
    result.append(text, from, found - from);
    result += new_value;
    from = found + old_value.size();
    found = text.find(old_value, from);
  }
  result.append(text, from, std::string::npos);
  text.swap(result);
  return text;
}

std::vector<std::string> StringUtils::string_split(const std::string& text,
                                                   const std::string& separators) {
  bool is_separator[256] = {};
  for (char c : separators) is_separator[static_cast<unsigned char>(c)] = true;
  std::vector<std::string> pieces;
  const char* const data = text.data();
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (!is_separator[static_cast<unsigned char>(data[i])]) continue;
    if (i > start) pieces.emplace_back(data + start, i - start);
    start = i + 1;
  }
  if (text.size() > start) pieces.emplace_back(data + start, text.size() - start);
  return pieces;
}

std::string StringUtils::componentsJoinedByString(
    const std::vector<std::string>& components, const std::string& separator) {
  if (components.empty()) return std::string();
  size_t length = separator.size() * (components.size() - 1);
  for (const std::string& component : components) length += component.size();
  std::string joined;
  joined.reserve(length);
  joined += components.front();
  for (size_t i = 1; i < components.size(); ++i) {
    joined += separator;
    joined += components[i];
  }
  return joined;
}

std::string StringUtils::string_format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::string result = FormatWithGrowingBuffer(format, args);
  va_end(args);
  return result;
}

std::string StringUtils::getDate() {
  std::tm local{};
  tessel_platform::ToLocalTime(date::now_time_interval(), &local);
  return std::to_string(local.tm_year + 1900) + "-" + std::to_string(local.tm_mon + 1) +
         "-" + std::to_string(local.tm_mday);
}

void StringUtils::OuputDateFrom1979(std::ostringstream& out, long long seconds,
                                    const char* format) {
  if (format == nullptr) return;
  // The value passes through the clock's 100 ns ticks: in whole numbers a
  // round trip gives every second back, so all that remains of it is the
  // range, the seconds whose tick count fits 64 bits.
  constexpr long long kTicksPerSecond = 10000000;
  constexpr long long kMaxSeconds = std::numeric_limits<long long>::max() / kTicksPerSecond;
  if (seconds < -kMaxSeconds || seconds > kMaxSeconds) return;
  std::tm local{};
  if (!tessel_platform::ToLocalTime(seconds, &local)) return;
  out << std::put_time(&local, format);
}

std::string StringUtils::getEmailDomain(const std::string& address) {
  const size_t at = address.rfind('@');
  if (at == std::string::npos) return std::string();
  return address.substr(at + 1);
}

bool StringUtils::isValidEmail(const std::string& address) {
  // Neither half can hold "@", so the address has exactly one.
  const size_t at = address.find('@');
  if (at == std::string::npos) return false;
  const char* const begin = address.data();
  const char* const end = begin + address.size();
  bool local_dot = false;
  bool domain_dot = false;
  return IsJoinedWords(begin, begin + at, "-+.&", &local_dot) &&
         IsJoinedWords(begin + at + 1, end, "-.", &domain_dot) && domain_dot;
}

bool StringUtils::isValidMobile(const std::string& number) {
  if (number.size() != 11 || !isNumberString(number) || number[0] != '1') return false;
  const char second = number[1];
  return second == '3' || second == '4' || second == '5' || second == '7' || second == '8';
}

}  // namespace tessel
