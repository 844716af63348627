// POSIX parts of the file-system layer: paths are the bytes as they are,
// statx gives the birth time, rename(2) moves, std::filesystem copies.
#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <system_error>

namespace tessel_platform {
namespace {

// Seconds of a statx timestamp with the fraction dropped toward zero (the
// kernel gives the floor and a non-negative fraction).
std::int64_t WholeSeconds(const struct statx_timestamp& time) {
  std::int64_t seconds = time.tv_sec;
  if (seconds < 0 && time.tv_nsec > 0) ++seconds;
  return seconds;
}

bool StatTimes(const std::string& path, struct statx* info) {
  if (path.empty()) return false;
  return statx(AT_FDCWD, path.c_str(), 0, STATX_MTIME | STATX_BTIME, info) == 0;
}

}  // namespace

std::filesystem::path NativePath(const std::string& path) { return std::filesystem::path(path); }

std::FILE* OpenFile(const std::string& path, const char* mode) {
  return std::fopen(path.c_str(), mode);
}

std::int64_t FileCreateTime(const std::string& path) {
  struct statx info;
  if (!StatTimes(path, &info)) return 0;
  return WholeSeconds((info.stx_mask & STATX_BTIME) ? info.stx_btime : info.stx_mtime);
}

std::int64_t FileModifyTime(const std::string& path) {
  struct statx info;
  if (!StatTimes(path, &info)) return 0;
  return WholeSeconds(info.stx_mtime);
}

bool MovePath(const std::string& from, const std::string& to) {
  if (from.empty() || to.empty()) return false;
  std::error_code error;
  std::filesystem::rename(NativePath(from), NativePath(to), error);
  if (!error) return true;
  if (error != std::errc::cross_device_link) return false;
  return CopyRecursively(from, to) && DeleteRecursively(from);
}

bool CopyRegularFile(const std::string& from, const std::string& to) {
  if (!RegularFileExists(from) || to.empty()) return false;
  std::error_code error;
  return std::filesystem::copy_file(NativePath(from), NativePath(to),
                                    std::filesystem::copy_options::overwrite_existing, error) &&
         !error;
}

std::string TemporaryDirectory() {
  std::error_code error;
  const std::filesystem::path directory = std::filesystem::temp_directory_path(error);
  return error ? std::string() : directory.string();
}

}  // namespace tessel_platform
