#include "common/string_utils_win.h"

#include <cstring>
#include <cwchar>
#include <new>

#include "platform/utf16_conversion.h"

namespace tessel {

StringUtilsWin::StringUtilsWin() = default;
StringUtilsWin::StringUtilsWin(const StringUtilsWin&) = default;
StringUtilsWin& StringUtilsWin::operator=(const StringUtilsWin&) = default;
StringUtilsWin::~StringUtilsWin() = default;

bool StringUtilsWin::unicodeToUtf8(const wchar_t* text, std::string& out) {
  if (text == nullptr) return false;
  try {
    tessel_platform::Utf16ToUtf8(text, std::wcslen(text), out);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

bool StringUtilsWin::utf8ToUnicode(const char* text, std::wstring& out) {
  if (text == nullptr) return false;
  try {
    tessel_platform::Utf8ToUtf16(text, std::strlen(text), out);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
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
