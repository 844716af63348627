// Conversion of Chinese text to toneless pinyin: each character becomes its
// syllable with a capital initial ("中国" gives "ZhongGuo") or only that
// initial ("ZG"). A process-wide character index, built on first use, serves
// both converters. All three functions may be called from any threads at
// once, clearCache() included.
#ifndef TESSEL_COMMON_PINYIN_H_
#define TESSEL_COMMON_PINYIN_H_

#include <string>

#include "common/tessel_export.h"

// Returns the pinyin of `text` (UTF-16 code units; not modified). Per unit:
// a code below 255 is appended as one byte (ASCII passes through; 0x80 to
// 0xFE come out as single raw bytes, not UTF-8); a code outside the range
// the syllable table covers (U+3007 to U+9FED with the current table, so
// "ÿ", "€", "，" and surrogates are outside) is dropped; a code inside it is
// replaced by its syllable, or by "#" when no syllable lists it. A character with several readings gets the
// last of them in the table's alphabetical order ("行" gives "Xing"). No
// separators are added: "中a国" gives "ZhongaGuo". Builds the index if absent.
TESSEL_API std::string pinYinConvert(std::wstring& text);

// As pinYinConvert, but each syllable contributes only its first letter, an
// upper-case ASCII letter ("北京" gives "BJ").
TESSEL_API std::string jianPinConvert(std::wstring& text);

// Frees the character index; the next conversion builds it again.
// Conversions running meanwhile finish with the index they started with.
TESSEL_API void clearCache();

#endif  // TESSEL_COMMON_PINYIN_H_
