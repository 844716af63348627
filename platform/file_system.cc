// The parts every system shares: std::filesystem over the system's form of
// the path.
#include "platform/file_system.h"

#include <atomic>
#include <cstddef>
#include <limits>
#include <system_error>

namespace tessel_platform {

namespace fs = std::filesystem;

namespace {

// The most links a chain may have before it counts as a loop (Linux's limit).
constexpr int kMaxLinks = 40;

}  // namespace

fs::path FinalLinkTarget(const fs::path& path) {
  fs::path current = path;
  for (int links = 0; links <= kMaxLinks; ++links) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(current, error))) return current;
    const fs::path target = fs::read_symlink(current, error);
    if (error) return fs::path();
    current = target.is_absolute() ? target : current.parent_path() / target;
  }
  return fs::path();
}

fs::path ReplacementTarget(const std::string& path, std::string* failure) {
  fs::path named;
  if (!StrictNativePath(path, &named)) {
    *failure = "unusable path";
    return fs::path();
  }
  fs::path target = FinalLinkTarget(named);
  if (target.empty()) *failure = "symbolic link loop";
  return target;
}

fs::path TemporarySibling(const fs::path& target, unsigned long process_id) {
  static std::atomic<unsigned long> counter{0};
  return target.parent_path() / (".tessel-" + std::to_string(process_id) + "-" +
                                 std::to_string(++counter) + ".tmp");
}

bool AddressSpaceHolds(long long length) {
  return length >= 0 &&
         static_cast<unsigned long long>(length) <=
             static_cast<unsigned long long>(std::numeric_limits<std::ptrdiff_t>::max());
}

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
  fs::path target;
  if (!StrictNativePath(path, &target)) return false;
  std::error_code error;
  fs::remove_all(target, error);
  if (error) return false;
  return !fs::exists(fs::symlink_status(target, error));
}

bool CopyRecursively(const std::string& from, const std::string& to) {
  fs::path source;
  fs::path destination;
  if (!StrictNativePath(from, &source) || !StrictNativePath(to, &destination)) return false;
  std::error_code error;
  fs::copy(source, destination,
           fs::copy_options::recursive | fs::copy_options::copy_symlinks |
               fs::copy_options::overwrite_existing,
           error);
  return !error;
}

}  // namespace tessel_platform
