// Checks pinYinConvert and jianPinConvert on arbitrary UTF-16 code units:
// no crash, the text is not modified, each converter maps unit by unit (the
// whole text converts to the concatenation of its units' conversions), a unit
// below 255 becomes exactly that byte, and an initial is one byte at most.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "common/pinyin.h"

namespace {

template <typename Convert>
void CheckUnitByUnit(std::wstring& text, Convert convert, bool initials) {
  const std::wstring original = text;
  std::string whole = convert(text);
  if (text != original) abort();
  std::string joined;
  for (wchar_t unit : original) {
    std::wstring one(1, unit);
    std::string piece = convert(one);
    if (unit < 255 && piece != std::string(1, static_cast<char>(unit))) abort();
    if (initials && piece.size() > 1) abort();
    joined += piece;
  }
  if (joined != whole) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 512) return 0;
  std::wstring text;
  for (size_t i = 0; i + 1 < size; i += 2) {
    text.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));
  }
  if (size % 2 == 1 && data[size - 1] == 0xFF) clearCache();
  CheckUnitByUnit(text, pinYinConvert, false);
  CheckUnitByUnit(text, jianPinConvert, true);
  return 0;
}
