// Windows parts of the file-system layer: UTF-8 paths are handed to the
// system's wide-character calls in their UTF-16 form; times come from
// GetFileAttributesExW, moves from MoveFileExW, copies from CopyFileW, the
// temporary directory from GetTempPathW. Paths are not prefixed with "\\?\",
// so the system's limit of 260 units applies unless the host process is
// long-path aware.
#include "platform/file_system.h"

#include <windows.h>

#include <vector>

#include "platform/utf16_conversion.h"

namespace tessel_platform {
namespace {

std::wstring WidePath(const std::string& path) {
  std::wstring wide;
  Utf8ToUtf16(path.data(), path.size(), wide);
  return wide;
}

// FILETIME counts 100 ns ticks since 1601-01-01 00:00:00 UTC.
constexpr long long kTicksPerSecond = 10000000;
constexpr long long kTicksFrom1601To1970 = 116444736000000000LL;

// Whole seconds since 1970, the fraction dropped toward zero.
std::int64_t UnixSeconds(const FILETIME& time) {
  const long long ticks = static_cast<long long>(
      (static_cast<unsigned long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
  return (ticks - kTicksFrom1601To1970) / kTicksPerSecond;
}

bool IsSet(const FILETIME& time) { return time.dwHighDateTime != 0 || time.dwLowDateTime != 0; }

bool ReadAttributes(const std::string& path, WIN32_FILE_ATTRIBUTE_DATA* data) {
  if (path.empty()) return false;
  return GetFileAttributesExW(WidePath(path).c_str(), GetFileExInfoStandard, data) != 0;
}

}  // namespace

std::filesystem::path NativePath(const std::string& path) {
  return std::filesystem::path(WidePath(path));
}

std::FILE* OpenFile(const std::string& path, const char* mode) {
  const std::wstring wide_mode(mode, mode + std::char_traits<char>::length(mode));
  return _wfopen(WidePath(path).c_str(), wide_mode.c_str());
}

std::int64_t FileCreateTime(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!ReadAttributes(path, &data)) return 0;
  return UnixSeconds(IsSet(data.ftCreationTime) ? data.ftCreationTime : data.ftLastWriteTime);
}

std::int64_t FileModifyTime(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!ReadAttributes(path, &data)) return 0;
  return UnixSeconds(data.ftLastWriteTime);
}

bool MovePath(const std::string& from, const std::string& to) {
  if (from.empty() || to.empty()) return false;
  // The system copies files across volumes itself; directories it cannot.
  if (MoveFileExW(WidePath(from).c_str(), WidePath(to).c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED)) {
    return true;
  }
  if (GetLastError() != ERROR_NOT_SAME_DEVICE) return false;
  return CopyRecursively(from, to) && DeleteRecursively(from);
}

bool CopyRegularFile(const std::string& from, const std::string& to) {
  if (!RegularFileExists(from) || to.empty()) return false;
  return CopyFileW(WidePath(from).c_str(), WidePath(to).c_str(), FALSE) != 0;
}

std::string TemporaryDirectory() {
  std::vector<wchar_t> buffer(MAX_PATH + 1);
  DWORD length = GetTempPathW(static_cast<DWORD>(buffer.size()), buffer.data());
  if (length > buffer.size()) {
    buffer.resize(length);
    length = GetTempPathW(static_cast<DWORD>(buffer.size()), buffer.data());
  }
  if (length == 0 || length > buffer.size()) return std::string();
  std::string directory;
  Utf16ToUtf8(buffer.data(), length, directory);
  return directory;
}

}  // namespace tessel_platform
