// The value model: construction, accessors, indexing, equality, sharing.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "json11/json11.h"
#include "json_test_util.h"

namespace {

using json11::Json;
using json_test::ValueClass;

TEST(JsonValue, ConstructorChoosesRepresentationNotMagnitude) {
  EXPECT_EQ(ValueClass(Json()), "json11::JsonNull");
  EXPECT_EQ(ValueClass(Json(nullptr)), "json11::JsonNull");
  EXPECT_EQ(ValueClass(Json(5)), "json11::JsonInt");
  EXPECT_EQ(ValueClass(Json(5LL)), "json11::JsonLong");
  EXPECT_EQ(ValueClass(Json(5.0)), "json11::JsonDouble");
  EXPECT_EQ(ValueClass(Json(true)), "json11::JsonBoolean");
  EXPECT_EQ(ValueClass(Json("x")), "json11::JsonString");
  EXPECT_EQ(ValueClass(Json(Json::array{})), "json11::JsonArray");
  EXPECT_EQ(ValueClass(Json(Json::object{})), "json11::JsonObject");
}

TEST(JsonValue, TypesAndPredicates) {
  EXPECT_EQ(Json().type(), Json::Null);
  for (const Json& number : {Json(2.5), Json(7), Json(7LL)}) {
    EXPECT_EQ(number.type(), Json::Number);
    EXPECT_TRUE(number.is_number());
    EXPECT_FALSE(number.is_null() || number.is_bool() || number.is_string() ||
                 number.is_array() || number.is_object());
  }
  EXPECT_TRUE(Json().is_null());
  EXPECT_TRUE(Json(false).is_bool());
  EXPECT_TRUE(Json(std::string("s")).is_string());
  EXPECT_TRUE(Json(Json::array{1}).is_array());
  EXPECT_TRUE(Json(Json::object{{"k", 1}}).is_object());
}

TEST(JsonValue, NumberAccessorsPerRepresentation) {
  EXPECT_EQ(Json(3.9).int_value(), 3);
  EXPECT_EQ(Json(-3.9).int_value(), -3);
  EXPECT_EQ(Json(-3.9).longLong_value(), -3);
  EXPECT_EQ(Json(4294967297LL).int_value(), 1);  // low 32 bits
  EXPECT_EQ(Json(-4294967297LL).int_value(), -1);
  EXPECT_EQ(Json(4294967297LL).number_value(), 4294967297.0);
  EXPECT_EQ(Json(-1).longLong_value(), -1);
  EXPECT_EQ(Json(INT_MIN).longLong_value(), static_cast<long long>(INT_MIN));
  EXPECT_EQ(Json(LLONG_MAX).longLong_value(), LLONG_MAX);
  // 2^53 + 1 rounds to the nearest double, 2^53.
  EXPECT_EQ(Json(9007199254740993LL).number_value(), 9007199254740992.0);
  EXPECT_EQ(Json(-7).number_value(), -7.0);
}

TEST(JsonValue, DoubleToIntegerSaturatesAndNanGivesZero) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Json(nan).int_value(), 0);
  EXPECT_EQ(Json(nan).longLong_value(), 0);
  EXPECT_EQ(Json(3e9).int_value(), INT_MAX);
  EXPECT_EQ(Json(-3e9).int_value(), INT_MIN);
  EXPECT_EQ(Json(2147483647.9).int_value(), INT_MAX);
  EXPECT_EQ(Json(-2147483648.9).int_value(), INT_MIN);
  EXPECT_EQ(Json(inf).int_value(), INT_MAX);
  EXPECT_EQ(Json(-inf).longLong_value(), LLONG_MIN);
  EXPECT_EQ(Json(1e19).longLong_value(), LLONG_MAX);
  EXPECT_EQ(Json(-9223372036854775808.0).longLong_value(), LLONG_MIN);
  EXPECT_EQ(Json(9007199254740992.0).longLong_value(), 9007199254740992LL);
}

TEST(JsonValue, WrongTypeQuestionsGetNeutralAnswers) {
  EXPECT_EQ(Json(true).int_value(), 0);
  EXPECT_EQ(Json(true).number_value(), 0.0);
  EXPECT_FALSE(Json(1).bool_value());
  EXPECT_EQ(Json("x").number_value(), 0.0);
  EXPECT_EQ(Json("12").int_value(), 0);
  EXPECT_EQ(Json(1).string_value(), "");
  EXPECT_TRUE(Json("x").array_items().empty());
  EXPECT_TRUE(Json(Json::array{1}).object_items().empty());
  EXPECT_TRUE(Json().bool_value() == false);
  EXPECT_TRUE(Json(true).bool_value());
}

TEST(JsonValue, StringConstructionKeepsBytes) {
  const std::string bytes("a\0b\xff", 4);
  EXPECT_EQ(Json(bytes).string_value(), bytes);
  std::string moved = bytes;
  EXPECT_EQ(Json(std::move(moved)).string_value(), bytes);
  EXPECT_EQ(Json("plain").string_value(), "plain");
  const char* null_text = nullptr;
  const Json from_null(null_text);
  EXPECT_TRUE(from_null.is_string());
  EXPECT_EQ(from_null.string_value(), "");
}

TEST(JsonValue, IndexingNeverInserts) {
  const Json empty_object = Json::object{};
  EXPECT_TRUE(empty_object["a"]["b"][3].is_null());
  EXPECT_TRUE(empty_object.object_items().empty());

  const Json object = Json::object{{"a", 1}, {"b", Json::array{true}}};
  EXPECT_EQ(object["a"].int_value(), 1);
  EXPECT_TRUE(object["b"][0].bool_value());
  EXPECT_TRUE(object["missing"].is_null());
  EXPECT_TRUE(object[0].is_null());
  EXPECT_EQ(object.object_items().size(), 2u);

  const Json array = Json::array{10, "x"};
  EXPECT_EQ(array[1].string_value(), "x");
  EXPECT_TRUE(array[2].is_null());
  EXPECT_TRUE(array[static_cast<size_t>(-1)].is_null());
  EXPECT_TRUE(array["a"].is_null());
  for (const Json& scalar : {Json(), Json(1), Json(true), Json("s")}) {
    EXPECT_TRUE(scalar[0].is_null());
    EXPECT_TRUE(scalar["k"].is_null());
  }
}

TEST(JsonValue, ObjectIteratesInByteOrderOfKeys) {
  const Json object = Json::object{{"b", 1}, {"a", 2}, {"\xc3\xa9", 3}, {"B", 4}};
  std::vector<std::string> keys;
  for (const auto& member : object.object_items()) keys.push_back(member.first);
  EXPECT_EQ(keys, (std::vector<std::string>{"B", "a", "b", "\xc3\xa9"}));
}

TEST(JsonValue, EqualityAcrossRepresentations) {
  EXPECT_TRUE(Json(nullptr) == Json());
  EXPECT_TRUE(Json(5) == Json(5.0));
  EXPECT_TRUE(Json(5LL) == Json(5));
  EXPECT_TRUE(Json(9007199254740993LL) == Json(9007199254740992LL));
  EXPECT_TRUE(Json(0) == Json(-0.0));
  EXPECT_FALSE(Json(1) == Json(true));
  EXPECT_FALSE(Json(0) == Json());
  EXPECT_FALSE(Json("1") == Json(1));
  EXPECT_TRUE(Json(1) != Json(2LL));
  EXPECT_TRUE(Json(Json::array{1, "a"}) == Json(Json::array{1.0, "a"}));
  EXPECT_FALSE(Json(Json::array{1}) == Json(Json::array{1, 1}));
  EXPECT_TRUE(Json(Json::object{{"a", 1LL}}) == Json(Json::object{{"a", 1.0}}));
  EXPECT_FALSE(Json(Json::object{{"a", 1}}) == Json(Json::object{{"b", 1}}));
  EXPECT_TRUE(Json(std::string("a\0b", 3)) != Json(std::string("a\0c", 3)));
}

TEST(JsonValue, NanIsNotEqualToItselfEvenWhenShared) {
  const Json nan(std::numeric_limits<double>::quiet_NaN());
  const Json same = nan;
  EXPECT_FALSE(nan == nan);
  EXPECT_FALSE(nan == same);
  EXPECT_TRUE(nan != same);
  EXPECT_FALSE(Json(Json::array{nan}) == Json(Json::array{nan}));
}

TEST(JsonValue, CopiesShareAndMovedFromIsNull) {
  Json original = Json::array{1, 2, 3};
  const Json copy = original;
  EXPECT_EQ(&copy.array_items(), &original.array_items());
  Json moved = std::move(original);
  EXPECT_EQ(&moved.array_items(), &copy.array_items());
  EXPECT_TRUE(original.is_null());  // NOLINT(bugprone-use-after-move): documented state
  Json assigned;
  assigned = copy;
  EXPECT_EQ(&assigned.array_items(), &copy.array_items());
  assigned = Json("other");
  EXPECT_EQ(assigned.string_value(), "other");
  EXPECT_EQ(copy.array_items().size(), 3u);
}

// Several threads make their first use of the shared constants and read,
// copy and compare one shared value at the same time (run under TSan too).
TEST(JsonValue, ConcurrentReadersOfOneValue) {
  std::string err;
  const Json shared = Json::parse(R"({"list": [1, 2.5, "x", null, true], "n": 7})", err);
  ASSERT_TRUE(err.empty());
  const std::string text = shared.dump();
  std::vector<std::thread> threads;
  std::vector<int> agreed(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 500; ++i) {
        const Json copy = shared;
        const Json fresh = Json::array{Json(), Json(false), Json::object{}};
        if (copy == shared && copy.dump() == text && copy["list"][4].bool_value() &&
            fresh[0].is_null() && !(shared < copy)) {
          ++agreed[t];
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(agreed, std::vector<int>(4, 500));
}

}  // namespace
