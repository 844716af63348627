// Sizes, offsets and counts at the edges of a 32-bit size_t and a 32-bit
// long, where a 64-bit build has room to spare. No test allocates more than a
// few bytes: the big files are sparse, the big counts live in hand-made
// headers. The whole suite is meant for the 32-bit build and is run by every
// build.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/date_time.h"
#include "common/file.h"
#include "common/file_utils.h"
#include "common/imp_win/generic_file_manager.h"
#include "common/imp_win/generic_timer.h"
#include "common/string_utils.h"
#include "common/util_entrance.h"
#include "i18n/i18n_utils.h"
#include "i18n/mo.h"
#include "json11/json11.h"
#include "support/scoped_time_zone.h"

namespace {

constexpr unsigned long long kFourGiB = 1ULL << 32;
const std::string kMarker = "0123456789";
constexpr bool kNarrowSize = std::numeric_limits<std::size_t>::max() < kFourGiB;

// A sparse file of `size` bytes under the test's temporary directory, removed
// with the object; empty path when the file system holds no such file.
class SparseFile {
 public:
  explicit SparseFile(unsigned long long size)
      : path_(::testing::TempDir() + "tessel-limits-" + std::to_string(size)) {
    std::error_code error;
    { std::ofstream create(path_, std::ios::binary | std::ios::trunc); }
    std::filesystem::resize_file(path_, size, error);
    if (error) path_.clear();
  }
  ~SparseFile() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove(path_, ignored);
  }
  // Overwrites the bytes at `offset`.
  void Put(unsigned long long offset, const std::string& bytes) const {
    std::fstream out(path_, std::ios::in | std::ios::out | std::ios::binary);
    out.seekp(static_cast<std::streamoff>(offset));
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

#define SKIP_WITHOUT(file) \
  if (!(file).path().empty()) {  \
  } else                         \
    GTEST_SKIP() << "the temporary directory holds no sparse 4 GiB file"

TEST(FileLimits, ChunksAndSizesBeyondFourGiB) {
  const SparseFile file(kFourGiB + kMarker.size());
  SKIP_WITHOUT(file);
  file.Put(kFourGiB, kMarker);
  std::string chunk;
  EXPECT_EQ(tessel::FileUtils::readChunkFromFile(file.path(), kFourGiB / 16, chunk, 16),
            static_cast<long long>(kMarker.size()));
  EXPECT_EQ(chunk, kMarker);
  EXPECT_EQ(tessel::FileUtils::readChunkFromFile(file.path(), kFourGiB / 16 - 1, chunk, 16), 16);
  EXPECT_EQ(chunk, std::string(16, '\0'));
  // A chunk size beyond a 32-bit size_t that only a short tail answers.
  EXPECT_EQ(tessel::FileUtils::readChunkFromFile(file.path(), 1, chunk, kFourGiB),
            static_cast<long long>(kMarker.size()));
  EXPECT_EQ(chunk, kMarker);

  tessel::UtilEntrance::InjectPlatformImp(nullptr, std::make_shared<tessel::GenericFileManager>(),
                                          std::make_shared<tessel::GenericTImer>());
  tessel::File object(file.path());
  EXPECT_EQ(object.fileSize(), kFourGiB + kMarker.size());
  long long length = -1;
  EXPECT_EQ(object.readChunk(kFourGiB / tessel::File::kChunkLength, &length), kMarker);
  EXPECT_EQ(length, static_cast<long long>(kMarker.size()));
}

// A whole-file read of more than a 32-bit address space can hold fails
// instead of reading the size modulo 4 GiB (10 bytes of a 4 GiB + 10 byte
// file, nothing of a 4 GiB one) or throwing std::bad_alloc (3 GiB).
TEST(FileLimits, WholeReadsOfFilesBeyondTheAddressSpaceFail) {
  if (!kNarrowSize) GTEST_SKIP() << "a 64-bit size_t would read the whole 4 GiB";
  for (const unsigned long long size : {kFourGiB / 4 * 3, kFourGiB, kFourGiB + kMarker.size()}) {
    SCOPED_TRACE(size);
    const SparseFile file(size);
    SKIP_WITHOUT(file);
    char* buffer = reinterpret_cast<char*>(&buffer);
    EXPECT_EQ(tessel::FileUtils::readFile(file.path(), &buffer), 0);
    EXPECT_EQ(buffer, nullptr);
    delete[] buffer;
    long long length = -1;
    char* whole = tessel::File(file.path()).read(&length);
    EXPECT_EQ(whole, nullptr);
    EXPECT_EQ(length, 0);
    delete[] whole;
    std::string chunk = "previous";
    EXPECT_EQ(tessel::FileUtils::readChunkFromFile(file.path(), 0, chunk, size), 0);
    EXPECT_EQ(chunk, "");
  }
}

// Little-endian MO header words: magic, revision, count, source and target
// table offsets, an empty hash table; then the tables and one string.
std::vector<unsigned char> MoImage(std::vector<std::uint32_t> words) {
  std::vector<unsigned char> image;
  for (const std::uint32_t word : words) {
    for (int shift = 0; shift < 32; shift += 8) image.push_back((word >> shift) & 0xFF);
  }
  image.insert(image.end(), {'a', 0, 'b', 0});
  return image;
}

// Counts and offsets whose sums wrap around at 32 bits, so that a check in
// size_t arithmetic would pass them; each must leave the catalog uninitialised.
TEST(MoLimits, CountsAndOffsetsThatWrapAt32BitsAreRefused) {
  const std::uint32_t magic = 0x950412de, sources = 28, targets = 36, text = 44;
  struct MoCase {
    const char* what;
    std::vector<std::uint32_t> words;
  };
  const MoCase kCases[] = {
      {"count * 8 wraps", {magic, 0, 0x20000000, sources, targets, 0, 0, 1, text, 1, text + 2}},
      {"source table wraps", {magic, 0, 1, 0xFFFFFFFC, targets, 0, 0, 1, text, 1, text + 2}},
      {"source end wraps", {magic, 0, 1, sources, targets, 0, 0, 0x20, 0xFFFFFFF0, 1, text + 2}},
      {"target length wraps", {magic, 0, 1, sources, targets, 0, 0, 1, text, 0xFFFFFFFF, 2}},
  };
  for (const MoCase& c : kCases) {
    const std::vector<unsigned char> image = MoImage(c.words);
    const I18N::MO mo(image.data(), image.size(), I18N::MO::DEFAULT_PLURAL_EXPRESSION, 2);
    EXPECT_FALSE(mo.getIsInited()) << c.what;
    EXPECT_EQ(mo.translate("a", ""), "a") << c.what;
  }
  const std::vector<unsigned char> sane =
      MoImage({magic, 0, 1, sources, targets, 0, 0, 1, text, 1, text + 2});
  const I18N::MO mo(sane.data(), sane.size(), I18N::MO::DEFAULT_PLURAL_EXPRESSION, 2);
  EXPECT_EQ(mo.translate("a", ""), "b");
}

TEST(JsonLimits, IntegersBeyondA32BitLongKeepEveryDigit) {
  const struct {
    const char* text;
    long long value;
  } kCases[] = {
      {"2147483648", 2147483648LL},
      {"-2147483649", -2147483649LL},
      {"4294967296", 4294967296LL},
      {"999999999999999999", 999999999999999999LL},
  };
  for (const auto& c : kCases) {
    std::string error;
    const json11::Json value = json11::Json::parse(c.text, error);
    EXPECT_EQ(value.longLong_value(), c.value) << c.text << error;
    EXPECT_EQ(value.dump(), c.text);
  }
  std::string error;
  EXPECT_EQ(json11::Json::parse("4294967297", error).int_value(), 1);
}

// Arguments of every integer width in one call: a width read wrongly shifts
// every later argument on a 32-bit stack.
TEST(FormatMatchLimits, LongAndLongLongArgumentsKeepTheirWidths) {
  EXPECT_EQ(I18N::I18nUtils::formatMatch("%ld1 %lu2 %lld3 %llu4 %d5",
                                         std::numeric_limits<long>::max(),
                                         std::numeric_limits<unsigned long>::max(),
                                         std::numeric_limits<long long>::min(),
                                         std::numeric_limits<unsigned long long>::max(), 7),
            std::to_string(std::numeric_limits<long>::max()) + " " +
                std::to_string(std::numeric_limits<unsigned long>::max()) + " " +
                "-9223372036854775808 18446744073709551615 7");
}

TEST(DateLimits, MomentsAroundThe32BitLongRange) {
  const test_support::ScopedTimeZone utc("UTC");
  const struct {
    long long seconds;
    const char* text;
  } kCases[] = {
      {2147483647LL, "2038/01/19 03:14:07"},
      {2147483648LL, "2038/01/19 03:14:08"},
      {4294967296LL, "2106/02/07 06:28:16"},
      {-2147483649LL, "1901/12/13 20:45:51"},
  };
  for (const auto& c : kCases) {
    // Windows' C runtime converts nothing before 1970.
    if (test_support::kOnWindows && c.seconds < 0) continue;
    const tessel::DateTime moment(c.seconds);
    EXPECT_EQ(moment.description(), c.text);
    EXPECT_EQ(tessel::DateTime(moment.components()), moment) << c.text;
    std::ostringstream out;
    tessel::StringUtils::OuputDateFrom1979(out, c.seconds, "%Y/%m/%d %H:%M:%S");
    EXPECT_EQ(out.str(), c.text);
  }
  EXPECT_EQ(tessel::DateTime(2147483647LL).addDaysCopy(1).secSince1970(), 2147483647LL + 86400);
  EXPECT_GT(tessel::date::milliseconds_interval_since_1970(), 1700000000000LL);
}

}  // namespace
