#include "common/imp_win/generic_file_manager.h"

#include <gtest/gtest.h>

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
