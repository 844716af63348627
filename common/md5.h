// MD5 message digests (RFC 1321) for the library's own use: the digest of a
// string and of a file's contents as 32 upper-case hexadecimal digits. Not
// part of the exported interface. Every object and call is independent; any
// thread may use its own Md5 at any time.
#ifndef TESSEL_COMMON_MD5_H_
#define TESSEL_COMMON_MD5_H_

#include <cstddef>
#include <cstdint>

namespace tessel {

// Incremental digest: Update any number of times, then Finish once.
class Md5 {
 public:
  static constexpr std::size_t kDigestSize = 16;
  // 32 digits and a NUL.
  static constexpr std::size_t kHexSize = 2 * kDigestSize + 1;

  Md5();
  void Update(const void* data, std::size_t length);
  // Writes the 32 upper-case hexadecimal digits and a NUL to `out`
  // (kHexSize bytes). The object is spent afterwards.
  void FinishHex(char* out);

 private:
  void Finish(unsigned char digest[kDigestSize]);

  std::uint32_t state_[4];
  std::uint64_t length_;  // bytes fed so far
  unsigned char pending_[64];
};

// Digest of `length` bytes at `data`, written as 32 digits and a NUL into
// `out` (at least 33 bytes). Returns 0, or -1 when `data` or `out` is null.
int MD5_String(const char* data, unsigned int length, char* out);

// Digest of the contents of the regular file at `path` (the bytes are used as
// the path as they are; links are followed), written like MD5_String. Returns
// 0, or -1 when an argument is null, the path does not name a regular file
// that can be opened for reading, or a read fails part-way; `out` is then
// untouched.
int MD5_File(const char* path, char* out);

}  // namespace tessel

#endif  // TESSEL_COMMON_MD5_H_
