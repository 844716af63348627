#include "common/file.h"

#include <gtest/gtest.h>

#include <ctime>
#include <memory>

#include "common/imp_win/generic_file_manager.h"
#include "common/imp_win/generic_timer.h"
#include "common/string_utils.h"
#include "common/util_entrance.h"
#include "temp_dir.h"

namespace {

using tessel::File;

void InjectFileManager(std::shared_ptr<tessel_gen::PlatformFileManager> manager) {
  tessel::UtilEntrance::InjectPlatformImp(nullptr, manager,
                                          std::make_shared<tessel::GenericTImer>());
}

class FileTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    InjectFileManager(std::make_shared<tessel::GenericFileManager>());
  }
};

// What a file that cannot be examined answers.
void ExpectNeutral(File& file) {
  EXPECT_FALSE(file.exist());
  EXPECT_EQ(file.fileSize(), 0u);
  EXPECT_EQ(file.createTime(), 0);
  EXPECT_EQ(file.modifyTime(), 0);
}

TEST_F(FileTest, ExaminesARealFile) {
  const std::time_t before = std::time(nullptr);
  File file(Path("mail.eml"));
  EXPECT_FALSE(file.exist());
  EXPECT_EQ(file.write("0123456789", 10), 0);
  const std::time_t after = std::time(nullptr);
  EXPECT_TRUE(file.exist());
  EXPECT_EQ(file.fileSize(), 10u);
  EXPECT_GE(file.modifyTime(), before);
  EXPECT_LE(file.modifyTime(), after);
  EXPECT_GE(file.createTime(), before);
  EXPECT_LE(file.createTime(), after);
}

TEST_F(FileTest, MissingFileGivesZerosAndNoDigest) {
  File file(Path("missing"));
  ExpectNeutral(file);
  EXPECT_EQ(file.md5(), "");
  long long length = -1;
  EXPECT_EQ(file.read(&length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(file.readChunk(0, &length), "");
  EXPECT_EQ(length, 0);
  EXPECT_EQ(File(dir_.string()).md5(), "");
}

TEST_F(FileTest, DigestsFilesAcrossReadChunks) {
  // 1024 bytes are one read of the digest loop, 1025 two; the digests must
  // equal those of the same bytes as a string (no NULs in them).
  for (std::size_t length : {0u, 1u, 1023u, 1024u, 1025u, 70000u}) {
    std::string data = Pattern(length);
    for (char& c : data) c = static_cast<char>('A' + static_cast<unsigned char>(c) % 26);
    File file(Make("d" + std::to_string(length), data));
    EXPECT_EQ(file.md5(), tessel::StringUtils::md5(data)) << length;
  }
  EXPECT_EQ(File(Make("empty", "")).md5(), "D41D8CD98F00B204E9800998ECF8427E");
}

}  // namespace
