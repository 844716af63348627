// The serializer: string escapes at every position and doubles against printf.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "json11/json11.h"

namespace {

using json11::Json;

// Every byte value at every position of strings and keys of 1 to 24 bytes
// (the writer checks plain text a word at a time), against the escape rules
// spelled out here.
TEST(JsonDump, EveryByteInEveryPositionOfAWord) {
  static const char kNamed[] = "\"\\\b\f\n\r\t", kLetters[] = "\"\\bfnrt";
  for (int byte = 0; byte < 256; ++byte) {
    const char* named = byte ? std::strchr(kNamed, byte) : nullptr;
    char escape[8] = {static_cast<char>(byte)};
    if (named) {
      std::snprintf(escape, sizeof escape, "\\%c", kLetters[named - kNamed]);
    } else if (byte < 0x20) {
      std::snprintf(escape, sizeof escape, "\\u%04x", byte);
    }
    const std::string expected_escape = escape;
    for (size_t length = 1; length <= 24; ++length) {
      for (size_t position = 0; position < length; ++position) {
        std::string text(length, 'a');
        text[position] = static_cast<char>(byte);
        const std::string expected = "\"" + std::string(position, 'a') + expected_escape +
                                     std::string(length - 1 - position, 'a') + "\"";
        ASSERT_EQ(Json(text).dump(), expected) << "byte " << byte << " at " << position;
        ASSERT_EQ(Json(Json::object{{text, nullptr}}).dump(), "{" + expected + ": null}");
      }
    }
  }
}

// Beyond 64 bytes strings take the long road.
TEST(JsonDump, LongStringsMixPlainRunsAndEscapes) {
  const std::string run(100, 'x');
  const std::string text = run + "\xe2\x80\xa8" + run + "\n\"" + run + "\xe2\x80" + run + "\x01";
  EXPECT_EQ(Json(text).dump(), "\"" + run + "\\u2028" + run + "\\n\\\"" + run + "\xe2\x80" + run +
                                   "\\u0001\"");
  EXPECT_EQ(Json(Json::object{{text, 1}}).dump(), "{" + Json(text).dump() + ": 1}");
}

std::string Printf17(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  return buffer;
}

// The C library's "%.17g" is the reference for every finite double: ties,
// boundaries and extremes, then a million random bit patterns.
TEST(JsonDump, DoublesMatchPrintf) {
  std::vector<double> values = {
      0.1, 0.5, 1.0 / 3, 100 + 1.0 / 32768, 100 + 3.0 / 32768,  // exact ties at digit 18
      1 + 1.0 / 65536, 99999999999999999.0, 1e16, 1e17, 9007199254740993.0,
      5e-324, 2.2250738585072014e-308, 2.2250738585072009e-308,
      std::numeric_limits<double>::max(), 1e-5, 1e-4, 0.00012345678901234567,
      123456.789, 1e22, 1e23, 4.35, 0.3};
  for (int exponent = -330; exponent <= 310; ++exponent) {
    const double power = std::pow(10.0, exponent);
    values.insert(values.end(), {power, std::nextafter(power, 0.0), std::nextafter(power, 1e308)});
  }
  std::mt19937_64 random(17);
  for (int i = 0; i < 100000; ++i) {
    // Dyadic values with short binary fractions: many exact decimal ties.
    values.push_back(std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 64)));
    values.push_back(std::uniform_real_distribution<double>(-180, 180)(random));
  }
  for (size_t i = 0, n = values.size(); i < n; ++i) values.push_back(-values[i]);
  for (int i = 0; i < 1000000; ++i) {
    const std::uint64_t bits = random();
    values.push_back(0);
    std::memcpy(&values.back(), &bits, sizeof bits);
  }
  for (double value : values) {
    if (!std::isfinite(value)) continue;  // pow(10, 309) and up, random infinities and NaNs
    ASSERT_EQ(Json(value).dump(), Printf17(value)) << std::hexfloat << value;
  }
}

}  // namespace
