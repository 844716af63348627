// POSIX implementation: std::filesystem, plus statx for the birth time.
#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace tessel_platform {
namespace {

namespace fs = std::filesystem;

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

bool CopyRecursively(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::copy(from, to,
           fs::copy_options::recursive | fs::copy_options::copy_symlinks |
               fs::copy_options::overwrite_existing,
           error);
  return !error;
}

}  // namespace

bool PathExists(const std::string& path) {
  std::error_code error;
  return fs::exists(fs::path(path), error);
}

bool DirectoryExists(const std::string& path) {
  std::error_code error;
  return fs::is_directory(fs::path(path), error);
}

bool RegularFileExists(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(fs::path(path), error);
}

bool CreateDirectories(const std::string& path) {
  if (path.empty()) return false;
  std::error_code error;
  fs::create_directories(fs::path(path), error);
  return DirectoryExists(path);
}

std::int64_t FileSize(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(fs::path(path), error);
  return error ? 0 : static_cast<std::int64_t>(size);
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

bool DeleteRecursively(const std::string& path) {
  if (path.empty()) return false;
  const fs::path target(path);
  std::error_code error;
  fs::remove_all(target, error);
  if (error) return false;
  return !fs::exists(fs::symlink_status(target, error));
}

bool MovePath(const std::string& from, const std::string& to) {
  if (from.empty() || to.empty()) return false;
  std::error_code error;
  fs::rename(fs::path(from), fs::path(to), error);
  if (!error) return true;
  if (error != std::errc::cross_device_link) return false;
  return CopyRecursively(fs::path(from), fs::path(to)) && DeleteRecursively(from);
}

bool CopyRegularFile(const std::string& from, const std::string& to) {
  if (!RegularFileExists(from) || to.empty()) return false;
  std::error_code error;
  return fs::copy_file(fs::path(from), fs::path(to), fs::copy_options::overwrite_existing,
                       error) &&
         !error;
}

std::string TemporaryDirectory() {
  std::error_code error;
  const fs::path directory = fs::temp_directory_path(error);
  return error ? std::string() : directory.string();
}

}  // namespace tessel_platform
