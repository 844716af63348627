// The file helpers under conditions that only a POSIX system lets a test
// arrange: a full disk (RLIMIT_FSIZE in a child process), statx refused by a
// system-call filter, permission bits, symbolic links, a file whose reads
// fail.
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/file.h"
#include "common/file_utils.h"
#include "common/imp_win/generic_file_manager.h"
#include "common/logger.h"
#include "files/temp_dir.h"

namespace {

namespace FileUtils = tessel::FileUtils;

// Runs `body` in a child process and returns the code it exits with, or -1
// when it did not exit normally. An alarm ends a child that hangs.
template <typename Body>
int ExitCodeOfChild(Body body) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    std::_Exit(body());
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct DebugLines : tessel::ILogger {
  void log(const std::string& message, int level) override {
    if (level == tessel::LogLevelDebug) lines.push_back(message);
  }
  std::vector<std::string> lines;
};

using FileWritePosix = TempDirTest;

TEST_F(FileWritePosix, AFullDiskLeavesTheOldContentsAndNoTemporaryFile) {
  const std::string old = "theme=dark\nlanguage=en\nfont=12pt\n";
  const std::string path = Make("settings", old);
  const std::string data(100 * 1024, 'n');
  const int code = ExitCodeOfChild([&] {
    signal(SIGXFSZ, SIG_IGN);  // writing beyond the limit then fails with EFBIG
    const rlimit limit{16, 16};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
    auto sink = std::make_shared<DebugLines>();
    tessel::Logger::sharedLogger()->set_inner_logger(sink);
    if (FileUtils::writeFile(data.data(), static_cast<long long>(data.size()), path) != 0) {
      return 1;
    }
    // The reason is logged for the host to see.
    return sink->lines.size() == 1 && sink->lines[0].find(path) != std::string::npos ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(Slurp(path), old);
  EXPECT_EQ(Entries(), std::vector<std::string>{"settings"});
}

mode_t PermissionBits(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

TEST_F(FileWritePosix, KeepsPermissionBitsAndReplacesTheFileALinkNames) {
  const std::string path = Make("f", "old");
  for (const mode_t mode : {0640, 0604, 0200}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    FileUtils::writeFile("new", 3, path);
    EXPECT_EQ(PermissionBits(path), mode);
    chmod(path.c_str(), 0600);
    EXPECT_EQ(Slurp(path), "new") << std::oct << mode;
    FileUtils::writeFile("old", 3, path);
  }
  const std::string target = Make("real", "old");
  ASSERT_EQ(symlink("real", Path("link").c_str()), 0);
  FileUtils::writeFile("through the link", 16, Path("link"));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(Slurp(target), "through the link");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"f", "link", "real"}));
}

// /proc/self/mem is a regular file whose reads at offset 0 fail with EIO:
// nothing is mapped at address 0.
TEST(FileDigestPosix, AReadErrorIsAFailureNotADigest) {
  ASSERT_TRUE(std::filesystem::is_regular_file("/proc/self/mem"));
  EXPECT_EQ(tessel::File("/proc/self/mem").md5(), "");
}

// Installs the filter that container sandboxes commonly use for system calls
// they do not know: statx fails with EPERM.
bool RefuseStatx() {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_statx, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  sock_fprog program{static_cast<unsigned short>(sizeof filter / sizeof filter[0]), filter};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

using FileManagerPosix = TempDirTest;

TEST_F(FileManagerPosix, TimesSurviveARefusedStatx) {
  const std::string path = Make("f", "x");
  struct stat status;
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  const int code = ExitCodeOfChild([&] {
    if (!RefuseStatx()) return 3;
    tessel::GenericFileManager manager;
    return manager.GetFileModifyTime(path) == status.st_mtime &&
                   manager.GetFileCreateTime(path) == status.st_mtime
               ? 0
               : 1;
  });
  if (code == 3) GTEST_SKIP() << "system-call filters cannot be installed here";
  EXPECT_EQ(code, 0);
}

}  // namespace
