// The value model: construction, accessors, indexing, equality, sharing.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "json11/json11.h"

namespace {

using json11::Json;

const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

TEST(JsonValue, ConstructorChoosesType) {
  const std::pair<Json, Json::Type> cases[] = {
      {Json(), Json::Null},  {nullptr, Json::Null},       {5, Json::Number},
      {5LL, Json::Number},   {5.0, Json::Number},         {true, Json::Bool},
      {"x", Json::String},   {Json::array{}, Json::Array}, {Json::object{}, Json::Object},
  };
  for (const auto& [value, type] : cases) EXPECT_EQ(value.type(), type) << value.dump();
}

// Conversions between representations, saturating, and neutral answers to
// questions of the wrong type.
TEST(JsonValue, NumberAccessors) {
  const std::pair<Json, int> ints[] = {
      {3.9, 3},          {-3.9, -3},        {4294967297LL, 1},  // low 32 bits
      {-4294967297LL, -1}, {kNan, 0},       {3e9, INT_MAX},     {-3e9, INT_MIN},
      {2147483647.9, INT_MAX}, {-2147483648.9, INT_MIN}, {kInf, INT_MAX},
      {true, 0},         {"12", 0},
  };
  for (const auto& [value, expected] : ints) EXPECT_EQ(value.int_value(), expected) << value.dump();
  const std::pair<Json, long long> longs[] = {
      {-3.9, -3},  {-1, -1},  {INT_MIN, INT_MIN},  {LLONG_MAX, LLONG_MAX},  {kNan, 0},
      {-kInf, LLONG_MIN},  {1e19, LLONG_MAX},  {-9223372036854775808.0, LLONG_MIN},
      {9007199254740992.0, 9007199254740992LL},
  };
  for (const auto& [value, expected] : longs) {
    EXPECT_EQ(value.longLong_value(), expected) << value.dump();
  }
  const std::pair<Json, double> doubles[] = {
      {4294967297LL, 4294967297.0},
      {9007199254740993LL, 9007199254740992.0},  // 2^53 + 1 rounds to 2^53
      {-7, -7.0},  {true, 0.0},  {"x", 0.0},
  };
  for (const auto& [value, expected] : doubles) {
    EXPECT_EQ(value.number_value(), expected) << value.dump();
  }
  EXPECT_FALSE(Json(1).bool_value() || Json().bool_value());
  EXPECT_TRUE(Json(true).bool_value());
  EXPECT_EQ(Json(1).string_value(), "");
  EXPECT_TRUE(Json("x").array_items().empty());
  EXPECT_TRUE(Json(Json::array{1}).object_items().empty());
}

TEST(JsonValue, StringConstructionKeepsBytes) {
  const std::string bytes("a\0b\xff", 4);
  EXPECT_EQ(Json(bytes).string_value(), bytes);
  EXPECT_EQ(Json(static_cast<const char*>(nullptr)), Json(""));
}

TEST(JsonValue, IndexingNeverInserts) {
  const Json empty_object = Json::object{};
  EXPECT_TRUE(empty_object["a"]["b"][3].is_null());
  EXPECT_TRUE(empty_object.object_items().empty());

  const Json object = Json::object{{"a", 1}, {"b", Json::array{true}}};
  EXPECT_EQ(object["a"].int_value(), 1);
  EXPECT_TRUE(object["b"][0].bool_value());
  EXPECT_TRUE(object["missing"].is_null() && object[0].is_null());
  EXPECT_EQ(object.object_items().size(), 2u);

  const Json array = Json::array{10, "x"};
  EXPECT_EQ(array[1].string_value(), "x");
  EXPECT_TRUE(array[2].is_null() && array[static_cast<size_t>(-1)].is_null() &&
              array["a"].is_null());
  for (const Json& scalar : {Json(), Json(1), Json(true), Json("s")}) {
    EXPECT_TRUE(scalar[0].is_null() && scalar["k"].is_null()) << scalar.dump();
  }
}

TEST(JsonValue, EqualityAcrossRepresentations) {
  const Json nan(kNan);
  const struct {
    Json a, b;
    bool equal;
  } cases[] = {
      {nullptr, Json(), true}, {5, 5.0, true}, {5LL, 5, true},
      {9007199254740993LL, 9007199254740992LL, true}, {0, -0.0, true},
      {Json::array{1, "a"}, Json::array{1.0, "a"}, true},
      {Json::object{{"a", 1LL}}, Json::object{{"a", 1.0}}, true}, {1, true, false},
      {0, Json(), false}, {"1", 1, false}, {1, 2LL, false},
      {Json::array{1}, Json::array{1, 1}, false},
      {Json::object{{"a", 1}}, Json::object{{"b", 1}}, false},
      {std::string("a\0b", 3), std::string("a\0c", 3), false},
      {nan, nan, false},  // even when the value is shared
      {Json::array{nan}, Json::array{nan}, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.a == c.b, c.equal) << c.a.dump() << " " << c.b.dump();
    EXPECT_EQ(c.a != c.b, !c.equal) << c.a.dump() << " " << c.b.dump();
  }
}

TEST(JsonValue, MovedFromIsNull) {
  Json original = Json::array{1, 2, 3};
  const Json copy = original;
  Json moved = std::move(original);
  EXPECT_TRUE(original.is_null());  // NOLINT(bugprone-use-after-move): documented state
  Json source = copy;
  moved = std::move(source);
  EXPECT_TRUE(source.is_null());  // NOLINT(bugprone-use-after-move): documented state
  EXPECT_EQ(moved, copy);
}

// Several threads make their first use of the shared constants and read,
// copy and compare one shared value at the same time (run under TSan too).
TEST(JsonValue, ConcurrentReadersOfOneValue) {
  std::string err;
  const Json shared = Json::parse(R"({"list": [1, 2.5, "x", null, true], "n": 7})", err);
  const std::string text = shared.dump();
  ASSERT_EQ(text, R"({"list": [1, 2.5, "x", null, true], "n": 7})");
  std::vector<std::thread> threads;
  std::vector<int> agreed(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 500; ++i) {
        const Json copy = shared;
        const Json fresh = Json::array{Json(), Json(false), Json::object{}};
        agreed[t] += copy == shared && copy.dump() == text && copy["list"][4].bool_value() &&
                     fresh[0].is_null() && !(shared < copy);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(agreed, std::vector<int>(4, 500));
}

}  // namespace
