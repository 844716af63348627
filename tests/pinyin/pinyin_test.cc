// Expected readings: the examples of the converters' contract and the common
// readings in the Xiandai Hanyu Cidian (the dictionary behind Unihan's
// kXHC1983); with several readings, the alphabetically last one wins.
#include "common/pinyin.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::string Pinyin(std::wstring text) { return pinYinConvert(text); }
std::string Initials(std::wstring text) { return jianPinConvert(text); }

TEST(Pinyin, ConvertsWordsToSyllablesAndInitials) {
  const struct {
    const wchar_t* text;
    const char* pinyin;
    const char* initials;
  } kWords[] = {
      {L"中国", "ZhongGuo", "ZG"}, {L"长城", "ZhangCheng", "ZC"}, {L"我的", "WoDi", "WD"},
      {L"上海市", "ShangHaiShi", "SHS"}, {L"〇", "Ling", "L"}, {L"", "", ""},
      {L"中\u3008国", "Zhong#Guo", "Z#G"},  // inside the table's range, in no row
  };
  for (const auto& word : kWords) {
    EXPECT_EQ(Pinyin(word.text), word.pinyin);
    EXPECT_EQ(Initials(word.text), word.initials);
  }
}

TEST(Pinyin, CodesOutsideTheTablesRangeAreDropped) {
  EXPECT_EQ(Pinyin(L"ÿ"), "");  // 255 is not copied: it goes to the lookup
  EXPECT_EQ(Initials(L"中，国！"), "ZG");
  EXPECT_EQ(Pinyin(L"€。"), "");  // below U+3007, the lowest code in the table
  EXPECT_EQ(Pinyin(L"中\U0001F600国"), "ZhongGuo");  // one 32-bit unit
  const std::wstring pair = {L'中', static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
  EXPECT_EQ(Pinyin(pair), "Zhong");  // or a UTF-16 surrogate pair
}

// Every one of the 6763 hanzi of GB 2312, as glibc's iconv decodes them
// (tests/data/pinyin), has a syllable: the table covers the characters of
// everyday text.
TEST(Pinyin, EveryGb2312HanziHasASyllable) {
  const std::uint16_t kHanzi[] = {
#include "data/pinyin/gb2312_hanzi.inc"
  };
  std::wstring hanzi(std::begin(kHanzi), std::end(kHanzi));
  ASSERT_EQ(hanzi.size(), 6763u);
  const std::string initials = jianPinConvert(hanzi);
  ASSERT_EQ(initials.size(), hanzi.size());
  for (size_t i = 0; i < initials.size(); ++i) {
    EXPECT_TRUE(initials[i] >= 'A' && initials[i] <= 'Z')
        << "U+" << std::hex << static_cast<uint32_t>(hanzi[i]) << " gives " << initials[i];
  }
}

// Three threads convert while a fourth clears the index for as long as they
// run; returns the number of wrong results. Under ThreadSanitizer this finds
// an unguarded swap or build of the index, or an index freed while in use.
int ConvertWhileClearing(int rounds) {
  constexpr auto kWatchdog = std::chrono::seconds(120);
  constexpr int kConverters = 3;
  std::promise<void> start;
  std::shared_future<void> started = start.get_future().share();
  std::atomic<int> converting{kConverters};
  std::vector<std::future<int>> converters;
  for (int t = 0; t < kConverters; ++t) {
    converters.push_back(std::async(std::launch::async, [started, t, rounds, &converting] {
      started.wait();
      int wrong = 0;
      std::wstring text = t % 2 == 0 ? L"银行，北京 Beijing 长城" : L"音乐和中国";
      const std::string pinyin =
          t % 2 == 0 ? "YinXingBeiJing Beijing ZhangCheng" : "YinYueHuoZhongGuo";
      const std::string initials = t % 2 == 0 ? "YXBJ Beijing ZC" : "YYHZG";
      for (int i = 0; i < rounds; ++i) {
        wrong += pinYinConvert(text) != pinyin;
        wrong += jianPinConvert(text) != initials;
      }
      --converting;
      return wrong;
    }));
  }
  auto clearer = std::async(std::launch::async, [started, &converting] {
    started.wait();
    while (converting.load() > 0) clearCache();
  });
  clearCache();  // so the first conversions race to build the index
  start.set_value();
  int wrong = 0;
  for (auto& converter : converters) {
    if (converter.wait_for(kWatchdog) != std::future_status::ready) {
      ADD_FAILURE() << "a converter is stuck";
      std::abort();  // its future would block the test forever
    }
    wrong += converter.get();
  }
  if (clearer.wait_for(kWatchdog) != std::future_status::ready) std::abort();
  return wrong;
}

TEST(Pinyin, ConversionsRunConcurrentlyWithClearCache) {
  // Several bursts, each starting with the threads released at once.
  for (int burst = 0; burst < 4; ++burst) EXPECT_EQ(ConvertWhileClearing(5000), 0);
}

}  // namespace
