#include "common/imp_win/generic_file_manager.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <memory>

#include "common/file_utils.h"
#include "common/imp_win/generic_timer.h"
#include "temp_dir.h"

namespace {

using tessel::GenericFileManager;

class FileManagerTest : public TempDirTest {
 protected:
  GenericFileManager manager_;
};

// Sets the modification time to 2020-01-01 00:00:00.7 UTC. The file clock's
// epoch is not the system clock's; the distance between them is whole
// seconds, so reading both clocks and rounding finds it.
void SetTimes(const std::string& path) {
  using std::chrono::duration_cast;
  using FileTime = std::filesystem::file_time_type;
  const auto epoch_distance = std::chrono::round<std::chrono::seconds>(
      FileTime::clock::now().time_since_epoch() -
      duration_cast<FileTime::duration>(std::chrono::system_clock::now().time_since_epoch()));
  const FileTime time(duration_cast<FileTime::duration>(
      std::chrono::seconds(1577836800) + std::chrono::milliseconds(700) + epoch_distance));
  std::error_code error;
  std::filesystem::last_write_time(path, time, error);
  ASSERT_FALSE(error) << error.message();
}

TEST_F(FileManagerTest, ReportsSizesAndExistence) {
  const std::string file = Make("f", Pattern(1234));
  EXPECT_TRUE(manager_.IsFileExist(file));
  EXPECT_FALSE(manager_.IsPathDir(file));
  EXPECT_EQ(manager_.GetFileSize(file), 1234);
  EXPECT_EQ(manager_.GetFileSize(Path("missing")), 0);
  EXPECT_FALSE(manager_.IsFileExist(Path("missing")));
  EXPECT_TRUE(manager_.IsPathDir(dir_.string()));
  EXPECT_FALSE(manager_.IsFileExist(""));
  EXPECT_TRUE(manager_.ListContensAtPath(dir_.string()).empty());  // never lists anything
}

TEST_F(FileManagerTest, TruncatesModifyTimeToWholeSeconds) {
  const std::string file = Make("f", "x");
  SetTimes(file);
  EXPECT_EQ(manager_.GetFileModifyTime(file), 1577836800);
  EXPECT_EQ(manager_.GetFileModifyTime(Path("missing")), 0);
  EXPECT_EQ(manager_.GetFileCreateTime(Path("missing")), 0);
}

TEST_F(FileManagerTest, CreateTimeIsTheMomentOfCreation) {
  const std::time_t before = std::time(nullptr);
  const std::string file = Make("f", "x");
  const std::time_t after = std::time(nullptr);
  const long long created = manager_.GetFileCreateTime(file);
  EXPECT_TRUE(created >= before && created <= after) << created;
}

TEST_F(FileManagerTest, MakeDirCreatesParents) {
  const std::string deep = Path("a/b/c");
  EXPECT_TRUE(manager_.MakeDir(deep));
  EXPECT_TRUE(std::filesystem::is_directory(deep));
  EXPECT_TRUE(manager_.MakeDir(deep));
  EXPECT_FALSE(manager_.MakeDir(Make("file", "x")));
  EXPECT_FALSE(manager_.MakeDir(""));
}

TEST_F(FileManagerTest, BothDeletesAreRecursive) {
  for (int use_directory_call = 0; use_directory_call < 2; ++use_directory_call) {
    ASSERT_TRUE(manager_.MakeDir(Path("tree/sub")));
    Make("tree/sub/f", "x");
    Make("tree/g", "y");
    const bool deleted = use_directory_call ? manager_.DeleteDirectory(Path("tree"))
                                            : manager_.DeleteTheFile(Path("tree"));
    EXPECT_TRUE(deleted);
    EXPECT_FALSE(std::filesystem::exists(Path("tree")));
  }
  const std::string file = Make("f", "x");
  EXPECT_TRUE(manager_.DeleteDirectory(file));
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_TRUE(manager_.DeleteTheFile(Path("missing")));
}

TEST_F(FileManagerTest, MovesFilesAndDirectories) {
  EXPECT_TRUE(manager_.MoveTheFile(Make("a", "alpha"), Path("b")));
  EXPECT_FALSE(std::filesystem::exists(Path("a")));
  EXPECT_EQ(Slurp(Path("b")), "alpha");
  // An existing destination file is replaced.
  EXPECT_TRUE(manager_.MoveTheFile(Make("c", "gamma"), Path("b")));
  EXPECT_EQ(Slurp(Path("b")), "gamma");
  ASSERT_TRUE(manager_.MakeDir(Path("d1/inner")));
  Make("d1/inner/f", "deep");
  EXPECT_TRUE(manager_.MoveTheFile(Path("d1"), Path("d2")));
  EXPECT_EQ(Slurp(Path("d2/inner/f")), "deep");
  EXPECT_FALSE(manager_.MoveTheFile(Path("missing"), Path("x")));
  EXPECT_FALSE(std::filesystem::exists(Path("x")));
}

TEST_F(FileManagerTest, CopiesFiles) {
  const std::string source = Make("s", Pattern(5000));
  EXPECT_TRUE(manager_.CopyTheFile(source, Path("t")));
  EXPECT_EQ(Slurp(Path("t")), Pattern(5000));
  Make("u", "old");
  EXPECT_TRUE(manager_.CopyTheFile(source, Path("u")));
  EXPECT_EQ(Slurp(Path("u")), Pattern(5000));
  EXPECT_FALSE(manager_.CopyTheFile(Path("missing"), Path("v")));
  EXPECT_FALSE(manager_.CopyTheFile(dir_.string(), Path("v")));
  EXPECT_FALSE(std::filesystem::exists(Path("v")));
}

// Destroying or moving through a path that names no file must not reach the
// file a lenient reading of it names: "a" for "a" NUL "b", and on Windows
// "\uFFFD.txt" for the ill-formed "\xFF.txt".
TEST_F(FileManagerTest, DestroyingCallsReachOnlyTheFileNamed) {
  const std::string a = Make("a", "keep");
  const std::string cut = a + std::string("\0b", 2);
  EXPECT_FALSE(manager_.DeleteTheFile(cut));
  EXPECT_FALSE(manager_.MoveTheFile(cut, Path("moved")));
  EXPECT_FALSE(manager_.MoveTheFile(Make("b", "b"), cut));
  EXPECT_FALSE(manager_.CopyTheFile(Path("b"), cut));
  tessel::FileUtils::writeFile("new", 3, cut);
  EXPECT_EQ(Slurp(a), "keep");

  const std::string replacement = dir_.string() + "/\xEF\xBF\xBD.txt";
  tessel::FileUtils::writeFile("keep", 4, replacement);
  const std::string ill_formed = dir_.string() + "/\xFF.txt";
  manager_.DeleteTheFile(ill_formed);
  tessel::FileUtils::writeFile("new", 3, ill_formed);
  manager_.MoveTheFile(ill_formed, Path("moved"));
  std::string content;
  tessel::FileUtils::readChunkFromFile(replacement, 0, content, 100);
  EXPECT_EQ(content, "keep");
}

class MovedHome : public GenericFileManager {
 public:
  std::string HomeDir() override { return "/home/me"; }
};

TEST(FileManagerDirs, AreFixedAndFollowHomeDir) {
  EXPECT_EQ(GenericFileManager().TempDir(), "/Users/tmp/");
  MovedHome moved;
  EXPECT_EQ(moved.LogDir(), "/home/me/Logs/");
  EXPECT_EQ(moved.TempDir(), "/home/me/tmp/");
}

// Records whether it was destroyed before the call that took it returned.
struct ReleaseProbe {
  const bool* returned;
  bool* released_in_call;
  ~ReleaseProbe() { *released_in_call = !*returned; }
};

TEST(GenericTImer, ReleasesTheCallbackUnrunBeforeReturning) {
  tessel::GenericTImer timer;
  bool returned = false;
  bool released_in_call = false;
  bool ran = false;
  auto probe = std::make_shared<ReleaseProbe>(ReleaseProbe{&returned, &released_in_call});
  std::function<void()> callback = [probe, &ran] { ran = true; };
  probe.reset();
  int id = -1;
  // A timer that kept the callback, or released it only with the caller's
  // full expression, would see `returned` already set.
  (id = timer.CreateTimer(0.5, true, std::move(callback))), returned = true;
  EXPECT_EQ(id, 0);
  EXPECT_TRUE(released_in_call);
  EXPECT_FALSE(ran);
  EXPECT_EQ(timer.CreateTimer(-1.0, false, nullptr), 0);
  timer.InvalidateTimer(0);
  timer.InvalidateTimer(42);
}

}  // namespace
