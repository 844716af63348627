// The file-system layer under the library's file manager and file helpers:
// thin wrappers over the host system that report failure only through their
// result, never by throwing (other than std::bad_alloc). Paths are the
// system's byte strings, used as they are. Stateless; safe on any thread,
// with concurrent operations on one path ordered only by the file system.
// On Windows the byte strings are UTF-8 and the system sees their UTF-16
// form.
#ifndef TESSEL_PLATFORM_FILE_SYSTEM_H_
#define TESSEL_PLATFORM_FILE_SYSTEM_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

namespace tessel_platform {

// The path as the system names files: the bytes as they are on POSIX, their
// UTF-16 form (ill-formed UTF-8 replaced) on Windows. Use it to open streams
// and for std::filesystem calls.
std::filesystem::path NativePath(const std::string& path);

// The path in its system form for the operations that destroy, replace or
// move what is there. False, with *out untouched, when the text is empty,
// holds a NUL, or (on Windows) is not well-formed UTF-8: such a path would
// reach a file other than the one named (the part before the NUL, a name with
// U+FFFD in it), so it names nothing.
bool StrictNativePath(const std::string& path, std::filesystem::path* out);

// Where a chain of symbolic links starting at `path` ends: `path` itself when
// it is not a link; the final target also when that does not exist (yet).
// An empty path when the chain loops or is longer than 40 links.
std::filesystem::path FinalLinkTarget(const std::filesystem::path& path);

// std::fopen of the path in its system form; null when it cannot be opened.
// The caller closes the file.
std::FILE* OpenFile(const std::string& path, const char* mode);

// True when a buffer of `length` bytes can exist in this process's address
// space (0 <= length <= PTRDIFF_MAX). A file longer than that cannot be read
// into memory whole, whatever the machine has.
bool AddressSpaceHolds(long long length);

// True when something (file, directory, ...) exists at path, links followed.
bool PathExists(const std::string& path);
// True when path names a directory, links followed.
bool DirectoryExists(const std::string& path);
// True when path names a regular file, links followed.
bool RegularFileExists(const std::string& path);

// Creates the directory and any missing parents; true when it exists
// afterwards.
bool CreateDirectories(const std::string& path);

// Size in bytes of the regular file at path; 0 when it cannot be read.
std::int64_t FileSize(const std::string& path);

// Whole seconds since 1970-01-01 00:00:00 UTC, fractions dropped toward zero;
// 0 when the information cannot be read. The creation time is the birth time
// where the file system records one, else the last-modification time.
std::int64_t FileCreateTime(const std::string& path);
std::int64_t FileModifyTime(const std::string& path);

// The four operations below destroy or replace what is at their paths, so
// they take them strictly (StrictNativePath) and return false for a path
// that is not.

// Deletes a file, or a directory with everything in it. True when nothing is
// left at path afterwards (so also when nothing was there).
bool DeleteRecursively(const std::string& path);

// Renames from to to, replacing a file at to; across file systems copies
// (recursively) then deletes the source. False when the source is missing or
// any step fails.
bool MovePath(const std::string& from, const std::string& to);

// Copies from to to, directories recursively, replacing files at to. False
// when any step fails.
bool CopyRecursively(const std::string& from, const std::string& to);

// Copies the regular file from to to, replacing a file at to. False when the
// source is not a regular file or the copy fails. Only `to` is taken
// strictly.
bool CopyRegularFile(const std::string& from, const std::string& to);

// Replaces the contents of the regular file at `path` (links followed to the
// file they name; created when absent) with `length` bytes from `data`, so
// that the file never holds anything but its old or its new contents. The
// bytes go to a new file in the same directory, which is flushed to stable
// storage and then renamed over the target in one step; the target's
// permission bits (on Windows its hidden, system and archive attributes) are
// carried over. On failure the new file is removed, the target is left as
// it was, false is returned and *failure says which step failed and why.
bool WriteFileAtomically(const std::string& path, const char* data, std::size_t length,
                         std::string* failure);

// The two steps every system's WriteFileAtomically shares. The file a
// replacement of `path` writes: `path` taken strictly, links followed; empty,
// with the reason in *failure, when there is none.
std::filesystem::path ReplacementTarget(const std::string& path, std::string* failure);
// A name in the directory of `target` for the new file: fixed-length, so a
// long target name still fits, and unique to this process (`process_id`) and
// call, so only a writer on another system sharing the directory can clash;
// the caller creates it exclusively and asks again on a clash.
std::filesystem::path TemporarySibling(const std::filesystem::path& target,
                                       unsigned long process_id);

// The system's temporary directory as the system spells it; empty when there
// is none.
std::string TemporaryDirectory();

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_FILE_SYSTEM_H_
