// Internal to the library (not installed, not part of the interface): finds
// the positional printf placeholders that I18nUtils::formatMatch fills. A
// placeholder is "%", any minus signs, flags from "+# 0", width digits, an
// optional point and precision digits, a length modifier ("j", "z", "t", "L",
// or up to two of "h"/"l"), a conversion from "csdioxXufFeEaAgGp" and one or
// more position digits. No placeholder contains a second "%", so the text is
// scanned left to right, each "%" either starting one or not. Pure functions;
// thread-safe.
#ifndef TESSEL_I18N_PLACEHOLDER_SCAN_H_
#define TESSEL_I18N_PLACEHOLDER_SCAN_H_

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace I18N {
namespace placeholder {

struct Match {
  size_t begin;            // offset of the "%"
  size_t widthBegin;       // offset of the width digits (may be empty)
  size_t precisionBegin;   // offset of the "." of the precision, or lengthBegin
  size_t lengthBegin;      // offset of the length modifier (may be empty)
  size_t lengthSize;       // 0, 1 or 2
  size_t conversion;       // offset of the conversion character
  size_t positionSize;     // number of position digits, which end the match
  size_t end() const { return conversion + 1 + positionSize; }
};

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

inline bool isOneOf(const char* set, char c) {
  return c != '\0' && std::strchr(set, c) != nullptr;
}

// Recognises a placeholder starting at text[at] (which must be "%").
inline bool matchAt(std::string_view text, size_t at, Match& match) {
  const size_t n = text.size();
  size_t p = at + 1;
  auto skip = [&](auto accept) {
    while (p < n && accept(text[p])) ++p;
  };
  skip([](char c) { return c == '-'; });
  skip([](char c) { return isOneOf("+# 0", c); });
  match.widthBegin = p;
  skip(isDigit);
  match.precisionBegin = p;
  if (p < n && text[p] == '.') ++p;
  skip(isDigit);
  match.lengthBegin = p;
  if (p < n && isOneOf("jztL", text[p])) {
    ++p;
  } else {
    while (p < n && p - match.lengthBegin < 2 && (text[p] == 'h' || text[p] == 'l')) ++p;
  }
  match.lengthSize = p - match.lengthBegin;
  if (p >= n || !isOneOf("csdioxXufFeEaAgGp", text[p])) return false;
  match.conversion = p++;
  const size_t digits = p;
  skip(isDigit);
  if (p == digits) return false;
  match.begin = at;
  match.positionSize = p - digits;
  return true;
}

// Every placeholder of the text, left to right, none overlapping.
inline std::vector<Match> scan(std::string_view text) {
  std::vector<Match> found;
  size_t at = text.find('%');
  while (at != std::string_view::npos) {
    Match match;
    if (matchAt(text, at, match)) {
      found.push_back(match);
      at = text.find('%', match.end());
    } else {
      at = text.find('%', at + 1);
    }
  }
  return found;
}

}  // namespace placeholder
}  // namespace I18N

#endif  // TESSEL_I18N_PLACEHOLDER_SCAN_H_
