#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

// The exported variadic form, which the template overload takes over for
// calls with arguments.
using Variadic = std::string (*)(const char*, ...);
const Variadic kVariadic = &I18nUtils::formatMatch;

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

// Values, widths and precisions are cut at 102,397 bytes per placeholder.
TEST(FormatMatch, LongValuesAndHugeWidthsAreCut) {
  EXPECT_EQ(I18nUtils::formatMatch("<%s1>", std::string(200000, 'v').c_str()),
            "<" + std::string(102397, 'v') + ">");
  EXPECT_EQ(I18nUtils::formatMatch("%300d1", 1).size(), 300u);
  EXPECT_EQ(kVariadic("%999999999d1", 7), std::string(102396, ' ') + "7");
  EXPECT_EQ(I18nUtils::formatMatch("%.999999999d1", 7), std::string(102396, '0') + "7");
  EXPECT_EQ(I18nUtils::formatMatch("%99999999999999999999s1|", "x"), std::string(102396, ' ') + "x|");
}

TEST(FormatMatch, TypedFormLeavesPlaceholdersWithoutAFittingArgument) {
  EXPECT_EQ(I18nUtils::formatMatch("%s1 neue Nachrichten", 5), "%s1 neue Nachrichten");
  // Position 2 takes the first argument, which is no string; 3 is never visited.
  EXPECT_EQ(I18nUtils::formatMatch("Von %s2: %d3 Dateien", 7, "Ann", 9), "Von %s2: %d3 Dateien");
  EXPECT_EQ(I18nUtils::formatMatch("%d1 %s2 %p3 %d4", 1, "x"), "1 x %p3 %d4");
  EXPECT_EQ(I18nUtils::formatMatch<>("%s1 %d2"), "%s1 %d2");
  EXPECT_EQ(I18nUtils::formatMatch("%f1 %d2 %ls3 %s4 %p5", 3, 2.5, "narrow", L"wide", 8),
            "%f1 %d2 %ls3 %s4 %p5");
  // An argument that does not fit is still used up.
  EXPECT_EQ(I18nUtils::formatMatch("%d1 %s2", "a", "b"), "%d1 b");
  // Integers of any width fit every integer conversion, converted as by a cast.
  EXPECT_EQ(I18nUtils::formatMatch("%lld1 %hhd2 %d3 %c4 %s5", 5, 257LL, true, 'A', std::string("str")),
            "5 1 1 A str");
}

// Random formats over six arguments of fixed types: every position 1..K
// occurs, each with a conversion its argument fits and random flags, width,
// precision, order and repeats.
TEST(FormatMatch, TypedFormAgreesWithVariadicOnWellTypedCalls) {
  const std::vector<std::vector<std::string>> fitting = {
      {"d", "i", "o", "u", "x", "X", "c", "hhd", "hu", "jd", "zx", "Lu"},
      {"s", "p"},
      {"f", "e", "E", "g", "G", "a", "A", "F", "Lf"},
      {"lld", "llx", "llu", "lli", "llo"},
      {"ld", "lx", "lu"},
      {"ls", "p"}};
  const char* const words[] = {"", "Ann", "%s1", "longer text with spaces"};
  const wchar_t* const wideWords[] = {L"", L"wide", L"%d2"};
  std::mt19937_64 random(15);
  auto pick = [&random](size_t n) { return static_cast<size_t>(random() % n); };
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::string> placeholders;
    const size_t positions = 1 + pick(fitting.size());
    for (size_t p = 1; p <= positions; ++p) {
      for (size_t copies = 1 + pick(2); copies > 0; --copies) {
        std::string text = "%";
        for (const char* flag : {"-", "+", "#", " ", "0"}) text += pick(3) == 0 ? flag : "";
        if (pick(2) != 0) text += std::to_string(pick(25));
        if (pick(2) != 0) text += "." + std::to_string(pick(12));
        text += fitting[p - 1][pick(fitting[p - 1].size())] + std::to_string(p);
        placeholders.push_back(text);
      }
    }
    std::shuffle(placeholders.begin(), placeholders.end(), random);
    std::string format = "<";
    for (const std::string& placeholder : placeholders) format += placeholder + " | ";

    const int i = static_cast<int>(random());
    const char* const word = words[pick(4)];
    const double real = std::ldexp(static_cast<double>(static_cast<int>(random())), pick(80) - 40);
    const long long wide = static_cast<long long>(random());
    const long sized = static_cast<long>(random());
    const wchar_t* const wideWord = wideWords[pick(3)];
    ASSERT_EQ(I18nUtils::formatMatch(format.c_str(), i, word, real, wide, sized, wideWord),
              kVariadic(format.c_str(), i, word, real, wide, sized, wideWord))
        << format;
  }
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
