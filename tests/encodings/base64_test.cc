#include "common/base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::string Encoded(const std::string& in) {
  std::string out;
  tessel::Base64_Encode(out, in);
  return out;
}

std::string Decoded(const std::string& in) {
  std::string out;
  tessel::Base64_Decode(out, in);
  return out;
}

// RFC 4648, section 10.
TEST(Base64, EncodesTheRfc4648Vectors) {
  EXPECT_EQ(Encoded(""), "");
  EXPECT_EQ(Encoded("f"), "Zg==");
  EXPECT_EQ(Encoded("fo"), "Zm8=");
  EXPECT_EQ(Encoded("foo"), "Zm9v");
  EXPECT_EQ(Encoded("foob"), "Zm9vYg==");
  EXPECT_EQ(Encoded("fooba"), "Zm9vYmE=");
  EXPECT_EQ(Encoded("foobar"), "Zm9vYmFy");
}

TEST(Base64, DecodesTheRfc4648Vectors) {
  EXPECT_EQ(Decoded(""), "");
  EXPECT_EQ(Decoded("Zg=="), "f");
  EXPECT_EQ(Decoded("Zm8="), "fo");
  EXPECT_EQ(Decoded("Zm9v"), "foo");
  EXPECT_EQ(Decoded("Zm9vYg=="), "foob");
  EXPECT_EQ(Decoded("Zm9vYmE="), "fooba");
  EXPECT_EQ(Decoded("Zm9vYmFy"), "foobar");
}

// Values obtained with coreutils: printf '...' | base64.
TEST(Base64, MatchesCoreutilsOnTextAndHighBytes) {
  const std::string fox = "The quick brown fox jumps over the lazy dog";
  const std::string fox64 = "VGhlIHF1aWNrIGJyb3duIGZveCBqdW1wcyBvdmVyIHRoZSBsYXp5IGRvZw==";
  EXPECT_EQ(Encoded(fox), fox64);
  EXPECT_EQ(Decoded(fox64), fox);
  const std::string bytes("\x00\x01\x02\xFD\xFE\xFF", 6);
  EXPECT_EQ(Encoded(bytes), "AAEC/f7/");
  EXPECT_EQ(Decoded("AAEC/f7/"), bytes);
}

TEST(Base64, AppendsToTheOutput) {
  std::string out = "x";
  tessel::Base64_Encode(out, "foo");
  EXPECT_EQ(out, "xZm9v");
  out = "x";
  tessel::Base64_Decode(out, "Zm9v");
  EXPECT_EQ(out, "xfoo");
}

TEST(Base64, RoundTripsEveryLengthAndByte) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> byte(0, 255);
  for (std::size_t length = 0; length < 300; ++length) {
    std::string data(length, '\0');
    for (char& c : data) c = static_cast<char>(byte(random));
    const std::string text = Encoded(data);
    ASSERT_EQ(text.size(), (length + 2) / 3 * 4);
    ASSERT_EQ(Decoded(text), data) << "length " << length;
  }
}

TEST(Base64, DecodesLineFeedAsData) {
  // "\n" maps to 14 and shifts the grouping: the groups are "Zm9v", "\nYmF".
  EXPECT_NE(Decoded("Zm9v\nYmFy"), "foobar");
  EXPECT_EQ(Decoded("Zm9v\nYmFy").substr(0, 3), "foo");
  EXPECT_EQ(Decoded("Zm9v\nYmFy").size(), 6u);
}

// Expected bytes worked out by hand from the decoder's byte map and its 8-bit
// arithmetic: '!' maps to 0x21 + 4 = 37, '{' to 64, 0xFF (signed -1) to 3,
// 0xFB (signed -5) to 255.
TEST(Base64, DecodesBytesOutsideTheAlphabetThroughTheMap) {
  EXPECT_EQ(Decoded("!!!!"), std::string("\x96\x59\x65", 3));
  EXPECT_EQ(Decoded("{{{{"), std::string("\x04\x10\x40", 3));
  EXPECT_EQ(Decoded("\xFF\xFF\xFF\xFF"), std::string("\x0C\x30\xC3", 3));
  EXPECT_EQ(Decoded("\xFB\xFB\xFB\xFB"), std::string("\x0B\x2F\xBF", 3));
}

TEST(Base64, IgnoresAnIncompleteFinalGroup) {
  EXPECT_EQ(Decoded("Zm9vYm"), "foo");
  EXPECT_EQ(Decoded("Zm9vY"), "foo");
  EXPECT_EQ(Decoded("Zm9"), "");
}

TEST(Base64, ThirdPadGivesOneByteWhateverTheFourth) {
  EXPECT_EQ(Decoded("Zg=="), "f");
  EXPECT_EQ(Decoded("Zg=A"), "f");
  EXPECT_EQ(Decoded("Zm9vZg=x"), "foof");
  // A pad in the middle ends nothing: decoding goes on with the next group.
  EXPECT_EQ(Decoded("Zg==Zm9v"), "ffoo");
}

}  // namespace
