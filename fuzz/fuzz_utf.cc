// Checks the UTF-8/UTF-16 conversions on arbitrary input: the replacing
// conversions always give well-formed output (UTF-16 without unpaired
// surrogates, UTF-8 that the strict s2ws accepts), converting their output
// back reproduces it, and the buffer form agrees with the string form; the
// strict s2ws/ws2s either throw std::range_error or round-trip exactly.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/string_utils.h"
#include "common/string_utils_win.h"

namespace {

using tessel::StringUtils;
using tessel::StringUtilsWin;

bool WellFormedUtf16(const std::wstring& text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const uint32_t unit = static_cast<uint32_t>(text[i]);
    if (unit > 0xFFFF) return false;
    if (unit >= 0xDC00 && unit <= 0xDFFF) return false;
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      if (i + 1 == text.size()) return false;
      const uint32_t next = static_cast<uint32_t>(text[++i]);
      if (next < 0xDC00 || next > 0xDFFF) return false;
    }
  }
  return true;
}

void CheckUtf8Input(const std::string& bytes) {
  std::string text = bytes;
  text.resize(strnlen(text.c_str(), text.size()));
  std::wstring wide;
  if (!StringUtilsWin::utf8ToUnicode(text.c_str(), wide)) abort();
  if (!WellFormedUtf16(wide)) abort();

  std::vector<wchar_t> buffer(wide.size() + 1);
  if (!StringUtilsWin::utf8ToUnicode(text.c_str(), buffer.data(), static_cast<int>(buffer.size()))) {
    abort();
  }
  if (std::wstring(buffer.data()) != wide) abort();
  if (!wide.empty() &&
      StringUtilsWin::utf8ToUnicode(text.c_str(), buffer.data(), static_cast<int>(wide.size()))) {
    abort();  // one unit short of the terminating NUL
  }

  std::string utf8;
  if (!StringUtilsWin::unicodeToUtf8(wide.c_str(), utf8)) abort();
  std::wstring again;
  if (!StringUtilsWin::utf8ToUnicode(utf8.c_str(), again) || again != wide) abort();
  (void)StringUtils::s2ws(utf8);  // well-formed by construction: must not throw

  try {
    std::wstring strict = StringUtils::s2ws(bytes);
    if (StringUtils::ws2s(strict) != bytes) abort();
  } catch (const std::range_error&) {
  }
}

void CheckWideInput(const uint8_t* data, size_t size) {
  std::wstring wide;
  for (size_t i = 0; i + 3 < size; i += 4) {
    uint32_t value = data[i] | data[i + 1] << 8 | data[i + 2] << 16 | uint32_t{data[i + 3]} << 24;
    wide.push_back(static_cast<wchar_t>(value % 0x120000));
  }
  std::string utf8;
  if (!StringUtilsWin::unicodeToUtf8(wide.c_str(), utf8)) abort();
  (void)StringUtils::s2ws(utf8);  // replacement output is always well-formed UTF-8

  try {
    std::string strict = StringUtils::ws2s(wide);
    if (StringUtils::s2ws(strict) != wide) abort();
  } catch (const std::range_error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CheckUtf8Input(std::string(reinterpret_cast<const char*>(data), size));
  CheckWideInput(data, size);
  return 0;
}
