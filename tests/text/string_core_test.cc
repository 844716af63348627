// The string core of StringUtils. Expected values come from the C and C++
// libraries (iostream padding, toupper/tolower, std::regex_match), from known
// calendar facts or from the documented examples.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <cstdlib>
#include <iomanip>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "common/string_utils.h"
#include "support/table.h"

namespace {

using tessel::StringUtils;


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

TEST(StringCore, DocumentedExamples) {
  using test_table::ExpectEach;
  using test_table::ExpectEach2;
  ExpectEach<bool>(StringUtils::isNumberString, {{"", false}, {"007", true}, {"-1", false},
                                                 {"1.0", false}, {" 1", false}});
  ExpectEach<bool>(StringUtils::string2Bool, {{"1", true}, {"001", true}, {"2", false},
                                              {"True", true}, {" TRUE!", true}, {"trueish", true},
                                              {"yes", false}, {"t", false}, {"", false}});
  ExpectEach<int>([](const std::string& t) { return StringUtils::stringToInt(t, 7); },
                  {{"abc", 7}, {"99999999999", 7}, {" 42x", 42}, {"  -5", -5}, {"", 7}});
  ExpectEach2<bool>(StringUtils::hasPrefix, {{"abc", "", true}, {"ab", "abc", false},
                                             {"abc", "ab", true}, {"abc", "AB", false}});
  EXPECT_TRUE(StringUtils::hasSuffix("abc", "bc") && !StringUtils::hasSuffix("abc", "BC") &&
              !StringUtils::hasSuffix("c", "bc"));
  ExpectEach([](std::string t) { return StringUtils::trim(t); },
             {{"   ", ""}, {"\tab", "\tab"}, {"ab\n\n", "ab"}, {"ab\t\n", "ab"},
              {"ab\n\t ", "ab\n"}, {"ab \t\n", "ab "}, {"ab\n ", "ab"}, {"  a b\r ", "a b\r"}});
  ExpectEach([](std::string t) { return StringUtils::getEmailDomain(t); },
             {{"user@", ""}, {"@x", "x"}, {"a@b@c.d", "c.d"}, {"plain", ""}, {"", ""}});
  const auto replace = [](std::string text, const char* from, const char* to) {
    return StringUtils::replace_all_distinct(text, from, to);
  };
  EXPECT_EQ(replace("a.b.c", ".", ""), "abc");
  EXPECT_EQ(replace("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(replace("aabb", "ab", "b"), "abb");
  EXPECT_EQ(replace("abc", "", "x"), "abc");
  using Pieces = std::vector<std::string>;
  ExpectEach2<Pieces>(StringUtils::string_split,
                      {{"/a//b/", "/", Pieces{"a", "b"}}, {"k=v&x", "&=", Pieces{"k", "v", "x"}},
                       {"", ",", Pieces{}}, {",,", ",", Pieces{}}, {"a,b", "", Pieces{"a,b"}}});
  EXPECT_EQ(StringUtils::componentsJoinedByString({"a", "", "b"}, ","), "a,,b");
  EXPECT_EQ(StringUtils::componentsJoinedByString({"one"}, ", ") +
                StringUtils::componentsJoinedByString({}, ","), "one");
  const std::string long_text(10000, 'q');
  EXPECT_EQ(StringUtils::string_format("%s", long_text.c_str()), long_text);
  const char* empty = "";  // not a literal, with an unused argument: no format warnings
  EXPECT_EQ(StringUtils::string_format(empty, 0), "");
  EXPECT_EQ(StringUtils::string_format("%d-%s%c|", 42, "x", 0), "42-x");
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
