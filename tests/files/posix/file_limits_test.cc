// The file helpers under conditions only a POSIX system lets a test arrange:
// a full disk (RLIMIT_FSIZE in a child), statx or read refused by a system-call
// filter, permission bits, links and FIFOs, a file whose reads fail.
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
#include <iterator>
#include <memory>

#include "common/file.h"
#include "common/file_utils.h"
#include "common/imp_win/generic_file_manager.h"
#include "common/logger.h"
#include "files/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// Runs `body` in a child process; returns its exit code, or -1 when it did
// not exit. An alarm ends a child that hangs.
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

struct DebugLineCounter : tessel::ILogger {
  void log(const std::string&, int level) override { count += level == tessel::LogLevelDebug; }
  int count = 0;
};

using FilesPosix = TempDirTest;

TEST_F(FilesPosix, AFullDiskLeavesTheOldContentsAndNoTemporaryFile) {
  const std::string old = "theme=dark\nlanguage=en\nfont=12pt\n";
  const std::string path = Make("settings", old);
  const std::string data(100 * 1024, 'n');
  EXPECT_EQ(ExitCodeOfChild([&] {
              signal(SIGXFSZ, SIG_IGN);  // a write beyond the limit then fails with EFBIG
              const rlimit limit{16, 16};
              auto sink = std::make_shared<DebugLineCounter>();
              tessel::Logger::sharedLogger()->set_inner_logger(sink);
              if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
              tessel::FileUtils::writeFile(data.data(), 100 * 1024, path);
              return sink->count == 1 ? 0 : 1;  // the reason reaches the host
            }),
            0);
  EXPECT_EQ(Slurp(path), old);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 1);
}

TEST_F(FilesPosix, WritesKeepPermissionBitsReplaceTheFileALinkNamesAndSpareFifos) {
  const std::string path = Make("f", "");
  for (const mode_t mode : {0640, 0604, 0200}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    tessel::FileUtils::writeFile("new", 3, path);
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode);
    EXPECT_EQ(fs::file_size(path), 3u);
    tessel::FileUtils::writeFile("", 0, path);
  }
  const std::string target = Make("real", "old");
  ASSERT_EQ(symlink("real", Path("link").c_str()), 0);
  tessel::FileUtils::writeFile("through the link", 16, Path("link"));
  EXPECT_TRUE(fs::is_symlink(Path("link")));
  EXPECT_EQ(Slurp(target), "through the link");
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  tessel::FileUtils::writeFile("x", 1, Path("fifo"));
  EXPECT_TRUE(fs::is_fifo(Path("fifo")));
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 4);
}

// /proc/self/mem is a regular file whose reads at offset 0 fail with EIO.
TEST(FileDigestPosix, AReadErrorIsAFailureNotADigest) {
  ASSERT_TRUE(fs::is_regular_file("/proc/self/mem"));
  EXPECT_EQ(tessel::File("/proc/self/mem").md5(), "");
}

// A filter that makes system call `number` fail with `error`: EPERM for statx
// is what container sandboxes give for calls they do not know, EIO for read a
// failing disk.
bool Refuse(unsigned number, unsigned error) {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  sock_fprog program{static_cast<unsigned short>(std::size(filter)), filter};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// Exit code 1: the times were lost with statx; 2: a failed read passed for a
// whole-file read.
TEST_F(FilesPosix, RefusedStatxFallsBackAndFailedReadsGiveNoBuffer) {
  const std::string path = Make("f", "x");
  struct stat status;
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  const int code = ExitCodeOfChild([&] {
    if (!Refuse(__NR_statx, EPERM) || !Refuse(__NR_read, EIO)) return 3;
    tessel::GenericFileManager manager;
    if (manager.GetFileModifyTime(path) != status.st_mtime ||
        manager.GetFileCreateTime(path) != status.st_mtime) {
      return 1;
    }
    char* buffer = nullptr;
    return tessel::FileUtils::readFile(path, &buffer) == 0 && buffer == nullptr ? 0 : 2;
  });
  if (code == 3) GTEST_SKIP() << "system-call filters cannot be installed here";
  EXPECT_EQ(code, 0);
}

}  // namespace
