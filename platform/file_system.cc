// The parts every system shares: std::filesystem over the system's form of
// the path.
#include "platform/file_system.h"

#include <system_error>

namespace tessel_platform {

namespace fs = std::filesystem;

bool PathExists(const std::string& path) {
  std::error_code error;
  return fs::exists(NativePath(path), error);
}

bool DirectoryExists(const std::string& path) {
  std::error_code error;
  return fs::is_directory(NativePath(path), error);
}

bool RegularFileExists(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(NativePath(path), error);
}

bool CreateDirectories(const std::string& path) {
  if (path.empty()) return false;
  std::error_code error;
  fs::create_directories(NativePath(path), error);
  return DirectoryExists(path);
}

std::int64_t FileSize(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(NativePath(path), error);
  return error ? 0 : static_cast<std::int64_t>(size);
}

bool DeleteRecursively(const std::string& path) {
  if (path.empty()) return false;
  const fs::path target = NativePath(path);
  std::error_code error;
  fs::remove_all(target, error);
  if (error) return false;
  return !fs::exists(fs::symlink_status(target, error));
}

bool CopyRecursively(const std::string& from, const std::string& to) {
  std::error_code error;
  fs::copy(NativePath(from), NativePath(to),
           fs::copy_options::recursive | fs::copy_options::copy_symlinks |
               fs::copy_options::overwrite_existing,
           error);
  return !error;
}

}  // namespace tessel_platform
