// StringUtilsWin converts between UTF-8 byte strings and UTF-16 wide strings
// at the boundary with wide-character system services. Wide strings carry
// UTF-16 code units, one per wchar_t element (a character beyond U+FFFF takes
// two elements, a surrogate pair). Conversion never rejects text: malformed
// UTF-8 and unpaired surrogates become U+FFFD. All operations are static,
// keep no state and may run on any thread at once.
#ifndef TESSEL_COMMON_STRING_UTILS_WIN_H_
#define TESSEL_COMMON_STRING_UTILS_WIN_H_

#include <string>

#include "common/tessel_export.h"

namespace tessel {

class TESSEL_API StringUtilsWin {
 public:
  StringUtilsWin();
  StringUtilsWin(const StringUtilsWin& other);
  StringUtilsWin& operator=(const StringUtilsWin& other);
  virtual ~StringUtilsWin();

  // Replaces `out` with the UTF-8 form of the NUL-terminated UTF-16 `text`
  // and returns true. Each unpaired surrogate, and each element above 0xFFFF,
  // becomes U+FFFD. A null `text` (or running out of memory) returns false
  // and leaves `out` unchanged.
  static bool unicodeToUtf8(const wchar_t* text, std::string& out);

  // Replaces `out` with the UTF-16 form of the NUL-terminated UTF-8 `text`
  // and returns true. Each maximal subpart of an ill-formed sequence becomes
  // one U+FFFD. A null `text` (or running out of memory) returns false and
  // leaves `out` unchanged.
  static bool utf8ToUnicode(const char* text, std::wstring& out);

  // Writes the UTF-16 form of the NUL-terminated UTF-8 `text`, with its
  // terminating NUL, into `buffer`, which holds `capacity` elements, and
  // returns true. A capacity of 0 only measures: nothing is written and the
  // result is true. Returns false, writing nothing, for a null `text`, a
  // negative capacity, a null `buffer` with a positive capacity, or a capacity
  // too small for the converted text and its NUL.
  static bool utf8ToUnicode(const char* text, wchar_t* buffer, int capacity);
};

}  // namespace tessel

#endif  // TESSEL_COMMON_STRING_UTILS_WIN_H_
