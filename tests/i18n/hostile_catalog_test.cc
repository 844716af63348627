// Catalog images crafted to make a load expensive: strings that share bytes,
// and keys that share a home slot under the standard library's string hash.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/heap_peak.h"
#include "i18n/mo.h"
#include "i18n/mo_image.h"

namespace I18N {

// Reads a catalog's index: its size, its hash seed, and how far the farthest
// message sits from the slot its hash points at (what a miss may probe).
class MOIndexInspector {
 public:
  static size_t LongestProbe(const MO& mo) {
    const size_t mask = mo.slots.size() - 1;
    size_t longest = 0;
    for (size_t i = 0; i < mo.slots.size(); ++i) {
      if (mo.slots[i].record != 0) longest = std::max(longest, (i - mo.slots[i].hash) & mask);
    }
    return longest;
  }
  static size_t SlotCount(const MO& mo) { return mo.slots.size(); }
  static uint64_t Seed(const MO& mo) { return mo.seed; }
};

}  // namespace I18N

namespace {

using heap_peak::PeakHeapBytes;
using I18N::MO;
using i18n_test::BuildImage;
using i18n_test::GermanRule;
using i18n_test::PutWord;
using i18n_test::RawMessage;

MO FromImage(const std::vector<unsigned char>& image) {
  return MO(image.data(), image.size(), GermanRule, 2);
}

// 64 messages whose translations all point at one run of 262,144 NUL bytes:
// 263 KB that claim 16 MB of strings and 16 million plural forms.
std::vector<unsigned char> SharedRunImage() {
  std::vector<RawMessage> messages;
  for (int i = 0; i < 64; ++i) messages.push_back({"message " + std::to_string(i), ""});
  std::vector<unsigned char> image = BuildImage(messages);
  const uint32_t run = static_cast<uint32_t>(image.size());
  image.resize(image.size() + 262144, 0);
  const size_t translations = 28 + 8 * messages.size();
  for (size_t i = 0; i < messages.size(); ++i) {
    PutWord(image, translations + 8 * i, 262144, false);
    PutWord(image, translations + 8 * i + 4, run, false);
  }
  return image;
}

TEST(HostileCatalog, LoadMemoryIsBoundedByTheImage) {
  std::vector<RawMessage> messages;
  for (int i = 0; i < 2000; ++i) {
    messages.push_back({std::string(200, 'k') + std::to_string(i), "t"});
  }
  const std::vector<unsigned char> plain = BuildImage(messages);
  const size_t plainPeak = PeakHeapBytes([&] { FromImage(plain); });
  if (plainPeak == 0) {
    GTEST_SKIP() << "the heap is counted only under AddressSanitizer or ThreadSanitizer";
  }
  // A plain catalog is held about once: no key or form is stored twice.
  EXPECT_LE(plainPeak, plain.size() * 5 / 4);
  const struct {
    const char* what;
    std::vector<unsigned char> image;
    bool accepted;
  } cases[] = {
      {"translations sharing one run of bytes", SharedRunImage(), false},
      {"one translation of 262,145 NULs, each ending a form",
       BuildImage({{"many", std::string(262145, '\0')}}), true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    bool accepted = false;
    const size_t peak = PeakHeapBytes([&] { accepted = FromImage(c.image).getIsInited(); });
    EXPECT_EQ(accepted, c.accepted);
    EXPECT_LE(peak, 40 * c.image.size() + (1u << 20));
  }
  const MO many = FromImage(cases[1].image);
  EXPECT_EQ(many.translatePlural("many", "lots", 5, ""), "");
}

// Keys whose standard string hashes fall into one window of 64 slots of an
// index of 8,192: with an unseeded hash they form one long probe run.
TEST(HostileCatalog, KeysCraftedForTheStandardHashDoNotCluster) {
  constexpr size_t kKeys = 3000;
  std::vector<RawMessage> messages;
  for (size_t i = 0; messages.size() < kKeys; ++i) {
    std::string key = "k" + std::to_string(i);
    if ((std::hash<std::string_view>()(key) & 8191) < 64) {
      messages.push_back({key, "v" + key});
    }
  }
  const MO mo = FromImage(BuildImage(messages));
  ASSERT_TRUE(mo.getIsInited());
  EXPECT_LE(I18N::MOIndexInspector::LongestProbe(mo), 128u);
  // No index grown to spread the keys, and a new secret seed for every load.
  EXPECT_LE(I18N::MOIndexInspector::SlotCount(mo), 4 * kKeys);
  EXPECT_NE(I18N::MOIndexInspector::Seed(mo),
            I18N::MOIndexInspector::Seed(FromImage(BuildImage(messages))));
  for (const RawMessage& m : messages) ASSERT_EQ(mo.translate(m.source, ""), m.translation);
  EXPECT_EQ(mo.translate("k-absent", ""), "k-absent");
}

}  // namespace
