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
#include "json_test_util.h"

namespace {

using json11::Json;
using json_test::Parse;
using json_test::ParseError;
using json_test::ValueClass;

struct ErrorCase {
  std::string input;
  std::string message;
};

TEST(JsonParse, EveryErrorMessageWithItsExactText) {
  const ErrorCase cases[] = {
      {"", "unexpected end of input"},
      {"   ", "unexpected end of input"},
      {"[1,", "unexpected end of input"},
      {"{\"a\":1", "unexpected end of input"},
      {"[1,]", "expected value, got ']' (93)"},
      {"[1 2]", "expected ',' in list, got '2' (50)"},
      {"{1:2}", "expected '\"' in object, got '1' (49)"},
      {"{\"a\" 1}", "expected ':' in object, got '1' (49)"},
      {"{\"a\":1 \"b\":2}", "expected ',' in object, got '\"' (34)"},
      {"{\"a\":1,}", "expected '\"' in object, got '}' (125)"},
      {"tru", "parse error: expected true, got tru"},
      {"nulL", "parse error: expected null, got nulL"},
      {"fals", "parse error: expected false, got fals"},
      {"[t]", "parse error: expected true, got t]"},
      {"1 2", "unexpected trailing '2' (50)"},
      {"{} x", "unexpected trailing 'x' (120)"},
      {"-", "invalid (0) in number"},
      {"-a", "invalid 'a' (97) in number"},
      {"01", "leading 0s not permitted in numbers"},
      {"-01", "leading 0s not permitted in numbers"},
      {"1.", "at least one digit required in fractional part"},
      {"1.e5", "at least one digit required in fractional part"},
      {"1e+", "at least one digit required in exponent"},
      {"1E", "at least one digit required in exponent"},
      {"+1", "expected value, got '+' (43)"},
      {".5", "expected value, got '.' (46)"},
      {"\xef\xbb\xbf" "1", "expected value, got (-17)"},
      {"\x7f", "expected value, got '\x7f' (127)"},
      {"NaN", "expected value, got 'N' (78)"},
      {"\"a\tb\"", "unescaped (9) in string"},
      {std::string("\"a\0b\"", 5), "unescaped (0) in string"},
      {"\"\\x\"", "invalid escape character 'x' (120)"},
      {"\"\\u12G4\"", "bad \\u escape: 12G4"},
      {"\"\\u12", "bad \\u escape: 12"},
      {"\"\\u12\"", "bad \\u escape: 12\""},
      {"\"abc", "unexpected end of input in string"},
      {"\"abc\\", "unexpected end of input in string"},
      {"[\"a\", \"b", "unexpected end of input in string"},
  };
  for (const auto& c : cases) {
    std::string err;
    const Json result = Json::parse(c.input, err);
    EXPECT_EQ(err, c.message) << "input: " << c.input;
    EXPECT_TRUE(result.is_null()) << "input: " << c.input;
  }
}

TEST(JsonParse, FirstErrorWinsAndSuccessLeavesErrUntouched) {
  std::string err = "left by caller";
  EXPECT_EQ(Json::parse(" 1 ", err), Json(1));
  EXPECT_EQ(err, "left by caller");
  // After the first failure the reader gives up; err keeps that message.
  EXPECT_EQ(ParseError("[1, x, ]"), "expected value, got 'x' (120)");
  EXPECT_EQ(ParseError("{\"a\": [1, 2,"), "unexpected end of input");
}

TEST(JsonParse, NullCStringAndCStringStopsAtNul) {
  std::string err;
  EXPECT_TRUE(Json::parse(static_cast<const char*>(nullptr), err).is_null());
  EXPECT_EQ(err, "null input");
  err.clear();
  EXPECT_EQ(Json::parse("[1]\0garbage", err), Json(Json::array{1}));
  EXPECT_EQ(err, "");
  // The std::string overload sees the NUL byte itself.
  EXPECT_EQ(ParseError(std::string("[1]\0", 4)), "unexpected trailing (0)");
  EXPECT_EQ(ParseError(std::string("\0", 1)), "expected value, got (0)");
}

TEST(JsonParse, LiteralsAndWhitespace) {
  EXPECT_EQ(Parse(" \t\r\ntrue\n"), Json(true));
  EXPECT_EQ(Parse("false"), Json(false));
  EXPECT_TRUE(Parse("null").is_null());
  EXPECT_EQ(ParseError("\x0b" "1"), "expected value, got (11)");  // vertical tab is not whitespace
  EXPECT_EQ(Parse("[ ]"), Json(Json::array{}));
  EXPECT_EQ(Parse("{ }"), Json(Json::object{}));
  const Json nested = Parse(R"( { "a" : [ 1 , { "b" : null } ] , "c" : "d" } )");
  EXPECT_EQ(nested, Json(Json::object{{"a", Json::array{1, Json::object{{"b", nullptr}}}}, {"c", "d"}}));
}

TEST(JsonParse, RepeatedKeyKeepsTheLaterValue) {
  const Json object = Parse(R"({"a": 1, "b": 2, "a": [3]})");
  EXPECT_EQ(object.object_items().size(), 2u);
  EXPECT_EQ(object["a"], Json(Json::array{3}));
  EXPECT_EQ(object["b"], Json(2));
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
  Json deep = Json::parse(Nested(200, "[", "1", "]"), err);
  EXPECT_EQ(err, "");
  for (int i = 0; i < 200; ++i) deep = deep[0];
  EXPECT_EQ(deep, Json(1));
  EXPECT_EQ(ParseError(Nested(201, "[", "1", "]")), "exceeded maximum nesting depth");
  EXPECT_EQ(ParseError(Nested(201, "[", "", "]")), "");
  EXPECT_EQ(ParseError(Nested(202, "[", "", "]")), "exceeded maximum nesting depth");

  EXPECT_EQ(ParseError(Nested(200, "{\"k\":", "1", "}")), "");
  EXPECT_EQ(ParseError(Nested(201, "{\"k\":", "1", "}")), "exceeded maximum nesting depth");
  EXPECT_EQ(ParseError(Nested(200, "{\"k\":", "{}", "}")), "");
  EXPECT_EQ(ParseError(Nested(100000, "[", "", "]")), "exceeded maximum nesting depth");
}

TEST(JsonParse, EscapesAndSurrogates) {
  EXPECT_EQ(Parse(R"("\ud83d\ude00")").string_value(), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Parse(R"("\uD83D\uDE00")").string_value(), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Parse(R"("\ud83d")").string_value(), "\xED\xA0\xBD");      // lone high
  EXPECT_EQ(Parse(R"("\ude00x")").string_value(), "\xED\xB8\x80x");    // lone low
  EXPECT_EQ(Parse(R"("\ud83dx\ude00")").string_value(), "\xED\xA0\xBDx\xED\xB8\x80");
  EXPECT_EQ(Parse(R"("\ud83d\ud83d\ude00")").string_value(), "\xED\xA0\xBD\xF0\x9F\x98\x80");
  EXPECT_EQ(Parse(R"("\u00e9")").string_value(), "\xC3\xA9");
  EXPECT_EQ(Parse(R"("\u0041\u07ff\u0800\uffff")").string_value(),
            "A\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
  EXPECT_EQ(Parse(R"("\u0000")").string_value(), std::string("\0", 1));
  EXPECT_EQ(Parse(R"("\"\\\/\b\f\n\r\t")").string_value(), "\"\\/\b\f\n\r\t");
  // Bytes from 0x80 up are copied as they come, valid UTF-8 or not.
  EXPECT_EQ(Parse("\"\xff\xfe\xc3\xa9\"").string_value(), "\xff\xfe\xc3\xa9");
  EXPECT_EQ(Parse("\"\x7f\"").string_value(), "\x7f");
}

TEST(JsonParse, NumberRepresentationFollowsTextLength) {
  const std::pair<const char*, const char*> cases[] = {
      {"123456789", "json11::JsonInt"},
      {"-12345678", "json11::JsonInt"},
      {"-0", "json11::JsonInt"},
      {"1234567890", "json11::JsonLong"},
      {"2147483647", "json11::JsonLong"},
      {"-123456789", "json11::JsonLong"},
      {"999999999999999999", "json11::JsonLong"},
      {"-99999999999999999", "json11::JsonLong"},
      {"-999999999999999999", "json11::JsonDouble"},
      {"9223372036854775807", "json11::JsonDouble"},
      {"1.0", "json11::JsonDouble"},
      {"1e2", "json11::JsonDouble"},
      {"0.5", "json11::JsonDouble"},
  };
  for (const auto& [text, value_class] : cases) {
    EXPECT_EQ(ValueClass(Parse(text)), value_class) << text;
  }
  EXPECT_EQ(Parse("999999999999999999").longLong_value(), 999999999999999999LL);
  EXPECT_EQ(Parse("-99999999999999999").longLong_value(), -99999999999999999LL);
  EXPECT_EQ(Parse("-123456789").int_value(), -123456789);
  EXPECT_EQ(Parse("9223372036854775807").number_value(), 9223372036854775808.0);
  EXPECT_EQ(Parse("1e2").int_value(), 100);
  EXPECT_EQ(std::signbit(Parse("-0").number_value()), false);
}

// strtod in the "C" locale is the reference for every double the parser reads.
void ExpectParsesLikeStrtod(const std::string& text) {
  const double expected = std::strtod(text.c_str(), nullptr);
  std::string err;
  const Json parsed = Json::parse(text, err);
  ASSERT_EQ(err, "") << text;
  const double actual = parsed.number_value();
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
    std::string text = (random() & 1) ? "-" : "";
    text += std::to_string(random() % 1000000000);
    text += "." + std::to_string(random());
    text += "e" + std::to_string(static_cast<int>(random() % 700) - 350);
    ExpectParsesLikeStrtod(text);
  }
}

TEST(JsonParseMulti, ValuesOneAfterAnother) {
  std::string err = "untouched";
  std::vector<Json> values = Json::parse_multi("1 2 3", err);
  EXPECT_EQ(values, (std::vector<Json>{Json(1), Json(2), Json(3)}));
  EXPECT_EQ(err, "untouched");

  values = Json::parse_multi("{}[]\"s\"null", err);
  EXPECT_EQ(values, (std::vector<Json>{Json(Json::object{}), Json(Json::array{}), Json("s"), Json()}));
  EXPECT_EQ(err, "untouched");

  values = Json::parse_multi("  7  ", err);
  EXPECT_EQ(values, std::vector<Json>{Json(7)});
}

TEST(JsonParseMulti, FailureEndsWithNullAndEmptyInputGivesNothing) {
  std::string err;
  std::vector<Json> values = Json::parse_multi("1 x", err);
  ASSERT_EQ(values.size(), 2u);
  EXPECT_EQ(values[0], Json(1));
  EXPECT_TRUE(values[1].is_null());
  EXPECT_EQ(err, "expected value, got 'x' (120)");

  err = "untouched";
  EXPECT_TRUE(Json::parse_multi("", err).empty());
  EXPECT_EQ(err, "untouched");

  values = Json::parse_multi(" ", err);
  ASSERT_EQ(values.size(), 1u);
  EXPECT_TRUE(values[0].is_null());
  EXPECT_EQ(err, "unexpected end of input");

  err.clear();
  values = Json::parse_multi("[1] [2", err);
  ASSERT_EQ(values.size(), 2u);
  EXPECT_EQ(values[0], Json(Json::array{1}));
  EXPECT_TRUE(values[1].is_null());
  EXPECT_EQ(err, "unexpected end of input");
}

}  // namespace
