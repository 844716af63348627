#include "common/string_utils_win.h"

#include <cstring>
#include <new>
#include <string>

#include "platform/utf16_conversion.h"

namespace tessel {
namespace {

// One string-form conversion of a NUL-terminated text. Running out of memory
// is the only way it can fail, and it leaves `out` unchanged.
template <typename Char, typename Out>
bool ConvertInto(const Char* text, Out& out, void (*convert)(const Char*, std::size_t, Out&)) {
  if (text == nullptr) return false;
  try {
    convert(text, std::char_traits<Char>::length(text), out);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace

StringUtilsWin::StringUtilsWin() = default;
StringUtilsWin::StringUtilsWin(const StringUtilsWin&) = default;
StringUtilsWin& StringUtilsWin::operator=(const StringUtilsWin&) = default;
StringUtilsWin::~StringUtilsWin() = default;

bool StringUtilsWin::unicodeToUtf8(const wchar_t* text, std::string& out) {
  return ConvertInto(text, out, tessel_platform::Utf16ToUtf8);
}

bool StringUtilsWin::utf8ToUnicode(const char* text, std::wstring& out) {
  return ConvertInto(text, out, tessel_platform::Utf8ToUtf16);
}

bool StringUtilsWin::utf8ToUnicode(const char* text, wchar_t* buffer, int capacity) {
  if (text == nullptr || capacity < 0) return false;
  if (capacity == 0) return true;
  if (buffer == nullptr) return false;
  const std::size_t length = std::strlen(text);
  const std::size_t room = static_cast<std::size_t>(capacity);
  if (length >= room && tessel_platform::Utf16LengthOfUtf8(text, length) >= room) {
    return false;
  }
  buffer[tessel_platform::Utf8ToUtf16(text, length, buffer)] = L'\0';
  return true;
}

}  // namespace tessel
