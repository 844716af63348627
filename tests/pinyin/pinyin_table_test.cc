// The generated syllable table files a character under every reading it has:
// both readings of the common two-reading characters (from the dictionary
// behind Unihan's kXHC1983), where the converters show only the last.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "common/pinyin_table.h"
// The committed, generated data, compiled into this test as well: the
// library keeps its copy hidden.
#include "common/pinyin_table.cc"

namespace {

using tessel::pinyin_internal::kPinyinSyllables;

bool RowHas(const char* name, char16_t c) {
  for (const auto& row : kPinyinSyllables) {
    if (std::strcmp(row.name, name) == 0) return std::u16string(row.characters).find(c) != std::u16string::npos;
  }
  ADD_FAILURE() << "no row " << name;
  return false;
}

TEST(PinyinTable, ListsEveryReadingOfMultiReadingCharacters) {
  const struct {
    char16_t character;
    const char* readings[2];
  } kCharacters[] = {
      {u'行', {"Hang", "Xing"}}, {u'长', {"Chang", "Zhang"}}, {u'乐', {"Le", "Yue"}},
      {u'的', {"De", "Di"}},     {u'都', {"Dou", "Du"}},      {u'和', {"He", "Huo"}},
  };
  for (const auto& entry : kCharacters) {
    for (const char* reading : entry.readings) {
      EXPECT_TRUE(RowHas(reading, entry.character)) << reading;
    }
  }
}

}  // namespace
