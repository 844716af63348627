#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <limits>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "i18n/i18n_utils.h"
#include "i18n/placeholder_scan.h"

namespace {

using I18N::I18nUtils;

TEST(FormatMatch, PositionsReorderRepeatAndSkip) {
  EXPECT_EQ(I18nUtils::formatMatch("%s1 sent %d2 messages", "Ann", 3), "Ann sent 3 messages");
  EXPECT_EQ(I18nUtils::formatMatch("%d2 Nachrichten von %s1", "Ann", 3), "3 Nachrichten von Ann");
  EXPECT_EQ(I18nUtils::formatMatch("%s1 and %s1", "x"), "x and x");
  // The first placeholder of a position decides how the argument is read.
  EXPECT_EQ(I18nUtils::formatMatch("%s1 %d1", "x"), "x x");
  // A repeat gets the first placeholder's text.
  EXPECT_EQ(I18nUtils::formatMatch("[%-6s2|%3d1|%s2]", 7, "ab"), "[ab    |  7|ab    ]");
  EXPECT_EQ(I18nUtils::formatMatch("%d1 %d12", 7), "7 %d12");
  // Positions 2 and 3 only: index 0 is skipped, position 2 takes the first
  // argument and position 3 is never filled.
  EXPECT_EQ(I18nUtils::formatMatch("%d2-%d3", 5, 6), "5-%d3");
  // "01" and "1" are the same position, but only the digits of the first
  // placeholder are replaced.
  EXPECT_EQ(I18nUtils::formatMatch("%d01 %d1", 9), "9 %d1");
}

TEST(FormatMatch, LeavesUnrecognisedTextAlone) {
  EXPECT_EQ(I18nUtils::formatMatch("no placeholders"), "no placeholders");
  EXPECT_EQ(I18nUtils::formatMatch("%d of %d"), "%d of %d");
  EXPECT_EQ(I18nUtils::formatMatch("%1$s and %s0"), "%1$s and %s0");
  EXPECT_EQ(I18nUtils::formatMatch("%+-5d1 %y1 %lll1 %Lhd1"), "%+-5d1 %y1 %lll1 %Lhd1");
  // "%%" is no escape: the second percent sign starts the placeholder.
  EXPECT_EQ(I18nUtils::formatMatch("100%%d1", 5), "100%5");
  EXPECT_EQ(I18nUtils::formatMatch(nullptr), "");
  EXPECT_EQ(I18nUtils::formatMatch("%d99999999999 %d1", 4), "%d99999999999 4");
}

TEST(FormatMatch, ReadsArgumentsByLengthAndConversion) {
  EXPECT_EQ(I18nUtils::formatMatch("%lld1", 1LL << 40), "1099511627776");
  // long has 64 bits on Linux, 32 on Windows.
  EXPECT_EQ(I18nUtils::formatMatch("%ld1", std::numeric_limits<long>::min()),
            std::to_string(std::numeric_limits<long>::min()));
  EXPECT_EQ(I18nUtils::formatMatch("%hhd1", 257), "1");
  EXPECT_EQ(I18nUtils::formatMatch("%hd1", 65537), "1");
  EXPECT_EQ(I18nUtils::formatMatch("%hhu1 %hx2", 511, 0x12345), "255 2345");
  EXPECT_EQ(I18nUtils::formatMatch("%c1", 65), "A");
  EXPECT_EQ(I18nUtils::formatMatch("%lc1", 66), "B");
  EXPECT_EQ(I18nUtils::formatMatch("%5.1f1", 3.14159), "  3.1");
  EXPECT_EQ(I18nUtils::formatMatch("%Lf1|%.2e2", 0.5, 12345.0), "0.500000|1.23e+04");
  EXPECT_EQ(I18nUtils::formatMatch("%jd1 %zu2 %#x3 %05d4", -2, 3u, 255, 42), "-2 3 0xff 00042");
  EXPECT_EQ(I18nUtils::formatMatch("%ls1", L"wide"), "wide");
  const void* pointer = reinterpret_cast<const void*>(0x1234);
  // Each C library spells pointers its own way ("0x1234", "0000000000001234").
  char spelled[32];
  std::snprintf(spelled, sizeof spelled, "%p", pointer);
  EXPECT_EQ(I18nUtils::formatMatch("%p1", pointer), spelled);
}

TEST(FormatMatch, InsertedValuesAreNeverSearchedAgain) {
  EXPECT_EQ(I18nUtils::formatMatch("%s1 then %s2", "%s1%s2", "b"), "%s1%s2 then b");
  EXPECT_EQ(I18nUtils::formatMatch("%s2 %s1", "%d2", "%s1"), "%s1 %d2");
  EXPECT_EQ(I18nUtils::formatMatch("%%s1", "d2"), "%d2");
}

TEST(FormatMatch, LongValuesAreCut) {
  const std::string big(200000, 'v');
  const std::string result = I18nUtils::formatMatch("<%s1>", big.c_str());
  EXPECT_EQ(result, "<" + std::string(102397, 'v') + ">");
  EXPECT_EQ(I18nUtils::formatMatch("%300d1", 1).size(), 300u);
}

// The scanner against the pattern itself, run by the standard library's
// ECMAScript regular expressions, on generated format strings.
TEST(FormatMatch, ScannerRecognisesExactlyWhatThePatternDoes) {
  const std::regex pattern(
      "%(\\-*)([\\+\\# 0]*)(\\d*)(\\.?\\d*)([jztL]?|[hl]{0,2})([csdioxXufFeEaAgGp])(\\d+)");
  const std::string alphabet = "%%%%-+# 0.12093hhlljztLcsdxXfFgGpqy$ a";
  std::mt19937 random(7);
  int matchesSeen = 0;
  for (int round = 0; round < 100000; ++round) {
    std::string text;
    const size_t length = random() % 16;
    for (size_t i = 0; i < length; ++i) text += alphabet[random() % alphabet.size()];
    std::vector<std::string> expected;
    for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it) {
      const std::smatch& m = *it;
      expected.push_back(std::to_string(m.position(0)) + "|" + m.str(0) + "|" + m.str(5) + "|" +
                         m.str(6) + "|" + m.str(7));
    }
    std::vector<std::string> actual;
    for (const auto& match : I18N::placeholder::scan(text)) {
      const std::string whole = text.substr(match.begin, match.end() - match.begin);
      actual.push_back(std::to_string(match.begin) + "|" + whole + "|" +
                       text.substr(match.lengthBegin, match.lengthSize) + "|" +
                       text[match.conversion] + "|" +
                       text.substr(match.conversion + 1, match.positionSize));
    }
    ASSERT_EQ(actual, expected) << "format: " << text;
    matchesSeen += static_cast<int>(expected.size());
  }
  EXPECT_GT(matchesSeen, 2000);  // the generator does reach the grammar
}

}  // namespace
