// The serializer, the order of values, has_shape, and round trips.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "json11/json11.h"
#include "json_test_util.h"

namespace {

using json11::Json;
using json_test::Parse;

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

// The C library's "%.17g" is the reference for every finite double.
TEST(JsonDump, DoublesMatchPrintfOnAMillionRandomBitPatterns) {
  std::mt19937_64 random(0x5eed);
  int checked = 0;
  int mismatches = 0;
  while (checked < 1000000) {
    const std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    ++checked;
    const std::string expected = Printf17(value);
    const std::string actual = Json(value).dump();
    if (actual != expected && ++mismatches <= 10) {
      ADD_FAILURE() << std::hexfloat << value << ": " << actual << " vs " << expected;
    }
  }
  EXPECT_EQ(mismatches, 0);
}

TEST(JsonDump, DoublesMatchPrintfAtTiesBoundariesAndExtremes) {
  std::vector<double> values = {
      0.1, 0.5, 1.0 / 3, 100 + 1.0 / 32768, 100 + 3.0 / 32768,  // exact ties at digit 18
      1 + 1.0 / 65536, 99999999999999999.0, 1e16, 1e17, 9007199254740993.0,
      5e-324, 2.2250738585072014e-308, 2.2250738585072009e-308,
      std::numeric_limits<double>::max(), 1e-5, 1e-4, 0.00012345678901234567,
      123456.789, 1e22, 1e23, 4.35, 0.3};
  for (int exponent = -330; exponent <= 310; ++exponent) {
    const double power = std::pow(10.0, exponent);
    values.push_back(power);
    values.push_back(std::nextafter(power, 0.0));
    values.push_back(std::nextafter(power, 1e308));
  }
  std::mt19937_64 random(17);
  for (int i = 0; i < 100000; ++i) {
    // Dyadic values with short binary fractions: many exact decimal ties.
    values.push_back(std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 64)));
    values.push_back(std::uniform_real_distribution<double>(-180, 180)(random));
  }
  for (double value : values) {
    if (!std::isfinite(value)) continue;  // pow(10, 309) and up
    ASSERT_EQ(Json(value).dump(), Printf17(value)) << std::hexfloat << value;
    ASSERT_EQ(Json(-value).dump(), Printf17(-value)) << std::hexfloat << -value;
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

TEST(JsonOrder, ServesAsKeyOfOrderedContainers) {
  std::set<Json> set = {Json("b"), Json(2), Json(), Json(2.0), Json(Json::array{}), Json(1LL)};
  // 2 and 2.0 are one key; the rest in type order, then value order.
  std::vector<Json> expected = {Json(), Json(1), Json(2), Json("b"), Json(Json::array{})};
  EXPECT_EQ(std::vector<Json>(set.begin(), set.end()), expected);
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

TEST(JsonRoundTrip, IntegerWrittenIsReadBackAsLongAndEqual) {
  const Json written(2147483647);
  const Json read = Parse(written.dump());
  EXPECT_EQ(json_test::ValueClass(read), "json11::JsonLong");
  EXPECT_EQ(read, written);
}

// Random values of every type and representation, nested up to depth 6.
// `dump_may_change` is set when a value's text reads back in another
// representation that writes differently: -0.0 ("-0" reads back as the
// integer 0) and 64-bit integers of 19 characters or more (read as doubles).
class RandomValues {
 public:
  explicit RandomValues(unsigned seed) : random_(seed) {}
  bool dump_may_change = false;

  Json Make(int depth) {
    switch (random_() % (depth < 6 ? 9 : 7)) {
      case 0: return Json();
      case 1: return Json(random_() % 2 == 0);
      case 2: return Json(static_cast<int>(random_()));
      case 3: return Json(LongLong());
      case 4: return Json(Double());
      case 5: return Json(Text());
      case 6: return Json(static_cast<int>(random_() % 200) - 100);
      case 7: {
        Json::array items;
        for (size_t n = random_() % 5; n > 0; --n) items.push_back(Make(depth + 1));
        return Json(std::move(items));
      }
      default: {
        Json::object members;
        for (size_t n = random_() % 5; n > 0; --n) members[Text()] = Make(depth + 1);
        return Json(std::move(members));
      }
    }
  }

 private:
  long long LongLong() {
    static const long long kLimits[] = {1, 10, 1000000000, 10000000000LL, 100000000000000000LL,
                                        1000000000000000000LL};
    long long value = static_cast<long long>(random_());
    if (random_() % 4 != 0) value %= kLimits[random_() % 6];
    dump_may_change |= std::to_string(value).size() >= 19;
    return value;
  }

  double Double() {
    double value = -0.0;
    switch (random_() % 4) {
      case 0:
        do {  // infinities stay: they are written as 1e999
          const std::uint64_t bits = random_();
          std::memcpy(&value, &bits, sizeof value);
        } while (std::isnan(value));
        break;
      case 1: value = std::uniform_real_distribution<double>(-1e6, 1e6)(random_); break;
      case 2: value = static_cast<double>(static_cast<int>(random_() % 1000)); break;
    }
    dump_may_change |= value == 0 && std::signbit(value);
    return value;
  }

  std::string Text() {
    static const std::string kPieces[] = {
        "a", "Z", " ", "\"", "\\", "/", "\n", "\t", "\x01", "\x1f", "\x7f", "\xc3\xa9",
        "\xe2\x80\xa8", "\xe2\x80\xa9", "\xe2\x82\xac", "\xf0\x9f\x98\x80", "\xff",
        "plain text run", std::string(1, '\0')};
    std::string text;
    for (size_t n = random_() % 6; n > 0; --n) text += kPieces[random_() % std::size(kPieces)];
    return text;
  }

  std::mt19937_64 random_;
};

TEST(JsonRoundTrip, GeneratedValuesSurviveDumpAndParse) {
  RandomValues values(20240611);
  for (int i = 0; i < 3000; ++i) {
    values.dump_may_change = false;
    const Json original = values.Make(0);
    const std::string text = original.dump();
    std::string err;
    const Json reparsed = Parse(text, &err);
    ASSERT_EQ(err, "") << text;
    ASSERT_TRUE(reparsed == original) << text;
    if (!values.dump_may_change) {
      ASSERT_EQ(reparsed.dump(), text);
    }
  }
}

}  // namespace
