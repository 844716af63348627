// The serializer, the order of values, has_shape, and round trips.
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

TEST(JsonDump, ValuesTable) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::pair<Json, std::string> cases[] = {
      {Json::object{{"b", 1}, {"a", Json::array{true, nullptr}}}, R"({"a": [true, null], "b": 1})"},
      {Json::array{}, "[]"}, {Json::object{}, "{}"},
      {Json::array{Json::array{}, Json::object{{"", ""}}}, R"([[], {"": ""}])"}, {Json(), "null"},
      {false, "false"}, {true, "true"}, {"\xe2\x80\xa8", R"("\u2028")"},
      {"a\xe2\x80\xa9z", R"("a\u2029z")"},
      // An 0xE2 not starting U+2028/U+2029 is copied, as is every byte from 0x80.
      {"\xe2\x80\xa6", "\"\xe2\x80\xa6\""}, {"\xe2\x80", "\"\xe2\x80\""}, {"\xe2", "\"\xe2\""},
      {"\xc3\xa9\xff", "\"\xc3\xa9\xff\""}, {Json::object{{"k\"\n", 1}}, R"({"k\"\n": 1})"},
      {-7, "-7"}, {std::numeric_limits<int>::min(), "-2147483648"},
      {9007199254740993LL, "9007199254740993"},
      {std::numeric_limits<long long>::min(), "-9223372036854775808"}, {inf, "1e999"},
      {-inf, "-1e999"},
      {std::numeric_limits<double>::quiet_NaN(), "null"}, {Json::array{inf}, "[1e999]"},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(value.dump(), expected) << expected;
  std::string out = "x";
  Json(Json::array{1}).dump(out);
  EXPECT_EQ(out, "x[1]");
}

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

// Each pair is strictly ascending; comparison operators are checked both ways.
TEST(JsonOrder, TypesFirstThenValues) {
  const std::pair<Json, Json> ascending[] = {
      {Json(), 0},  {5, false},  {true, ""},  {"", Json::array{}},
      {Json::array{}, Json::object{}},  {false, true},  {1, 1.5},  {-1LL, 0},  {2.5, 3},
      {"a", "b"},  {"a", "ab"},  {"Z", "a"},  {"z", "\xc3\xa9"},  // byte-wise, 0xC3 after 'z'
      {Json::array{1, 2}, Json::array{1, 3}},  {Json::array{1}, Json::array{1, 0}},
      {Json::object{{"a", 1}}, Json::object{{"b", 0}}},
      {Json::object{{"a", 1}}, Json::object{{"a", 2}}},
      {Json::object{{"a", 1}}, Json::object{{"a", 1}, {"b", 0}}},
  };
  for (const auto& [low, high] : ascending) {
    EXPECT_TRUE(low < high && high > low && low <= high && high >= low) << low.dump() << high.dump();
    EXPECT_FALSE(high < low || low > high || high <= low || low >= high) << low.dump() << high.dump();
  }
  for (const auto& [a, b] : {std::pair<Json, Json>{Json(), Json()}, {true, true}, {2LL, 2.0}}) {
    EXPECT_TRUE(a <= b && a >= b && !(a < b) && !(a > b)) << a.dump() << b.dump();
  }
  const Json nan(std::numeric_limits<double>::quiet_NaN());  // follows from < alone
  EXPECT_TRUE(!(nan < nan) && !(nan > nan) && nan <= nan && nan >= nan && !(nan == nan));
}

TEST(JsonShape, MessagesQuoteTheValue) {
  std::string err = "untouched";
  const Json object = Json::object{{"n", 1}};
  EXPECT_TRUE(object.has_shape({{"n", Json::Number}}, err));
  EXPECT_TRUE(object.has_shape({{"missing", Json::Null}}, err));
  EXPECT_TRUE(object.has_shape({}, err));
  EXPECT_EQ(err, "untouched");
  EXPECT_FALSE(Json(5).has_shape({{"n", Json::Number}}, err));
  EXPECT_EQ(err, "expected JSON object, got 5");
  EXPECT_FALSE(Json(Json::array{1}).has_shape({}, err));
  EXPECT_EQ(err, "expected JSON object, got [1]");
  EXPECT_FALSE(object.has_shape({{"n", Json::Number}, {"s", Json::String}}, err));
  EXPECT_EQ(err, R"(bad type for s in {"n": 1})");
  EXPECT_FALSE(object.has_shape({{"n", Json::Bool}}, err));
  EXPECT_EQ(err, R"(bad type for n in {"n": 1})");
}

}  // namespace
