// The syllable table behind the pinyin converters, generated into
// pinyin_table.cc by tools/gen_pinyin_table.py from Unihan. Library-internal.
#ifndef TESSEL_COMMON_PINYIN_TABLE_H_
#define TESSEL_COMMON_PINYIN_TABLE_H_

#include <cstddef>

namespace tessel {
namespace pinyin_internal {

struct PinyinSyllable {
  const char* name;            // "Zhong": capital initial, no tone, "v" for "ü"
  const char16_t* characters;  // every character read so, NUL-terminated UTF-16
};

constexpr size_t kPinyinSyllableCount = 421;

// In alphabetical order of name; a character listed under several syllables
// is converted to the last of them.
extern const PinyinSyllable kPinyinSyllables[kPinyinSyllableCount];

}  // namespace pinyin_internal
}  // namespace tessel

#endif  // TESSEL_COMMON_PINYIN_TABLE_H_
