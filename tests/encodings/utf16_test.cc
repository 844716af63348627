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

// Every scalar value from U+0001 to `last`, in order: a text that covers all
// lengths of both encodings.
std::vector<long> ScalarValuesUpTo(long last) {
  std::vector<long> values;
  for (long cp = 1; cp <= last; ++cp) {
    if (cp < 0xD800 || cp > 0xDFFF) values.push_back(cp);
  }
  return values;
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
