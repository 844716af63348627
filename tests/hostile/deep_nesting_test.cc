// Hostile nesting: the JSON parser must refuse 100,000 opening brackets with
// its depth message, quickly and without exhausting the stack (the limit is
// 200, so the recursion never goes deeper than that whatever the input).
// Values built in code have no limit: they must dump and be released at any
// depth.
#include <gtest/gtest.h>

#include <string>

#include "json11/json11.h"

namespace {

using json11::Json;

std::string Repeat(const std::string& piece, size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (size_t i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(DeepNesting, HundredThousandOpeningBracketsHitTheDepthLimit) {
  for (const std::string& opener : {std::string("["), std::string("{\"k\":"),
                                    std::string("[{\"a\":")}) {
    std::string err;
    Json value = Json::parse(Repeat(opener, 100000), err);
    EXPECT_TRUE(value.is_null()) << opener;
    EXPECT_EQ(err, "exceeded maximum nesting depth") << opener;
  }
}

TEST(DeepNesting, MillionLevelsBuiltInCodeDumpAndReleaseWithSharedPartsKept) {
  constexpr size_t kDepth = 1000000;
  Json shared = Json::object{{"k", Json::array{1}}};
  Json deep = shared;
  for (size_t i = 0; i < kDepth; ++i) {
    deep = i % 2 == 0 ? Json(Json::array{deep}) : Json(Json::object{{"k", deep}});
  }
  const Json keeper = deep["k"][0];  // holds all but the two outermost levels
  const std::string expected =
      Repeat("{\"k\": [", kDepth / 2) + shared.dump() + Repeat("]}", kDepth / 2);
  EXPECT_TRUE(deep.dump() == expected);
  deep = Json();
  // Releasing the outer levels took nothing from the parts still held.
  const Json* level = &keeper;
  for (size_t i = kDepth - 2; i-- > 0;) level = i % 2 == 0 ? &(*level)[0] : &(*level)["k"];
  EXPECT_EQ(*level, shared);
}

}  // namespace
