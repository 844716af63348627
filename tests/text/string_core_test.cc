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
#include <tuple>
#include <vector>

#include "common/string_utils.h"
#include "support/scoped_time_zone.h"
#include "support/table.h"

namespace {

using tessel::StringUtils;
using Pieces = std::vector<std::string>;

using test_support::ScopedTimeZone;
using test_table::ExpectEach;
using test_table::ExpectEach2;

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

TEST(NumberConversion, IsNumberStringString2BoolAndStringToInt) {
  ExpectEach<bool>(StringUtils::isNumberString,
                   {{"007", true}, {"", false}, {"-1", false}, {"1.0", false}, {" 1", false},
                    {std::string("1\0", 2), false}, {"\xd9\xa1", false}});  // ARABIC-INDIC ONE
  for (const char* yes : {"1", "001", "TRUE!", " True", "\ttrue", "trueish"}) {
    EXPECT_TRUE(StringUtils::string2Bool(yes)) << yes;
  }
  for (const char* no : {"0", "10", "99999999999999999999", "tru", "false", "", "+1", "1.0",
                         "xtrue"}) {
    EXPECT_FALSE(StringUtils::string2Bool(no)) << no;
  }
  ExpectEach<int>([](const std::string& text) { return StringUtils::stringToInt(text, 7); },
                  {{"abc", 7}, {"", 7}, {"-", 7}, {"99999999999", 7}, {"2147483648", 7},
                   {"-2147483649", 7}, {"2147483647", INT_MAX}, {"-2147483648", INT_MIN},
                   {" 42x", 42}, {"12abc", 12}, {"  -5", -5}, {"+8", 8}, {"0x1A", 0}});
}

TEST(PrefixSuffix, ByteForByte) {
  ExpectEach2<bool>(StringUtils::hasPrefix, {{"abc", "", true}, {"abc", "ab", true},
                                             {"ab", "abc", false}, {"abc", "AB", false}});
  ExpectEach2<bool>(StringUtils::hasSuffix,
                    {{"abc", "bc", true}, {"abc", "", true}, {"abc", "BC", false},
                     {"bc", "abc", false}, {std::string("a\0b", 3), std::string("\0b", 2), true}});
}

TEST(Trim, PassesRunInOrderSpaceLineFeedTab) {
  ExpectEach(
      [](std::string text) {
        const std::string* returned = &StringUtils::trim(text);
        return returned == &text ? text : "not the argument";
      },
      {{"", ""}, {"   ", ""}, {"\tab", "\tab"}, {"ab\n\n", "ab"}, {"ab\t\n", "ab"},
       {"ab\n\t ", "ab\n"}, {"ab \t\n", "ab "}, {"  a b  ", "a b"}, {"\nab", "\nab"},
       {"ab\r\n", "ab\r"}, {"ab\t\t", "ab"}, {" \t", ""}});
}

TEST(CaseMapping, EveryByteFollowsTheCLocale) {
  std::string all(256, '\0'), expected_lower(all), expected_upper(all);
  for (int i = 0; i < 256; ++i) {
    all[i] = static_cast<char>(i);
    expected_lower[i] = static_cast<char>(std::tolower(i));
    expected_upper[i] = static_cast<char>(std::toupper(i));
  }
  EXPECT_EQ(StringUtils::to_uppercase(all), expected_upper);
  EXPECT_EQ(StringUtils::to_lowercase(all), expected_lower);
  EXPECT_EQ(all, expected_lower);  // changed in place as well
}

TEST(ReplaceAllDistinct, InsertedTextIsNeverSearchedAgain) {
  struct Case {
    std::string text, old_value, new_value, expected;
  };
  const Case cases[] = {
      {"a.b.c", ".", "", "abc"},    {"aaa", "a", "aa", "aaaaaa"},  {"aabb", "ab", "b", "abb"},
      {"abc", "", "x", "abc"},      {"", "a", "b", ""},            {"xyz", "q", "r", "xyz"},
      {"abab", "ab", "ab", "abab"}, {"a-b-", "-", "--", "a--b--"}, {"aaaa", "aa", "a", "aa"},
  };
  for (const Case& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(&StringUtils::replace_all_distinct(text, c.old_value, c.new_value), &text);
    EXPECT_EQ(text, c.expected) << c.text << " / " << c.old_value << " -> " << c.new_value;
  }
}

TEST(SplitJoin, EmptyPiecesVanishButJoinKeepsTheirSeparators) {
  const std::tuple<std::string, std::string, Pieces> splits[] = {
      {"", ",", {}}, {",,", ",", {}}, {"a,b", "", {"a,b"}}, {"", "", {}},
      {"/a//b/", "/", {"a", "b"}}, {"k=v&x", "&=", {"k", "v", "x"}},
      {std::string("a\0b\xff" "c", 5), std::string("\0\xff", 2), {"a", "b", "c"}},
  };
  for (const auto& [text, separators, pieces] : splits) {
    EXPECT_EQ(StringUtils::string_split(text, separators), pieces) << text << " by " << separators;
  }
  const std::tuple<Pieces, std::string, std::string> joins[] = {
      {{}, ",", ""}, {{"only"}, ",", "only"}, {{"a", "", "b"}, ",", "a,,b"},
      {{"a", "b"}, "::", "a::b"}, {{"", ""}, "/", "/"},
  };
  for (const auto& [pieces, separator, joined] : joins) {
    EXPECT_EQ(StringUtils::componentsJoinedByString(pieces, separator), joined);
  }
}

TEST(StringFormat, OutputsAroundTheBufferSize) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-zero-length"
  EXPECT_EQ(StringUtils::string_format(""), "");
#pragma GCC diagnostic pop
  // "%s" starts with a 4-byte buffer: 3 bytes fit, 4 fill it exactly, 5 do not.
  for (const char* text : {"x", "abc", "abcd", "abcde"}) {
    EXPECT_EQ(StringUtils::string_format("%s", text), text);
  }
  const std::string big(10000, 'q');
  EXPECT_EQ(StringUtils::string_format("%s", big.c_str()), big);
  EXPECT_EQ(StringUtils::string_format("<%s|%s>", big.c_str(), "z"), "<" + big + "|z>");
  EXPECT_EQ(StringUtils::string_format("%d-%05.1f-%x", -3, 2.25, 255u), "-3-002.2-ff");
  EXPECT_EQ(StringUtils::string_format("ab%cde", 0), "ab");  // a formatted NUL ends the text
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

TEST(Dates, OuputDateFrom1979CountsFrom1970AndWritesNothingForRejectedValues) {
  ScopedTimeZone utc("UTC");
  const struct {
    long long seconds;
    const char* format;
    const char* expected;  // from `date -u -d @<seconds>`
  } cases[] = {
      {0, "%Y-%m-%d %H:%M:%S", "1970-01-01 00:00:00"},
      {1000000000, "%Y/%m/%d %H:%M:%S", "2001/09/09 01:46:40"},
      // Windows' C runtime converts no time before 1970, so nothing is written.
      {-1, "%F %T", test_support::kOnWindows ? "" : "1969-12-31 23:59:59"},
      {LLONG_MAX, "%Y", ""},
      {LLONG_MIN, "%Y", ""},
      {1000000000000LL, "%Y", ""},  // beyond the tick range
      {0, nullptr, ""},
  };
  for (const auto& c : cases) {
    std::ostringstream out;
    out << "keep:";
    StringUtils::OuputDateFrom1979(out, c.seconds, c.format);
    EXPECT_EQ(out.str(), std::string("keep:") + c.expected) << c.seconds;
  }
}

TEST(Email, Domain) {
  ExpectEach(StringUtils::getEmailDomain,
             {{"", ""}, {"user", ""}, {"user@", ""}, {"@x", "x"}, {"a@b@c.d", "c.d"}});
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
  EXPECT_TRUE(email_matches > 20000 && email_matches < 80000) << email_matches;
  EXPECT_TRUE(mobile_matches > 5000 && mobile_matches < 95000) << mobile_matches;
}

}  // namespace
