// Expected values: the examples of the decoder's contract, code points from
// the HTML 4.01 entity sets (HTMLlat1, HTMLsymbol, HTMLspecial), UTF-8 bytes
// as `printf '\u...' | xxd` prints them, and strtoul's behaviour as C
// specifies it (white space, sign, "0x" prefix in base 16, ERANGE).
#include "common/html_entities.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "support/table.h"

namespace {

using test_table::ExpectEach;

// Decodes out of place into a buffer of exactly strlen + 1 bytes, so ASan
// catches a write past the size the contract promises is enough.
std::string Decode(const std::string& src) {
  std::vector<char> dest(src.size() + 1, '\x7F');
  const size_t size = decode_html_entities_utf8(dest.data(), src.c_str());
  EXPECT_LE(size, src.size());
  EXPECT_EQ(dest[size], '\0');
  return std::string(dest.data(), size);
}

std::string DecodeInPlace(const std::string& text, size_t* size) {
  std::vector<char> buffer(text.begin(), text.end());
  buffer.push_back('\0');
  *size = decode_html_entities_utf8(buffer.data(), nullptr);
  return std::string(buffer.data(), *size);
}

TEST(HtmlEntities, NamesAreCaseSensitiveAndNeedTheirSemicolon) {
  ExpectEach(Decode, {{"a &lt; b &amp;&amp; c", "a < b && c"}, {"&AMP;", "&AMP;"}, {"&amp", "&amp"}, {"&ampx;", "&ampx;"},
                      {"&amp ;", "&amp ;"}, {"&unknown;", "&unknown;"},
                      {"&Eacute;&eacute;", "\xC3\x89\xC3\xA9"}});  // both exist, distinct
}

TEST(HtmlEntities, DecodesNumericReferencesInBothBasesUpToTheLastCodePoint) {
  ExpectEach(Decode, {{"&#233;", "\xC3\xA9"}, {"&#XE9;", "\xC3\xA9"}, {"&#xe9;", "\xC3\xA9"},
                      {"&#65;&#x7F;&#x80;&#x7FF;&#x800;&#xFFFF;&#x10000;",
                       "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"},
                      {"&#xD800;", "\xED\xA0\x80"},  // surrogates are not rejected
                      {"&#x10FFFF;", "\xF4\x8F\xBF\xBF"}, {"&#1114111;", "\xF4\x8F\xBF\xBF"},
                      {"&#x110000;", "&#x110000;"}, {"&#1114112;", "&#1114112;"},
                      {"&#99999999999999999999999;", "&#99999999999999999999999;"}});
}

TEST(HtmlEntities, ReadsNumbersAsStrtoulDoes) {
  ExpectEach(Decode, {{"&# 65;", "A"},            // leading white space
                      {"&#+65;", "A"},            // sign
                      {"&#x0x41;", "A"},          // "0x" prefix in base 16
                      {"&#0x41;", "&#0x41;"},     // ... but not in base 10
                      {"&#-1;", "&#-1;"},         // negated: far above the limit
                      {"&#65a;", "&#65a;"}, {"&#65 ;", "&#65 ;"}, {"&#x41G;", "&#x41G;"},
                      {"&#x;", std::string(1, '\0')},
                      {"&# ;", "&# ;"}});  // no digits: the read stops before the blank
}

TEST(HtmlEntities, LeavesTheCallersErrnoAlone) {
  errno = EDOM;
  EXPECT_EQ(Decode("&#99999999999999999999999;"), "&#99999999999999999999999;");  // ERANGE inside
  EXPECT_EQ(errno, EDOM);
  errno = EINVAL;
  EXPECT_EQ(Decode("&#65;"), "A");  // a stale errno does not spoil a valid read
  EXPECT_EQ(errno, EINVAL);
}

// Random texts built from the pieces references are made of: decoding never
// lengthens them, and in place equals out of place.
TEST(HtmlEntities, InPlaceEqualsOutOfPlaceOnRandomText) {
  static const char* const kPieces[] = {"&", "#", "x", "X", ";", "amp", "lt", "eacute",
                                        "Zeta", "zwnj", "1", "9", "0", "F", " ", "-",
                                        "a", "\xC3\xA9", "10FFFF", "110000", "&#"};
  std::mt19937 random(20240611);
  std::uniform_int_distribution<size_t> piece(0, std::size(kPieces) - 1);
  std::uniform_int_distribution<int> length(0, 40);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (int n = length(random); n > 0; --n) text += kPieces[piece(random)];
    const std::string out_of_place = Decode(text);
    size_t in_place_size = 0;
    ASSERT_EQ(DecodeInPlace(text, &in_place_size), out_of_place) << text;
    ASSERT_LE(in_place_size, text.size()) << text;
  }
}

}  // namespace
