// UUIDs and nonces: the RFC 4122 text layout over many draws, and enough
// spread in every random digit that a stuck or reused draw shows.
#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <future>
#include <set>
#include <string>
#include <vector>

#include "common/identifiers.h"
#include "common/string_utils.h"

namespace {

constexpr int kDraws = 20000;

bool IsLowerHex(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

// Checks one id against its layout; `dashes` lists the hyphen positions,
// `version` and `variant` the positions of the fixed digits.
void ExpectLayout(const std::string& id, size_t length, const std::vector<size_t>& dashes,
                  size_t version, size_t variant) {
  ASSERT_EQ(id.size(), length) << id;
  for (size_t i = 0; i < id.size(); ++i) {
    const bool dash = std::find(dashes.begin(), dashes.end(), i) != dashes.end();
    ASSERT_TRUE(dash ? id[i] == '-' : IsLowerHex(id[i])) << id << " at " << i;
  }
  ASSERT_EQ(id[version], '4') << id;
  ASSERT_NE(std::string("89ab").find(id[variant]), std::string::npos) << id;
}

// Over many ids, every random digit position takes all 16 values (and the
// variant digit all four of its values).
void ExpectSpread(const std::vector<std::string>& ids, size_t version, size_t variant) {
  std::vector<std::bitset<16>> seen(ids.front().size());
  for (const std::string& id : ids) {
    for (size_t i = 0; i < id.size(); ++i) {
      if (IsLowerHex(id[i])) seen[i].set(id[i] <= '9' ? id[i] - '0' : id[i] - 'a' + 10);
    }
  }
  for (size_t i = 0; i < seen.size(); ++i) {
    if (ids.front()[i] == '-' || i == version) continue;
    EXPECT_EQ(seen[i].count(), i == variant ? 4u : 16u) << "position " << i;
  }
}

TEST(Identifiers, UuidAndNonceLayoutAndSpread) {
  std::vector<std::string> uuids, nonces;
  for (int i = 0; i < kDraws; ++i) {
    uuids.push_back(i % 2 ? tessel::random_uuid() : tessel::StringUtils::generateUUID());
    ExpectLayout(uuids.back(), 36, {8, 13, 18, 23}, 14, 19);
    nonces.push_back(tessel::nonce());
    ExpectLayout(nonces.back(), 32, {}, 12, 16);
  }
  ExpectSpread(uuids, 14, 19);
  ExpectSpread(nonces, 12, 16);
  for (const auto* ids : {&uuids, &nonces}) {
    EXPECT_EQ(std::set<std::string>(ids->begin(), ids->end()).size(), ids->size());
  }
}

TEST(Identifiers, ConcurrentDrawsAreDistinct) {
  auto draw = [] {
    std::vector<std::string> ids;
    for (int i = 0; i < 500; ++i) ids.push_back(tessel::random_uuid());
    return ids;
  };
  std::vector<std::future<std::vector<std::string>>> runs;
  for (int i = 0; i < 4; ++i) runs.push_back(std::async(std::launch::async, draw));
  std::set<std::string> all;
  for (auto& run : runs) {
    ASSERT_EQ(run.wait_for(std::chrono::seconds(120)), std::future_status::ready);
    for (const std::string& id : run.get()) all.insert(id);
  }
  EXPECT_EQ(all.size(), 2000u);
}

}  // namespace
