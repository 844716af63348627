// FileUtils: the SDK's everyday path and file chores. Splitting a path into
// directory, name and extension, normalising separators, MIME lookup by
// extension, the temporary directory, and reading or writing a whole file or
// one fixed-size chunk of it. Paths are UTF-8 byte strings; '\' and '/' are
// both separators when splitting. No state: every function may run on any
// thread at once; concurrent reading and writing of one file is not
// coordinated here. Files are opened and closed within each call.
#ifndef TESSEL_COMMON_FILE_UTILS_H_
#define TESSEL_COMMON_FILE_UTILS_H_

#include <string>

#include "common/tessel_export.h"

namespace tessel {
namespace FileUtils {

// Replaces every '\' of `path` by '/', in place; then, when `appendSlash` is
// true and `path` is neither empty nor ending in '/', appends one '/'.
TESSEL_API void formalizePath(std::string& path, bool appendSlash);

// The final component of `path`: what follows the last '\', '/' or ':' that
// is itself followed by a character other than '\' and '/' (the whole path
// when there is none), with one trailing '/' removed. "a/b/" gives "b";
// a trailing '\' stays.
TESSEL_API std::string lastPathComponent(const std::string& path);

// The final component as above, untrimmed; empty when `path` is empty or
// ends in '/'.
TESSEL_API std::string fileNameFromfilePath(const std::string& path);

// `path` without its final component (lastPathComponent): "dir/sub/name.txt"
// gives "dir/sub/", "name.txt" gives "", "a/b/" gives "a/b".
TESSEL_API std::string fileDirFromFilePath(const std::string& path);

// The extension with its '.': the text from the last '.' after which comes
// neither '\' nor a space, to the end; empty when there is none.
// "name.tar.gz" gives ".gz", "dir.d\name" gives "".
TESSEL_API std::string fileExtensionFromFilePath(const std::string& path);

// The MIME type for an extension, looked up without regard to ASCII case
// and with or without its leading '.'; "application/octet-stream" for an
// unknown or empty extension. Never empty.
TESSEL_API std::string mimeTypeFromFileExtension(const std::string& extension);

// The system's temporary directory with '/' separators and a trailing '/'.
// The two arguments are not used. Empty if the system has none.
TESSEL_API std::string tmpPath(const std::string& unused_first, const std::string& unused_second);

// Reads the whole regular file at `path` into a new buffer (array new, no
// terminating NUL, owned by the caller who releases it with delete[]), stores
// it in *out and returns its length. Returns 0 and stores nullptr when the
// file cannot be opened, is not a regular file, is longer than this
// process's address space can hold, or a read fails; a null `out` returns 0
// and reads nothing. An empty file gives 0 and a buffer of length 0. Running
// out of memory for a file that could fit throws std::bad_alloc.
TESSEL_API long long readFile(const std::string& path, char** out);

// Replaces `out` with chunk number `index` of the file at `path`: at most
// `length` bytes from byte index * length (the last chunk is shorter), and
// returns the number of bytes placed in `out`. Returns 0 and leaves `out`
// empty when the start is at or beyond the end of the file, when `index` is
// negative or `length` not positive, when the file cannot be opened or is
// not a regular file, when the chunk is longer than the address space can
// hold, or when a read fails.
TESSEL_API long long readChunkFromFile(const std::string& path, long long index,
                                       std::string& out, long long length);

// Replaces the contents of the file at `path` with `length` bytes from `data`,
// unchanged, creating the file when absent. The file holds either its old or
// its new contents, never a mixture or a part: the bytes are written to a new
// file beside it, flushed to stable storage and renamed over it in one step.
// A symbolic link is followed and the file it names is replaced; that file's
// permission bits are kept (so a write-only file can be rewritten too). A
// negative length or a null `data` writes an empty file. Returns 0 in every
// case; when the file could not be written, it is left exactly as it was, no
// new file is left behind, and the reason goes to the shared logger as a
// debug line (an exception thrown by the host's log sink reaches the
// caller). Only a regular file, or a new one, is written: a device, FIFO or
// directory at `path` is left alone.
TESSEL_API long long writeFile(const char* data, long long length, const std::string& path);

}  // namespace FileUtils
}  // namespace tessel

#endif  // TESSEL_COMMON_FILE_UTILS_H_
