// UTF-8 <-> UTF-16 conversions of StringUtilsWin and the strict s2ws/ws2s,
// checked against a reference decoder written here from the Unicode
// Standard's table of well-formed UTF-8 byte sequences (Table 3-7) and its
// recommended practice for U+FFFD (substitution of maximal subparts).
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "common/string_utils.h"
#include "common/string_utils_win.h"

namespace {

using tessel::StringUtils;
using tessel::StringUtilsWin;

struct Range {
  unsigned char low, high;
};

// Table 3-7, one row per line of the table.
const std::vector<std::vector<Range>> kWellFormedRows = {
    {{0x00, 0x7F}},
    {{0xC2, 0xDF}, {0x80, 0xBF}},
    {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}},
    {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}},
    {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}},
};

// Decodes text into code points; -1 stands for one U+FFFD of an ill-formed
// maximal subpart. A byte run matching a whole row is a character; otherwise
// the longest prefix of any row that matches is the maximal subpart (at
// least one byte).
std::vector<long> ReferenceDecode(const std::string& text) {
  std::vector<long> result;
  std::size_t i = 0;
  while (i < text.size()) {
    std::size_t best = 1;
    bool complete = false;
    for (const auto& row : kWellFormedRows) {
      std::size_t matched = 0;
      while (matched < row.size() && i + matched < text.size()) {
        const unsigned char byte = static_cast<unsigned char>(text[i + matched]);
        if (byte < row[matched].low || byte > row[matched].high) break;
        ++matched;
      }
      if (matched == row.size()) {
        best = matched;
        complete = true;
        break;
      }
      if (matched > best) best = matched;
    }
    if (complete) {
      long value = static_cast<unsigned char>(text[i]);
      if (best > 1) value &= 0x7F >> best;
      for (std::size_t k = 1; k < best; ++k) value = (value << 6) | (text[i + k] & 0x3F);
      result.push_back(value);
    } else {
      result.push_back(-1);
    }
    i += best;
  }
  return result;
}

std::wstring ReferenceUtf16(const std::string& text) {
  std::wstring out;
  for (long cp : ReferenceDecode(text)) {
    if (cp < 0) cp = 0xFFFD;
    if (cp >= 0x10000) {
      out.push_back(static_cast<wchar_t>(0xD800 + ((cp - 0x10000) >> 10)));
      out.push_back(static_cast<wchar_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
    } else {
      out.push_back(static_cast<wchar_t>(cp));
    }
  }
  return out;
}

// Code points to UTF-8 by the bit distribution of the Unicode Standard's
// Table 3-6.
std::string ReferenceUtf8(const std::vector<long>& code_points) {
  static const int kLead[] = {0x00, 0xC0, 0xE0, 0xF0};
  std::string out;
  for (const long cp : code_points) {
    const int extra = cp < 0x80 ? 0 : cp < 0x800 ? 1 : cp < 0x10000 ? 2 : 3;
    out += static_cast<char>(kLead[extra] | (cp >> (6 * extra)));
    for (int k = extra - 1; k >= 0; --k) out += static_cast<char>(0x80 | ((cp >> (6 * k)) & 0x3F));
  }
  return out;
}

// The largest code point one wchar_t holds: U+FFFF where it has 16 bits
// (Windows), U+10FFFF where it has 32.
constexpr long kLargestElement = sizeof(wchar_t) == 2 ? 0xFFFF : 0x10FFFF;

std::wstring ToUtf16(const std::string& text) {
  std::wstring out = L"stale";
  EXPECT_TRUE(StringUtilsWin::utf8ToUnicode(text.c_str(), out));
  return out;
}

std::string ToUtf8(const std::wstring& text) {
  std::string out = "stale";
  EXPECT_TRUE(StringUtilsWin::unicodeToUtf8(text.c_str(), out));
  return out;
}

TEST(Utf8ToUtf16, MatchesReferenceOnEverySequenceOfOneToThreeBytes) {
  // NUL ends the text, so bytes run from 1. Each sequence is followed by 'A',
  // which ends any incomplete sequence, so one conversion covers all
  // sequences that share a first byte.
  for (int b0 = 1; b0 < 256; ++b0) {
    const char c0 = static_cast<char>(b0);
    std::string text = {c0, 'A'};
    for (int b1 = 1; b1 < 256; ++b1) {
      const char c1 = static_cast<char>(b1);
      text += {c0, c1, 'A'};
      for (int b2 = 1; b2 < 256; ++b2) text += {c0, c1, static_cast<char>(b2), 'A'};
    }
    ASSERT_EQ(ToUtf16(text), ReferenceUtf16(text)) << "first byte " << b0;
  }
}

std::string RandomUtf8ish(std::mt19937& random) {
  // Bytes drawn mostly from lead and continuation ranges, so that well-formed
  // and ill-formed sequences of every length meet and overlap.
  static const unsigned char kPool[] = {'a',  0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF,
                                        0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED,
                                        0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF};
  std::uniform_int_distribution<std::size_t> pick(0, sizeof kPool - 1);
  std::uniform_int_distribution<int> length(0, 40);
  std::string text(static_cast<std::size_t>(length(random)), '\0');
  for (char& c : text) c = static_cast<char>(kPool[pick(random)]);
  return text;
}

// Long texts are converted in several blocks, with sequences and maximal
// subparts falling across the block boundaries.
TEST(Utf8ToUtf16, MatchesReferenceOnLongRandomStrings) {
  std::mt19937 random(20240611);
  for (int i = 0; i < 40; ++i) {
    std::string text;
    while (text.size() < 30000) text += RandomUtf8ish(random);
    ASSERT_EQ(ToUtf16(text), ReferenceUtf16(text)) << "case " << i;
  }
}

// `length` elements in runs of 1 to 24: runs of ASCII, runs of any element
// of `pool` below U+D800, and runs of any element of `pool`, so that long
// ASCII stretches, mixed scripts and the rest meet at every alignment.
std::wstring RandomRuns(std::mt19937& random, std::size_t length,
                        const std::vector<wchar_t>& pool) {
  std::uniform_int_distribution<std::size_t> run_length(1, 24);
  std::uniform_int_distribution<int> kind(0, 2);
  std::uniform_int_distribution<std::size_t> pick(0, pool.size() - 1);
  std::wstring text;
  while (text.size() < length) {
    const int run_kind = kind(random);
    for (std::size_t n = run_length(random); n > 0; --n) {
      wchar_t element = pool[pick(random)];
      if (run_kind == 0) element = static_cast<wchar_t>(0x20 + element % 0x5F);
      if (run_kind == 1 && static_cast<unsigned long>(element) >= 0xD800) element = 0x4E2D;
      text += element;
    }
  }
  text.resize(length);
  return text;
}

// UTF-16 units to code points, each unpaired surrogate taken as U+FFFD.
std::vector<long> ReferenceCodePoints(const std::wstring& units) {
  std::vector<long> code_points;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const long unit = units[i];
    const bool high = unit >= 0xD800 && unit <= 0xDBFF;
    if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      code_points.push_back(0x10000 + ((unit - 0xD800) << 10) + (units[i + 1] - 0xDC00));
      ++i;
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      code_points.push_back(0xFFFD);
    } else {
      code_points.push_back(unit);
    }
  }
  return code_points;
}

TEST(Utf16ToUtf8, MatchesReferenceOnLongRandomUnits) {
  std::mt19937 random(5);
  const std::vector<wchar_t> pool = {L'a', 0x7F, 0x80, 0x7FF, 0x800, 0x4E2D, 0xD7FF, 0xD800,
                                     0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFD, 0xFFFF};
  for (int i = 0; i < 40; ++i) {
    const std::wstring units = RandomRuns(random, 20000, pool);
    ASSERT_EQ(ToUtf8(units), ReferenceUtf8(ReferenceCodePoints(units))) << "case " << i;
  }
}

TEST(Utf8ToUtf16, NullTextFailsAndLeavesOutputAlone) {
  std::wstring out = L"kept";
  EXPECT_FALSE(StringUtilsWin::utf8ToUnicode(nullptr, out));
  EXPECT_EQ(out, L"kept");
  EXPECT_TRUE(StringUtilsWin::utf8ToUnicode("", out));
  EXPECT_TRUE(out.empty());
  std::string narrow = "kept";
  EXPECT_FALSE(StringUtilsWin::unicodeToUtf8(nullptr, narrow));
  EXPECT_EQ(narrow, "kept");
  EXPECT_TRUE(StringUtilsWin::unicodeToUtf8(L"", narrow));
  EXPECT_TRUE(narrow.empty());
}

TEST(Utf8ToUtf16Buffer, NeedsRoomForTheTerminatingNulOrMeasures) {
  wchar_t buffer[8];
  std::fill(std::begin(buffer), std::end(buffer), L'#');
  EXPECT_FALSE(StringUtilsWin::utf8ToUnicode("abc", buffer, 3));
  EXPECT_TRUE(StringUtilsWin::utf8ToUnicode("abc", buffer, 4));
  EXPECT_EQ(std::wstring(buffer), L"abc");
  // Two UTF-16 units and the NUL.
  EXPECT_FALSE(StringUtilsWin::utf8ToUnicode("\xF0\x9F\x98\x80", buffer, 2));
  EXPECT_TRUE(StringUtilsWin::utf8ToUnicode("\xF0\x9F\x98\x80", buffer, 3));
  EXPECT_EQ(std::wstring(buffer), (std::wstring{0xD83D, 0xDE00}));
  // Capacity zero only measures.
  buffer[0] = L'#';
  EXPECT_TRUE(StringUtilsWin::utf8ToUnicode("abc", buffer, 0));
  EXPECT_TRUE(StringUtilsWin::utf8ToUnicode("abc", nullptr, 0));
  EXPECT_EQ(buffer[0], L'#');
  EXPECT_FALSE(StringUtilsWin::utf8ToUnicode(nullptr, buffer, 2));
  EXPECT_FALSE(StringUtilsWin::utf8ToUnicode("a", nullptr, 2));
  EXPECT_FALSE(StringUtilsWin::utf8ToUnicode("a", buffer, -1));
}

TEST(Utf16ToUtf8, ReplacesElementsBeyondUtf16) {
  // Not a UTF-16 unit at all (possible only where wchar_t has 32 bits).
  if (kLargestElement == 0xFFFF) GTEST_SKIP() << "every element is a UTF-16 unit";
  EXPECT_EQ(ToUtf8(std::wstring{L'a', static_cast<wchar_t>(0x1F600)}), "a\xEF\xBF\xBD");
}

// Every scalar value from U+0001 to `last`, in order: a text that covers all
// lengths of both encodings.
std::vector<long> ScalarValuesUpTo(long last) {
  std::vector<long> values;
  for (long cp = 1; cp <= last; ++cp) {
    if (cp < 0xD800 || cp > 0xDFFF) values.push_back(cp);
  }
  return values;
}

TEST(Utf16ToUtf8, RoundTripsEveryScalarValue) {
  const std::string utf8 = ReferenceUtf8(ScalarValuesUpTo(0x10FFFF));
  const std::wstring utf16 = ToUtf16(utf8);
  EXPECT_EQ(utf16, ReferenceUtf16(utf8));
  EXPECT_EQ(ToUtf8(utf16), utf8);
}

TEST(StrictConversion, RoundTripsEveryScalarValueOnePerElement) {
  const std::vector<long> values = ScalarValuesUpTo(kLargestElement);
  const std::wstring code_points(values.begin(), values.end());
  const std::string utf8 = StringUtils::ws2s(code_points);
  ASSERT_EQ(utf8, ReferenceUtf8(values));
  EXPECT_EQ(StringUtils::s2ws(utf8), code_points);
}

// `text` (UTF-8 for s2ws, wide for ws2s) is refused with the documented error.
template <typename Text>
void ExpectBadConversion(const Text& text) {
  try {
    if constexpr (std::is_same_v<Text, std::string>) {
      StringUtils::s2ws(text);
    } else {
      StringUtils::ws2s(text);
    }
    ADD_FAILURE() << "no exception for " << ::testing::PrintToString(text);
  } catch (const std::range_error& error) {
    EXPECT_STREQ(error.what(), "bad conversion");
  }
}

TEST(StrictConversion, S2wsRejectsExactlyTheIllFormedSequences) {
  // Every sequence of one or two bytes, and of three bytes after the lead
  // bytes whose second-byte ranges differ.
  auto check = [](const std::string& text) {
    const std::vector<long> reference = ReferenceDecode(text);
    bool ill_formed = false;
    std::wstring expected;
    for (long cp : reference) {
      ill_formed |= cp < 0;
      expected.push_back(static_cast<wchar_t>(cp));
    }
    if (ill_formed) {
      ExpectBadConversion(text);
    } else {
      EXPECT_EQ(StringUtils::s2ws(text), expected);
    }
  };
  for (int b0 = 0; b0 < 256; ++b0) {
    check(std::string(1, static_cast<char>(b0)));
    for (int b1 = 0; b1 < 256; ++b1) check({static_cast<char>(b0), static_cast<char>(b1)});
  }
  for (int b0 : {0xE0, 0xE1, 0xED, 0xEE, 0xF0, 0xF1, 0xF4, 0xF5}) {
    for (int b1 = 0x70; b1 < 0xD0; ++b1) {
      for (int b2 = 0x70; b2 < 0xD0; ++b2) {
        check({static_cast<char>(b0), static_cast<char>(b1), static_cast<char>(b2)});
      }
    }
  }
}

TEST(StrictConversion, S2wsKeepsOneElementPerCodePoint) {
  if (kLargestElement > 0xFFFF) {
    EXPECT_EQ(StringUtils::s2ws("\xF0\x9F\x98\x80"),
              std::wstring(1, static_cast<wchar_t>(0x1F600)));
  } else {
    ExpectBadConversion(std::string("\xF0\x9F\x98\x80"));  // one element cannot hold it
  }
  EXPECT_EQ(StringUtils::s2ws(std::string("a\0b", 3)), (std::wstring{L'a', L'\0', L'b'}));
}

TEST(StrictConversion, Ws2sMatchesReferenceOnLongRandomTexts) {
  std::mt19937 random(11);
  std::vector<wchar_t> pool = {L'a', 0x7F, 0x80, 0x7FF, 0x800, 0x4E2D, 0xD7FF, 0xE000, 0xFFFF};
  std::vector<wchar_t> bad = {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xDFFF)};
  if (kLargestElement > 0xFFFF) {
    pool.insert(pool.end(), {static_cast<wchar_t>(0x10000), static_cast<wchar_t>(0x10FFFF)});
    bad.insert(bad.end(), {static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)});
  }
  std::uniform_int_distribution<std::size_t> length(0, 9000);
  for (int i = 0; i < 60; ++i) {
    std::wstring text = RandomRuns(random, length(random), pool);
    ASSERT_EQ(StringUtils::ws2s(text), ReferenceUtf8({text.begin(), text.end()})) << "case " << i;
    if (text.empty()) continue;
    text[std::uniform_int_distribution<std::size_t>(0, text.size() - 1)(random)] =
        bad[static_cast<std::size_t>(i) % bad.size()];
    ExpectBadConversion(text);
  }
  // A text whose script changes after its start: the result outgrows what
  // its first part foretold.
  const std::wstring changing = std::wstring(3000, L'a') + std::wstring(30000, 0x4E2D);
  EXPECT_EQ(StringUtils::ws2s(changing),
            std::string(3000, 'a') + ReferenceUtf8(std::vector<long>(30000, 0x4E2D)));
}

}  // namespace
