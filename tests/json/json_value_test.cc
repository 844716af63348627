// The value model: indexing, moves, shared readers.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "json11/json11.h"

namespace {

using json11::Json;

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
