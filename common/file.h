// File names one file by its full path and answers the common questions and
// chores about it: existence, size, times, MD5 digest, moving, reading whole
// or by 512 KiB chunks, writing. It holds no open handle and caches nothing:
// every question is asked afresh. Existence, size, times and moving go through
// the file manager injected into the process-wide holder; before one is
// injected, exist() is false, the sizes and times are 0 and move() only
// renames the object. A File is a plain value: one object must not be used
// from two threads while one of them assigns or moves it.
#ifndef TESSEL_COMMON_FILE_H_
#define TESSEL_COMMON_FILE_H_

#include <string>

#include "common/tessel_export.h"

namespace tessel {

class TESSEL_API File {
 public:
  // The bytes of one readChunk.
  static constexpr long long kChunkLength = 524288;

  // Names `path` as given (not normalised); the file name is
  // FileUtils::fileNameFromfilePath(path).
  File(const std::string& path);
  File(const File& other);
  File& operator=(const File& other);
  ~File();

  std::string fullPath() const;
  // Empty when the full path is empty or ends in '/'.
  std::string fileName() const;

  // The file manager's IsFileExist(full path): true for a file or directory.
  bool exist();
  // The file manager's GetFileSize(full path), taken as unsigned; 0 when the
  // size cannot be read.
  unsigned long long fileSize();
  // The file manager's creation and last-modification times of the full path,
  // in whole seconds since 1970-01-01 00:00:00 UTC; 0 when unknown.
  long long createTime();
  long long modifyTime();

  // The 32 upper-case hexadecimal digits of the MD5 digest of the contents;
  // empty when the path does not name a readable regular file.
  std::string md5();

  // Asks the file manager to move the file to `newPath`, then names
  // `newPath` whether or not the move succeeded. Returns 0.
  long long move(const std::string& newPath);

  // The whole file in a new buffer (array new, no terminating NUL) that the
  // caller releases with delete[]; when `length` is not null it receives the
  // number of bytes. A file that cannot be read gives nullptr and 0.
  char* read(long long* length);

  // Chunk number `index`: at most kChunkLength bytes from byte
  // index * kChunkLength (the last chunk is shorter). When `length` is not
  // null it receives the number of bytes. Past the end, for a negative index
  // or an unreadable file: an empty string and 0.
  std::string readChunk(long long index, long long* length);

  // Replaces the file's contents with `length` bytes from `data` in one step,
  // creating it when absent (see FileUtils::writeFile). Returns 0.
  long long write(const char* data, long long length);

 private:
  std::string full_path_;
  std::string file_name_;  // always fileNameFromfilePath(full_path_)
};

}  // namespace tessel

#endif  // TESSEL_COMMON_FILE_H_
