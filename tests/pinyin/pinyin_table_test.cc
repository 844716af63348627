// The generated syllable table: the 421 names in their fixed order and rows
// that carry the readings the converters' examples rely on.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>

#include "common/pinyin_table.h"
// The committed, generated data, compiled into this test as well: the
// library keeps its copy hidden.
#include "common/pinyin_table.cc"

namespace {

using tessel::pinyin_internal::kPinyinSyllableCount;
using tessel::pinyin_internal::kPinyinSyllables;

TEST(PinyinTable, Has421CapitalisedNamesInAlphabeticalOrder) {
  ASSERT_EQ(std::size(kPinyinSyllables), 421u);
  for (size_t i = 0; i < kPinyinSyllableCount; ++i) {
    const std::string name = kPinyinSyllables[i].name;
    ASSERT_FALSE(name.empty());
    EXPECT_TRUE(name[0] >= 'A' && name[0] <= 'Z') << name;
    EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz", 1), std::string::npos) << name;
    if (i > 0) {
      EXPECT_LT(std::strcmp(kPinyinSyllables[i - 1].name, name.c_str()), 0) << name;
    }
  }
  // Landmarks of the fixed order.
  EXPECT_STREQ(kPinyinSyllables[0].name, "A");
  EXPECT_STREQ(kPinyinSyllables[122].name, "Hm");
  EXPECT_STREQ(kPinyinSyllables[193].name, "Lve");
  EXPECT_STREQ(kPinyinSyllables[374].name, "Yi");
  EXPECT_STREQ(kPinyinSyllables[403].name, "Zhong");
  EXPECT_STREQ(kPinyinSyllables[420].name, "Zuo");
}

bool RowHas(const char* name, char16_t c) {
  for (const auto& row : kPinyinSyllables) {
    if (std::strcmp(row.name, name) == 0) return std::u16string(row.characters).find(c) != std::u16string::npos;
  }
  ADD_FAILURE() << "no row " << name;
  return false;
}

TEST(PinyinTable, ListsEveryReadingOfMultiReadingCharacters) {
  EXPECT_TRUE(RowHas("Hang", u'行'));
  EXPECT_TRUE(RowHas("Xing", u'行'));
  EXPECT_TRUE(RowHas("Chang", u'长'));
  EXPECT_TRUE(RowHas("Zhang", u'长'));
  EXPECT_TRUE(RowHas("Le", u'乐'));
  EXPECT_TRUE(RowHas("Yue", u'乐'));
  EXPECT_TRUE(RowHas("De", u'的'));
  EXPECT_TRUE(RowHas("Dou", u'都'));
  EXPECT_TRUE(RowHas("He", u'和'));
  EXPECT_TRUE(RowHas("Yi", u'一'));
  EXPECT_TRUE(RowHas("Zhong", u'中'));
  EXPECT_TRUE(RowHas("A", u'阿'));
}

TEST(PinyinTable, HoldsOnlyBasicMultilingualPlaneHanzi) {
  size_t total = 0;
  for (const auto& row : kPinyinSyllables) {
    for (const char16_t* c = row.characters; *c != 0; ++c, ++total) {
      EXPECT_TRUE(*c == 0x3007 || (*c >= 0x4E00 && *c <= 0x9FFF))
          << row.name << " U+" << std::hex << static_cast<unsigned>(*c);
    }
  }
  EXPECT_GT(total, 20000u);  // Unihan gives some 20,900 hanzi a Mandarin reading
}

}  // namespace
