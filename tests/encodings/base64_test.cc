#include "common/base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>

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

// RFC 4648 section 10, then coreutils (printf '...' | base64): both ways.
TEST(Base64, EncodesAndDecodesKnownVectors) {
  const std::pair<std::string, std::string> kCases[] = {
      {"", ""},           {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
      {"The quick brown fox jumps over the lazy dog",
       "VGhlIHF1aWNrIGJyb3duIGZveCBqdW1wcyBvdmVyIHRoZSBsYXp5IGRvZw=="},
      {std::string("\x00\x01\x02\xFD\xFE\xFF", 6), "AAEC/f7/"},
  };
  for (const auto& [plain, encoded] : kCases) {
    EXPECT_EQ(Encoded(plain), encoded) << "[" << plain << "]";
    EXPECT_EQ(Decoded(encoded), plain) << "[" << encoded << "]";
  }
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

}  // namespace
