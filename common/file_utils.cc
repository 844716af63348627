#include "common/file_utils.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <memory>

#include "common/logger.h"
#include "platform/file_system.h"
#include "platform/mime_types.h"
#include "platform/path_component.h"

namespace tessel {
namespace FileUtils {
namespace {

const char kDefaultMimeType[] = "application/octet-stream";

bool IsSlash(char c) { return c == '/' || c == '\\'; }

// Where the final component begins: after the last '\', '/' or ':' that is
// followed by a character other than '\' and '/'.
std::size_t FinalComponentStart(const std::string& path) {
  std::size_t start = 0;
  for (std::size_t i = 0; i + 1 < path.size(); ++i) {
    if ((IsSlash(path[i]) || path[i] == ':') && !IsSlash(path[i + 1])) start = i + 1;
  }
  return start;
}

// Opens a regular file for binary reading; returns its length, or -1 when it
// cannot be opened. Non-regular files are refused so that a directory or a
// FIFO can neither report a bogus length nor block the caller.
long long OpenForReading(const std::string& path, std::ifstream& stream) {
  if (!tessel_platform::RegularFileExists(path)) return -1;
  stream.open(tessel_platform::NativePath(path), std::ios::binary | std::ios::ate);
  if (!stream) return -1;
  const std::streamoff end = stream.tellg();
  if (end < 0 || !stream.seekg(0)) return -1;
  return static_cast<long long>(end);
}

}  // namespace

void formalizePath(std::string& path, bool appendSlash) {
  std::replace(path.begin(), path.end(), '\\', '/');
  if (appendSlash && !path.empty() && path.back() != '/') path.push_back('/');
}

std::string lastPathComponent(const std::string& path) {
  return tessel_platform::ComponentFrom(path, FinalComponentStart(path), '/');
}

std::string fileNameFromfilePath(const std::string& path) {
  if (path.empty() || path.back() == '/') return std::string();
  return path.substr(FinalComponentStart(path));
}

std::string fileDirFromFilePath(const std::string& path) {
  return path.substr(0, path.size() - lastPathComponent(path).size());
}

std::string fileExtensionFromFilePath(const std::string& path) {
  std::size_t dot = std::string::npos;
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (path[i] == '.') {
      dot = i;
    } else if (path[i] == '\\' || path[i] == ' ') {
      dot = std::string::npos;
    }
  }
  return dot == std::string::npos ? std::string() : path.substr(dot);
}

std::string mimeTypeFromFileExtension(const std::string& extension) {
  const char* type = tessel_platform::MimeTypeForExtension(extension);
  return type != nullptr ? type : kDefaultMimeType;
}

std::string tmpPath(const std::string&, const std::string&) {
  std::string directory = tessel_platform::TemporaryDirectory();
  formalizePath(directory, true);
  return directory;
}

long long readFile(const std::string& path, char** out) {
  if (out == nullptr) return 0;
  *out = nullptr;
  std::ifstream stream;
  const long long length = OpenForReading(path, stream);
  if (!tessel_platform::AddressSpaceHolds(length)) return 0;
  std::unique_ptr<char[]> buffer(new char[static_cast<std::size_t>(length)]);
  stream.read(buffer.get(), length);
  if (stream.bad()) return 0;
  *out = buffer.release();
  return static_cast<long long>(stream.gcount());
}

long long readChunkFromFile(const std::string& path, long long index, std::string& out,
                            long long length) {
  out.clear();
  if (index < 0 || length <= 0 || index > std::numeric_limits<long long>::max() / length) {
    return 0;
  }
  const long long start = index * length;
  std::ifstream stream;
  const long long size = OpenForReading(path, stream);
  if (size < 0 || start >= size) return 0;
  const long long count = std::min(length, size - start);
  if (!tessel_platform::AddressSpaceHolds(count)) return 0;
  std::string chunk(static_cast<std::size_t>(count), '\0');
  stream.seekg(start);
  stream.read(&chunk[0], static_cast<std::streamsize>(chunk.size()));
  if (stream.bad()) return 0;
  chunk.resize(static_cast<std::size_t>(stream.gcount()));
  out.swap(chunk);
  return static_cast<long long>(out.size());
}

long long writeFile(const char* data, long long length, const std::string& path) {
  if (data == nullptr || length < 0) length = 0;
  std::string failure;
  if (!tessel_platform::AddressSpaceHolds(length)) {
    failure = "length beyond the address space";
  } else if (tessel_platform::WriteFileAtomically(path, data, static_cast<std::size_t>(length),
                                                  &failure)) {
    return 0;
  }
  Logger::sharedLogger()->debug("writeFile " + path + ": " + failure);
  return 0;
}

}  // namespace FileUtils
}  // namespace tessel
