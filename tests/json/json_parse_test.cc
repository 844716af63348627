// The parser: error messages, nesting, strings and escapes, numbers,
// parse_multi.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "json11/json11.h"

namespace {

using json11::Json;
Json Parse(const std::string& text, std::string* error = nullptr) {
  std::string err;
  Json json = Json::parse(text, err);
  if (error) *error = err;
  return json;
}

std::string ParseError(const std::string& text) {
  std::string err;
  Parse(text, &err);
  return err;
}

struct Case {
  std::string input, expected;
};

TEST(JsonParse, EveryErrorMessageWithItsExactText) {
  const Case cases[] = {
      {"", "unexpected end of input"}, {"{\"a\":1", "unexpected end of input"},
      {"[1,]", "expected value, got ']' (93)"}, {"[1 2]", "expected ',' in list, got '2' (50)"},
      {"{1:2}", "expected '\"' in object, got '1' (49)"},
      {"{\"a\" 1}", "expected ':' in object, got '1' (49)"},
      {"{\"a\":1 \"b\":2}", "expected ',' in object, got '\"' (34)"},
      {"{\"a\":1,}", "expected '\"' in object, got '}' (125)"},
      {"tru", "parse error: expected true, got tru"},
      {"nulL", "parse error: expected null, got nulL"},
      {"fals", "parse error: expected false, got fals"},
      {"[t]", "parse error: expected true, got t]"}, {"1 2", "unexpected trailing '2' (50)"},
      {"{} x", "unexpected trailing 'x' (120)"}, {"-", "invalid (0) in number"},
      {"-a", "invalid 'a' (97) in number"}, {"01", "leading 0s not permitted in numbers"},
      {"1.", "at least one digit required in fractional part"},
      {"1.e5", "at least one digit required in fractional part"},
      {"1e+", "at least one digit required in exponent"},
      {"+1", "expected value, got '+' (43)"},
      {".5", "expected value, got '.' (46)"}, {"\xef\xbb\xbf" "1", "expected value, got (-17)"},
      {"\x7f", "expected value, got '\x7f' (127)"}, {"NaN", "expected value, got 'N' (78)"},
      {"\"a\tb\"", "unescaped (9) in string"},
      {std::string("\"a\0b\"", 5), "unescaped (0) in string"},
      {"\"\\x\"", "invalid escape character 'x' (120)"}, {"\"\\u12G4\"", "bad \\u escape: 12G4"},
      {"\"\\u12", "bad \\u escape: 12"}, {"\"\\u12\"", "bad \\u escape: 12\""},
      {"\"abc", "unexpected end of input in string"},
      {"\"abc\\", "unexpected end of input in string"},
      {"\x0b" "1", "expected value, got (11)"},  // vertical tab is not white space
      {std::string("\0", 1), "expected value, got (0)"},
      {std::string("[1]\0", 4), "unexpected trailing (0)"},  // the string overload sees the NUL
      // After the first failure the reader gives up.
      {"[1, x, ]", "expected value, got 'x' (120)"}, {"{\"a\": [1, 2,", "unexpected end of input"},
  };
  for (const auto& c : cases) {
    std::string err;
    EXPECT_TRUE(Parse(c.input, &err).is_null()) << "input: " << c.input;
    EXPECT_EQ(err, c.expected) << "input: " << c.input;
  }
}

std::string Nested(int depth, const std::string& open, const std::string& inner,
                   const std::string& close) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += open;
  text += inner;
  for (int i = 0; i < depth; ++i) text += close;
  return text;
}

TEST(JsonParse, NestingLimitIs200ForArraysAndObjects) {
  std::string err;
  Json deep = Parse(Nested(200, "[", "1", "]"), &err);
  EXPECT_EQ(err, "");
  for (int i = 0; i < 200; ++i) deep = deep[0];
  EXPECT_EQ(deep, Json(1));
  const std::string too_deep = "exceeded maximum nesting depth";
  const Case cases[] = {
      {Nested(201, "[", "1", "]"), too_deep},       {Nested(201, "[", "", "]"), ""},
      {Nested(202, "[", "", "]"), too_deep},        {Nested(200, "{\"k\":", "1", "}"), ""},
      {Nested(201, "{\"k\":", "1", "}"), too_deep}, {Nested(200, "{\"k\":", "{}", "}"), ""},
  };
  for (const auto& c : cases) EXPECT_EQ(ParseError(c.input), c.expected) << c.input.size();
}

// Up to 18 characters an integer is read exactly; longer ones become doubles.
TEST(JsonParse, IntegersUpTo18CharactersAreExact) {
  EXPECT_EQ(Parse("999999999999999999").longLong_value(), 999999999999999999LL);
  EXPECT_EQ(Parse("-99999999999999999").longLong_value(), -99999999999999999LL);
  EXPECT_EQ(Parse("-123456789").int_value(), -123456789);
  EXPECT_EQ(Parse("-999999999999999999").longLong_value(), -1000000000000000000LL);
  EXPECT_EQ(Parse("9223372036854775807").number_value(), 9223372036854775808.0);
  EXPECT_EQ(Parse("1e2").int_value(), 100);
  EXPECT_FALSE(std::signbit(Parse("-0").number_value()));
}

// strtod in the "C" locale is the reference for every double the parser reads.
void ExpectParsesLikeStrtod(const std::string& text) {
  const double expected = std::strtod(text.c_str(), nullptr);
  std::string err;
  const double actual = Parse(text, &err).number_value();
  ASSERT_EQ(err, "") << text;
  if (std::isnan(expected)) {
    EXPECT_TRUE(std::isnan(actual)) << text;
  } else {
    EXPECT_EQ(std::memcmp(&actual, &expected, sizeof actual), 0)
        << text << ": " << actual << " vs " << expected;
  }
}

TEST(JsonParse, DoublesMatchStrtodIncludingOutOfRange) {
  for (const char* text :
       {"1e400", "-1e400", "1e-400", "-1e-400", "4e-320", "2.4703282292062328e-324",
        "2.4703282292062327e-324", "1.7976931348623157e308", "1.7976931348623159e308",
        "0.000000000000000000000000000000000000001e-300", "123456789012345678901234567890e300",
        "0e99999999999999999999", "1e99999999999999999999", "1e-99999999999999999999",
        "-0.0", "0.1", "100.000030517578125", "9007199254740993.0", "1E+2", "1e-2",
        "1.00000000000000011102230246251565404236316680908203125"}) {
    ExpectParsesLikeStrtod(text);
  }
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 20000; ++i) {
    ExpectParsesLikeStrtod(((random() & 1) ? "-" : "") + std::to_string(random() % 1000000000) +
                           "." + std::to_string(random()) + "e" +
                           std::to_string(static_cast<int>(random() % 700) - 350));
  }
}

// Escapes as RFC 8259 section 7 defines them (U+1D11E as a surrogate pair), and
// containers written with the separators ", " and ": ", keys in byte order.
TEST(JsonParse, EscapesAndContainersMatchValuesBuiltInCode) {
  const Json built = Json::object{{"b", Json::object{}},
                                  {"a", Json::array{1, true, nullptr, "\xC3\xA9\xF0\x9D\x84\x9E\n"}}};
  const std::string text = R"({"a": [1, true, null, "\u00e9\ud834\udd1e\n"], "b": {}})";
  EXPECT_EQ(Parse(text), built);
  EXPECT_EQ(built.dump(), "{\"a\": [1, true, null, \"\xC3\xA9\xF0\x9D\x84\x9E\\n\"], \"b\": {}}");
  std::string err;
  EXPECT_TRUE(built.has_shape({{"a", Json::Array}, {"b", Json::Object}}, err));
  EXPECT_FALSE(built.has_shape({{"a", Json::Object}}, err));
}

TEST(JsonParseMulti, ValuesOneAfterAnotherAndFailureEndsWithNull) {
  struct MultiCase {
    const char* input;
    std::vector<Json> values;
    const char* err;  // "untouched" when parse_multi must leave it alone
  };
  const MultiCase cases[] = {
      {"1 2 3", {1, 2, 3}, "untouched"},
      {"{}[]\"s\"null", {Json::object{}, Json::array{}, "s", nullptr}, "untouched"},
      {"  7  ", {7}, "untouched"},
      {"", {}, "untouched"},
      {"1 x", {1, nullptr}, "expected value, got 'x' (120)"},
      {" ", {nullptr}, "unexpected end of input"},
      {"[1] [2", {Json::array{1}, nullptr}, "unexpected end of input"},
  };
  for (const auto& c : cases) {
    std::string err = "untouched";
    EXPECT_EQ(Json::parse_multi(c.input, err), c.values) << c.input;
    EXPECT_EQ(err, c.err) << c.input;
  }
}

}  // namespace
