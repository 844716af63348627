// Windows parts of the file-system layer: UTF-8 paths are handed to the
// system's wide-character calls in their UTF-16 form; times come from
// GetFileAttributesExW, moves and replacements from MoveFileExW, copies from
// CopyFileW, the temporary directory from GetTempPathW. Paths are not
// prefixed with "\\?\", so the system's limit of 260 units applies unless the
// host process is long-path aware.
#include "platform/file_system.h"

#include <windows.h>

#include <system_error>
#include <vector>

#include "platform/utf16_conversion.h"
#include "platform/utf8_codec.h"

namespace tessel_platform {
namespace {

std::wstring WidePath(const std::string& path) {
  std::wstring wide;
  Utf8ToUtf16(path.data(), path.size(), wide);
  return wide;
}

bool IsWellFormedUtf8(const std::string& text) {
  const auto* p = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* const end = p + text.size();
  while (p < end) {
    char32_t code_point;
    p += DecodeUtf8(p, end, &code_point);
    if (code_point == kIllFormed) return false;
  }
  return true;
}

// The attributes a replacement keeps; read-only is not among them, since a
// read-only file is not replaced at all.
constexpr DWORD kKeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                  FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

bool Fail(std::string* failure, const std::string& step) {
  *failure = step + ": " + std::system_category().message(static_cast<int>(GetLastError()));
  return false;
}

HANDLE CreateTemporary(const std::filesystem::path& target, std::wstring* name) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    *name = TemporarySibling(target, GetCurrentProcessId()).wstring();
    const HANDLE file = CreateFileW(name->c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) return file;
  }
  return INVALID_HANDLE_VALUE;
}

bool WriteAll(HANDLE file, const char* data, std::size_t length) {
  while (length > 0) {
    const DWORD piece = length < (1u << 30) ? static_cast<DWORD>(length) : (1u << 30);
    DWORD written = 0;
    if (!WriteFile(file, data, piece, &written, nullptr) || written == 0) return false;
    data += written;
    length -= written;
  }
  return true;
}

// Writes, flushes and closes the new file.
bool FillTemporary(HANDLE file, const char* data, std::size_t length, std::string* failure) {
  bool ok = WriteAll(file, data, length) || Fail(failure, "write");
  if (ok && !FlushFileBuffers(file)) ok = Fail(failure, "flush");
  if (!CloseHandle(file) && ok) ok = Fail(failure, "close");
  return ok;
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

bool StrictNativePath(const std::string& path, std::filesystem::path* out) {
  if (path.empty() || path.find('\0') != std::string::npos || !IsWellFormedUtf8(path)) {
    return false;
  }
  *out = NativePath(path);
  return true;
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

bool WriteFileAtomically(const std::string& path, const char* data, std::size_t length,
                         std::string* failure) {
  const std::filesystem::path target = ReplacementTarget(path, failure);
  if (target.empty()) return false;
  const DWORD attributes = GetFileAttributesW(target.c_str());
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    *failure = "a directory";
    return false;
  }
  std::wstring name;
  const HANDLE file = CreateTemporary(target, &name);
  if (file == INVALID_HANDLE_VALUE) return Fail(failure, "create");
  bool ok = FillTemporary(file, data, length, failure);
  const DWORD kept = exists ? attributes & kKeptAttributes : 0;
  if (ok && kept != 0 && !SetFileAttributesW(name.c_str(), kept)) {
    ok = Fail(failure, "attributes");
  }
  if (ok && !MoveFileExW(name.c_str(), target.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    ok = Fail(failure, "replace");
  }
  if (!ok) DeleteFileW(name.c_str());
  return ok;
}

bool MovePath(const std::string& from, const std::string& to) {
  std::filesystem::path source;
  std::filesystem::path destination;
  if (!StrictNativePath(from, &source) || !StrictNativePath(to, &destination)) return false;
  // The system copies files across volumes itself; directories it cannot.
  if (MoveFileExW(source.c_str(), destination.c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED)) {
    return true;
  }
  if (GetLastError() != ERROR_NOT_SAME_DEVICE) return false;
  return CopyRecursively(from, to) && DeleteRecursively(from);
}

bool CopyRegularFile(const std::string& from, const std::string& to) {
  std::filesystem::path destination;
  if (!RegularFileExists(from) || !StrictNativePath(to, &destination)) return false;
  return CopyFileW(WidePath(from).c_str(), destination.c_str(), FALSE) != 0;
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
