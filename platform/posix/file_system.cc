// POSIX parts of the file-system layer: paths are the bytes as they are,
// statx gives the birth time (stat where statx is refused), rename(2) moves
// and replaces, std::filesystem copies.
#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace tessel_platform {
namespace {

struct FileTimes {
  std::int64_t birth;  // the modification time where none is recorded
  std::int64_t modified;
};

// Whole seconds with the fraction dropped toward zero (the kernel gives the
// floor and a non-negative fraction).
std::int64_t WholeSeconds(std::int64_t seconds, long nanoseconds) {
  return seconds < 0 && nanoseconds > 0 ? seconds + 1 : seconds;
}

// Sandboxes that filter system calls refuse statx with EPERM, and old kernels
// lack it (ENOSYS); stat answers there, without a birth time.
bool ReadTimes(const std::string& path, FileTimes* times) {
  if (path.empty()) return false;
  struct statx info;
  if (statx(AT_FDCWD, path.c_str(), 0, STATX_MTIME | STATX_BTIME, &info) == 0) {
    times->modified = WholeSeconds(info.stx_mtime.tv_sec, info.stx_mtime.tv_nsec);
    times->birth = (info.stx_mask & STATX_BTIME)
                       ? WholeSeconds(info.stx_btime.tv_sec, info.stx_btime.tv_nsec)
                       : times->modified;
    return true;
  }
  if (errno != ENOSYS && errno != EPERM) return false;
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return false;
  times->modified = WholeSeconds(status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
  times->birth = times->modified;
  return true;
}

bool Fail(std::string* failure, const std::string& step) {
  *failure = step + ": " + std::generic_category().message(errno);
  return false;
}

int CreateTemporary(const std::filesystem::path& target, std::string* name) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    *name = TemporarySibling(target, static_cast<unsigned long>(getpid())).string();
    const int fd = open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

bool WriteAll(int fd, const char* data, std::size_t length) {
  while (length > 0) {
    const ssize_t written = write(fd, data, length);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    data += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

// Gives the new file the owner (where the process may) and the permission
// bits of the file it replaces.
bool KeepOwnerAndMode(int fd, const struct stat& existing) {
  if (fchown(fd, existing.st_uid, existing.st_gid) != 0) {
    // Only the superuser may give a file away; the mode still matters.
  }
  return fchmod(fd, existing.st_mode & 07777) == 0;
}

// Writes, flushes and closes the new file; `existing` (null for a new target)
// lends its owner and mode.
bool FillTemporary(int fd, const char* data, std::size_t length, const struct stat* existing,
                   std::string* failure) {
  bool ok = WriteAll(fd, data, length) || Fail(failure, "write");
  if (ok && existing != nullptr && !KeepOwnerAndMode(fd, *existing)) ok = Fail(failure, "chmod");
  if (ok && fsync(fd) != 0) ok = Fail(failure, "fsync");
  if (close(fd) != 0 && ok) ok = Fail(failure, "close");
  return ok;
}

// Makes the rename itself durable. A directory that cannot be flushed
// changes nothing about the result: the data are already on disk.
void FlushDirectory(const std::filesystem::path& target) {
  const std::filesystem::path parent = target.parent_path();
  const int fd = open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

}  // namespace

std::filesystem::path NativePath(const std::string& path) { return std::filesystem::path(path); }

bool StrictNativePath(const std::string& path, std::filesystem::path* out) {
  if (path.empty() || path.find('\0') != std::string::npos) return false;
  *out = std::filesystem::path(path);
  return true;
}

std::FILE* OpenFile(const std::string& path, const char* mode) {
  return std::fopen(path.c_str(), mode);
}

std::int64_t FileCreateTime(const std::string& path) {
  FileTimes times;
  return ReadTimes(path, &times) ? times.birth : 0;
}

std::int64_t FileModifyTime(const std::string& path) {
  FileTimes times;
  return ReadTimes(path, &times) ? times.modified : 0;
}

bool WriteFileAtomically(const std::string& path, const char* data, std::size_t length,
                         std::string* failure) {
  const std::filesystem::path target = ReplacementTarget(path, failure);
  if (target.empty()) return false;
  struct stat existing;
  const bool exists = stat(target.c_str(), &existing) == 0;
  // A device, FIFO or directory is not replaced by a file.
  if (exists && !S_ISREG(existing.st_mode)) {
    *failure = "not a regular file";
    return false;
  }
  std::string name;
  const int fd = CreateTemporary(target, &name);
  if (fd < 0) return Fail(failure, "create " + name);
  bool ok = FillTemporary(fd, data, length, exists ? &existing : nullptr, failure);
  if (ok && rename(name.c_str(), target.c_str()) != 0) ok = Fail(failure, "rename");
  if (!ok) {
    unlink(name.c_str());
    return false;
  }
  FlushDirectory(target);
  return true;
}

bool MovePath(const std::string& from, const std::string& to) {
  std::filesystem::path source;
  std::filesystem::path destination;
  if (!StrictNativePath(from, &source) || !StrictNativePath(to, &destination)) return false;
  std::error_code error;
  std::filesystem::rename(source, destination, error);
  if (!error) return true;
  if (error != std::errc::cross_device_link) return false;
  return CopyRecursively(from, to) && DeleteRecursively(from);
}

bool CopyRegularFile(const std::string& from, const std::string& to) {
  std::filesystem::path destination;
  if (!RegularFileExists(from) || !StrictNativePath(to, &destination)) return false;
  std::error_code error;
  return std::filesystem::copy_file(NativePath(from), destination,
                                    std::filesystem::copy_options::overwrite_existing, error) &&
         !error;
}

std::string TemporaryDirectory() {
  std::error_code error;
  const std::filesystem::path directory = std::filesystem::temp_directory_path(error);
  return error ? std::string() : directory.string();
}

}  // namespace tessel_platform
