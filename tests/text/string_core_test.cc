// The string core of StringUtils. Expected values come from the C and C++
// libraries (iostream padding, toupper/tolower, std::regex_match), from known
// calendar facts or from the documented examples.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <cstdlib>
#include <ctime>
#include <iomanip>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "common/string_utils.h"
#include "support/scoped_time_zone.h"

namespace {

using tessel::StringUtils;
using Pieces = std::vector<std::string>;

using test_support::ScopedTimeZone;

TEST(IntToString, MatchesStreamPaddingForEveryWidthUpTo200) {
  // Widths 1-9 pad with zeros after the sign, 10 and more with spaces.
  for (int value : {0, 5, 42, -7, 123456, INT_MAX, INT_MIN}) {
    for (unsigned width = 0; width <= 200; ++width) {
      std::ostringstream expected;
      if (width >= 1 && width <= 9) expected << std::setfill('0') << std::internal;
      if (width > 0) expected << std::setw(static_cast<int>(width));
      expected << value;
      ASSERT_EQ(StringUtils::intToString(value, width), expected.str())
          << "value " << value << " width " << width;
    }
  }
}

TEST(IntToString, DocumentedTable) {
  EXPECT_EQ(StringUtils::intToString(42, 3), "042");
  EXPECT_EQ(StringUtils::intToString(-7, 9), "-00000007");
  EXPECT_EQ(StringUtils::intToString(5, 10), "         5");
  EXPECT_EQ(StringUtils::intToString(-7, 12), "          -7");
  EXPECT_EQ(StringUtils::intToString(123456, 3), "123456");
}

TEST(NumberConversion, IsNumberString) {
  EXPECT_FALSE(StringUtils::isNumberString(""));
  EXPECT_TRUE(StringUtils::isNumberString("007"));
  EXPECT_FALSE(StringUtils::isNumberString("-1"));
  EXPECT_FALSE(StringUtils::isNumberString("1.0"));
  EXPECT_FALSE(StringUtils::isNumberString(" 1"));
  EXPECT_FALSE(StringUtils::isNumberString(std::string("1\0", 2)));
  EXPECT_FALSE(StringUtils::isNumberString("\xd9\xa1"));  // ARABIC-INDIC DIGIT ONE
}

TEST(NumberConversion, String2BoolForms) {
  for (const char* yes : {"1", "01", "001", "True", "TRUE!", "true", " True", "\ttrue",
                          "trueish"}) {
    EXPECT_TRUE(StringUtils::string2Bool(yes)) << yes;
  }
  for (const char* no : {"0", "2", "10", "99999999999999999999", "yes", "on", "t", "tru",
                         "false", "FALSE", "", " ", "-1", "+1", "1.0", "xtrue"}) {
    EXPECT_FALSE(StringUtils::string2Bool(no)) << no;
  }
}

TEST(NumberConversion, StringToIntOverflowAndJunk) {
  EXPECT_EQ(StringUtils::stringToInt("abc", 7), 7);
  EXPECT_EQ(StringUtils::stringToInt("", 7), 7);
  EXPECT_EQ(StringUtils::stringToInt("-", 7), 7);
  EXPECT_EQ(StringUtils::stringToInt("99999999999", 7), 7);
  EXPECT_EQ(StringUtils::stringToInt("2147483648", 7), 7);
  EXPECT_EQ(StringUtils::stringToInt("-2147483649", 7), 7);
  EXPECT_EQ(StringUtils::stringToInt("2147483647", 7), INT_MAX);
  EXPECT_EQ(StringUtils::stringToInt("-2147483648", 7), INT_MIN);
  EXPECT_EQ(StringUtils::stringToInt(" 42x", 7), 42);
  EXPECT_EQ(StringUtils::stringToInt("12abc", 7), 12);
  EXPECT_EQ(StringUtils::stringToInt("  -5", 7), -5);
  EXPECT_EQ(StringUtils::stringToInt("+8", 7), 8);
  EXPECT_EQ(StringUtils::stringToInt("0x1A", 7), 0);
}

TEST(PrefixSuffix, ByteForByte) {
  EXPECT_TRUE(StringUtils::hasPrefix("abc", ""));
  EXPECT_TRUE(StringUtils::hasPrefix("abc", "ab"));
  EXPECT_FALSE(StringUtils::hasPrefix("ab", "abc"));
  EXPECT_FALSE(StringUtils::hasPrefix("abc", "AB"));
  EXPECT_TRUE(StringUtils::hasSuffix("abc", "bc"));
  EXPECT_TRUE(StringUtils::hasSuffix("abc", ""));
  EXPECT_FALSE(StringUtils::hasSuffix("abc", "BC"));
  EXPECT_FALSE(StringUtils::hasSuffix("bc", "abc"));
  EXPECT_TRUE(StringUtils::hasSuffix(std::string("a\0b", 3), std::string("\0b", 2)));
}

TEST(Trim, PassesRunInOrderSpaceLineFeedTab) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},         {"   ", ""},        {"\tab", "\tab"},  {"ab\n\n", "ab"},
      {"ab\t\n", "ab"}, {"ab\n\t ", "ab\n"}, {"ab \t\n", "ab "}, {"  a b  ", "a b"},
      {"\nab", "\nab"}, {"ab\r\n", "ab\r"},  {"ab\t\t", "ab"},   {" \t", ""},
  };
  for (const auto& [input, expected] : cases) {
    std::string text = input;
    std::string& returned = StringUtils::trim(text);
    EXPECT_EQ(&returned, &text);
    EXPECT_EQ(text, expected) << "input [" << input << "]";
  }
}

TEST(CaseMapping, EveryByteFollowsTheCLocale) {
  std::string all(256, '\0');
  for (int i = 0; i < 256; ++i) all[i] = static_cast<char>(i);
  std::string expected_lower(all), expected_upper(all);
  for (char& c : expected_lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (char& c : expected_upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));

  const std::string original(all);
  EXPECT_EQ(StringUtils::to_uppercase(all), expected_upper);
  EXPECT_EQ(all, original);
  EXPECT_EQ(StringUtils::to_lowercase(all), expected_lower);
  EXPECT_EQ(all, expected_lower);  // changed in place as well
}

TEST(CaseMapping, LowercaseLeavesUtf8Alone) {
  std::string text = "\xc3\x84" "BC";  // "ÄBC"
  EXPECT_EQ(StringUtils::to_lowercase(text), "\xc3\x84" "bc");
  EXPECT_EQ(text, "\xc3\x84" "bc");
}

TEST(ReplaceAllDistinct, InsertedTextIsNeverSearchedAgain) {
  struct Case {
    std::string text, old_value, new_value, expected;
  };
  const Case cases[] = {
      {"a.b.c", ".", "", "abc"},     {"aaa", "a", "aa", "aaaaaa"}, {"aabb", "ab", "b", "abb"},
      {"abc", "", "x", "abc"},       {"", "a", "b", ""},           {"xyz", "q", "r", "xyz"},
      {"abab", "ab", "ab", "abab"},  {"a-b-", "-", "--", "a--b--"}, {"aaaa", "aa", "a", "aa"},
  };
  for (const Case& c : cases) {
    std::string text = c.text;
    const std::string& returned = StringUtils::replace_all_distinct(text, c.old_value, c.new_value);
    EXPECT_EQ(&returned, &text);
    EXPECT_EQ(text, c.expected) << c.text << " / " << c.old_value << " -> " << c.new_value;
  }
}

TEST(SplitJoin, EmptyPiecesVanish) {
  EXPECT_EQ(StringUtils::string_split("", ","), Pieces{});
  EXPECT_EQ(StringUtils::string_split(",,", ","), Pieces{});
  EXPECT_EQ(StringUtils::string_split("a,b", ""), Pieces{"a,b"});
  EXPECT_EQ(StringUtils::string_split("", ""), Pieces{});
  EXPECT_EQ(StringUtils::string_split("/a//b/", "/"), (Pieces{"a", "b"}));
  EXPECT_EQ(StringUtils::string_split("k=v&x", "&="), (Pieces{"k", "v", "x"}));
  EXPECT_EQ(StringUtils::string_split(std::string("a\0b\xff" "c", 5), std::string("\0\xff", 2)),
            (Pieces{"a", "b", "c"}));
}

TEST(SplitJoin, JoinKeepsSeparatorsOfEmptyComponents) {
  EXPECT_EQ(StringUtils::componentsJoinedByString({}, ","), "");
  EXPECT_EQ(StringUtils::componentsJoinedByString({"only"}, ","), "only");
  EXPECT_EQ(StringUtils::componentsJoinedByString({"a", "", "b"}, ","), "a,,b");
  EXPECT_EQ(StringUtils::componentsJoinedByString({"a", "b"}, "::"), "a::b");
  EXPECT_EQ(StringUtils::componentsJoinedByString({"", ""}, "/"), "/");
}

TEST(StringFormat, OutputsAroundTheBufferSize) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-zero-length"
  EXPECT_EQ(StringUtils::string_format(""), "");
#pragma GCC diagnostic pop
  EXPECT_EQ(StringUtils::string_format("%s", "x"), "x");
  // "%s" starts with a 4-byte buffer: 3 bytes fit, 4 fill it exactly, 5 do not.
  EXPECT_EQ(StringUtils::string_format("%s", "abc"), "abc");
  EXPECT_EQ(StringUtils::string_format("%s", "abcd"), "abcd");
  EXPECT_EQ(StringUtils::string_format("%s", "abcde"), "abcde");
  const std::string big(10000, 'q');
  EXPECT_EQ(StringUtils::string_format("%s", big.c_str()), big);
  EXPECT_EQ(StringUtils::string_format("<%s|%s>", big.c_str(), "z"), "<" + big + "|z>");
  EXPECT_EQ(StringUtils::string_format("%d-%05.1f-%x", -3, 2.25, 255u), "-3-002.2-ff");
}

TEST(StringFormat, FormattedNulEndsTheText) {
  EXPECT_EQ(StringUtils::string_format("ab%cde", 0), "ab");
}

TEST(Dates, GetDateMatchesTheCLibrary) {
  // Read the clock on both sides so that a midnight in between is noticed.
  for (int attempt = 0; attempt < 3; ++attempt) {
    const time_t before = time(nullptr);
    const std::string date = StringUtils::getDate();
    const time_t after = time(nullptr);
    const std::tm local = *std::localtime(&before);  // no other thread converts
    char expected[64];
    std::snprintf(expected, sizeof expected, "%d-%d-%d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday);
    if (std::localtime(&after)->tm_mday != local.tm_mday) continue;
    EXPECT_EQ(date, expected);
    return;
  }
  FAIL() << "the date kept changing";
}

TEST(Dates, OuputDateFrom1979CountsFrom1970) {
  ScopedTimeZone utc("UTC");
  std::ostringstream out;
  StringUtils::OuputDateFrom1979(out, 0, "%Y-%m-%d %H:%M:%S");
  EXPECT_EQ(out.str(), "1970-01-01 00:00:00");
  out.str("");
  // `date -u -d @1000000000` and `date -u -d @-1`.
  StringUtils::OuputDateFrom1979(out, 1000000000, "%Y/%m/%d %H:%M:%S");
  EXPECT_EQ(out.str(), "2001/09/09 01:46:40");
  out.str("");
  StringUtils::OuputDateFrom1979(out, -1, "%F %T");
  // Windows' C runtime converts no time before 1970, so nothing is written.
  EXPECT_EQ(out.str(), test_support::kOnWindows ? "" : "1969-12-31 23:59:59");
}

TEST(Dates, OuputDateFrom1979WritesNothingForRejectedValues) {
  ScopedTimeZone utc("UTC");
  std::ostringstream out;
  out << "keep";
  StringUtils::OuputDateFrom1979(out, LLONG_MAX, "%Y");
  StringUtils::OuputDateFrom1979(out, LLONG_MIN, "%Y");
  StringUtils::OuputDateFrom1979(out, 1000000000000LL, "%Y");  // beyond the tick range
  StringUtils::OuputDateFrom1979(out, 0, nullptr);
  EXPECT_EQ(out.str(), "keep");
}

TEST(Email, Domain) {
  EXPECT_EQ(StringUtils::getEmailDomain(""), "");
  EXPECT_EQ(StringUtils::getEmailDomain("user"), "");
  EXPECT_EQ(StringUtils::getEmailDomain("user@"), "");
  EXPECT_EQ(StringUtils::getEmailDomain("@x"), "x");
  EXPECT_EQ(StringUtils::getEmailDomain("a@b@c.d"), "c.d");
}

TEST(Validators, DocumentedExamples) {
  EXPECT_TRUE(StringUtils::isValidEmail("a.b-c@d-e.f.g"));
  EXPECT_TRUE(StringUtils::isValidEmail("x+y&z_1@a.b"));
  EXPECT_FALSE(StringUtils::isValidEmail("a@b"));
  EXPECT_FALSE(StringUtils::isValidEmail(" a@b.c"));
  EXPECT_FALSE(StringUtils::isValidEmail("a..b@c.d"));
  EXPECT_FALSE(StringUtils::isValidEmail("a@b-.c"));
  EXPECT_FALSE(StringUtils::isValidEmail("a@b.c."));
  EXPECT_FALSE(StringUtils::isValidEmail(""));
  EXPECT_FALSE(StringUtils::isValidEmail(std::string("a@b.c\0", 6)));
  EXPECT_TRUE(StringUtils::isValidMobile("13912345678"));
  EXPECT_TRUE(StringUtils::isValidMobile("18000000000"));
  EXPECT_FALSE(StringUtils::isValidMobile("+8613912345678"));
  EXPECT_FALSE(StringUtils::isValidMobile("16912345678"));
  EXPECT_FALSE(StringUtils::isValidMobile("1391234567"));
  EXPECT_FALSE(StringUtils::isValidMobile("139123456789"));
  EXPECT_FALSE(StringUtils::isValidMobile(""));
}

// Random strings over the bytes the patterns care about.
std::string RandomCandidate(std::mt19937& random, const std::string& alphabet) {
  std::string text;
  const int length = static_cast<int>(random() % 16);
  for (int i = 0; i < length; ++i) text += alphabet[random() % alphabet.size()];
  return text;
}

// Words joined by single joiner bytes, e.g. "ab.c-d".
std::string RandomJoinedWords(std::mt19937& random, const char* joiners) {
  static const char kWord[] = "aZ9_q0";
  std::string text;
  for (int words = 1 + static_cast<int>(random() % 3); words > 0; --words) {
    if (!text.empty()) text += joiners[random() % std::strlen(joiners)];
    for (int n = 1 + static_cast<int>(random() % 3); n > 0; --n) text += kWord[random() % 6];
  }
  return text;
}

// Half random bytes, half near-misses: a well-formed address with up to two
// random bytes inserted, replaced or removed.
std::string RandomAddress(std::mt19937& random, const std::string& alphabet) {
  if (random() % 2 == 0) return RandomCandidate(random, alphabet);
  std::string text = RandomJoinedWords(random, "-+.&") + "@" + RandomJoinedWords(random, "-.") +
                     "." + RandomJoinedWords(random, "-.");
  for (int edits = static_cast<int>(random() % 3); edits > 0; --edits) {
    const size_t at = random() % text.size();
    const char byte = alphabet[random() % alphabet.size()];
    switch (random() % 3) {
      case 0: text.insert(at, 1, byte); break;
      case 1: text[at] = byte; break;
      default: text.erase(at, 1); break;
    }
  }
  return text;
}

TEST(Validators, AgreeWithStdRegexOn200000Strings) {
  const std::regex email(R"(\w+([-+.&]\w+)*@\w+([-.]\w+)*\.\w+([-.]\w+)*)");
  const std::regex mobile(R"(((13)|(14)|(15)|(17)|(18))\d{9}$)");
  const std::string email_alphabet =
      std::string("aZ9_bq0-+.&@ .@.a-") + "\xc3\xa9\x80\xff" + std::string(1, '\0');
  std::mt19937 random(20240601);
  int email_matches = 0;
  for (int i = 0; i < 100000; ++i) {
    const std::string text = RandomAddress(random, email_alphabet);
    const bool expected = std::regex_match(text, email);
    email_matches += expected;
    ASSERT_EQ(StringUtils::isValidEmail(text), expected) << "[" << text << "]";
  }
  int mobile_matches = 0;
  for (int i = 0; i < 100000; ++i) {
    std::string text = "1";
    text += "0345789+"[random() % 8];
    const int digits = 7 + static_cast<int>(random() % 4);
    for (int d = 0; d < digits; ++d) text += "0123456789a \xd9"[random() % (d == 4 ? 13 : 10)];
    if (random() % 4 == 0) text = RandomCandidate(random, "13578x+ ");
    const bool expected = std::regex_match(text, mobile);
    mobile_matches += expected;
    ASSERT_EQ(StringUtils::isValidMobile(text), expected) << "[" << text << "]";
  }
  // Both answers must occur often, or the comparison proves little.
  EXPECT_GT(email_matches, 20000);
  EXPECT_LT(email_matches, 80000);
  EXPECT_GT(mobile_matches, 5000);
  EXPECT_LT(mobile_matches, 95000);
}

}  // namespace
