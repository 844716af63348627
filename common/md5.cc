#include "common/md5.h"

#include <cstdio>
#include <cstring>

#include "platform/file_system.h"
#include "platform/hex_digits.h"

namespace tessel {
namespace {

constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kFileChunk = 1024;

inline std::uint32_t RotateLeft(std::uint32_t value, int bits) {
  return (value << bits) | (value >> (32 - bits));
}

// The four auxiliary functions of RFC 1321, in forms with fewer operations.
struct F {
  static std::uint32_t Mix(std::uint32_t x, std::uint32_t y, std::uint32_t z) {
    return z ^ (x & (y ^ z));
  }
};
struct G {
  static std::uint32_t Mix(std::uint32_t x, std::uint32_t y, std::uint32_t z) {
    return y ^ (z & (x ^ y));
  }
};
struct H {
  static std::uint32_t Mix(std::uint32_t x, std::uint32_t y, std::uint32_t z) {
    return x ^ y ^ z;
  }
};
struct I {
  static std::uint32_t Mix(std::uint32_t x, std::uint32_t y, std::uint32_t z) {
    return y ^ (x | ~z);
  }
};

template <typename Round>
inline void Step(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                 std::uint32_t word, std::uint32_t constant, int shift) {
  a = b + RotateLeft(a + Round::Mix(b, c, d) + word + constant, shift);
}

inline std::uint32_t LoadLittleEndian(const unsigned char* p) {
  return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
         (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

void StoreLittleEndian(std::uint32_t value, unsigned char* p) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>(value >> (8 * i));
}

// Processes whole 64-byte blocks; the step constants are floor(|sin(i)| * 2^32).
void TransformBlocks(std::uint32_t state[4], const unsigned char* data, std::size_t blocks) {
  std::uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
  for (; blocks > 0; --blocks, data += kBlockSize) {
    std::uint32_t x[16];
    for (int i = 0; i < 16; ++i) x[i] = LoadLittleEndian(data + 4 * i);
    const std::uint32_t a0 = a, b0 = b, c0 = c, d0 = d;

    Step<F>(a, b, c, d, x[0], 0xd76aa478, 7);
    Step<F>(d, a, b, c, x[1], 0xe8c7b756, 12);
    Step<F>(c, d, a, b, x[2], 0x242070db, 17);
    Step<F>(b, c, d, a, x[3], 0xc1bdceee, 22);
    Step<F>(a, b, c, d, x[4], 0xf57c0faf, 7);
    Step<F>(d, a, b, c, x[5], 0x4787c62a, 12);
    Step<F>(c, d, a, b, x[6], 0xa8304613, 17);
    Step<F>(b, c, d, a, x[7], 0xfd469501, 22);
    Step<F>(a, b, c, d, x[8], 0x698098d8, 7);
    Step<F>(d, a, b, c, x[9], 0x8b44f7af, 12);
    Step<F>(c, d, a, b, x[10], 0xffff5bb1, 17);
    Step<F>(b, c, d, a, x[11], 0x895cd7be, 22);
    Step<F>(a, b, c, d, x[12], 0x6b901122, 7);
    Step<F>(d, a, b, c, x[13], 0xfd987193, 12);
    Step<F>(c, d, a, b, x[14], 0xa679438e, 17);
    Step<F>(b, c, d, a, x[15], 0x49b40821, 22);

    Step<G>(a, b, c, d, x[1], 0xf61e2562, 5);
    Step<G>(d, a, b, c, x[6], 0xc040b340, 9);
    Step<G>(c, d, a, b, x[11], 0x265e5a51, 14);
    Step<G>(b, c, d, a, x[0], 0xe9b6c7aa, 20);
    Step<G>(a, b, c, d, x[5], 0xd62f105d, 5);
    Step<G>(d, a, b, c, x[10], 0x02441453, 9);
    Step<G>(c, d, a, b, x[15], 0xd8a1e681, 14);
    Step<G>(b, c, d, a, x[4], 0xe7d3fbc8, 20);
    Step<G>(a, b, c, d, x[9], 0x21e1cde6, 5);
    Step<G>(d, a, b, c, x[14], 0xc33707d6, 9);
    Step<G>(c, d, a, b, x[3], 0xf4d50d87, 14);
    Step<G>(b, c, d, a, x[8], 0x455a14ed, 20);
    Step<G>(a, b, c, d, x[13], 0xa9e3e905, 5);
    Step<G>(d, a, b, c, x[2], 0xfcefa3f8, 9);
    Step<G>(c, d, a, b, x[7], 0x676f02d9, 14);
    Step<G>(b, c, d, a, x[12], 0x8d2a4c8a, 20);

    Step<H>(a, b, c, d, x[5], 0xfffa3942, 4);
    Step<H>(d, a, b, c, x[8], 0x8771f681, 11);
    Step<H>(c, d, a, b, x[11], 0x6d9d6122, 16);
    Step<H>(b, c, d, a, x[14], 0xfde5380c, 23);
    Step<H>(a, b, c, d, x[1], 0xa4beea44, 4);
    Step<H>(d, a, b, c, x[4], 0x4bdecfa9, 11);
    Step<H>(c, d, a, b, x[7], 0xf6bb4b60, 16);
    Step<H>(b, c, d, a, x[10], 0xbebfbc70, 23);
    Step<H>(a, b, c, d, x[13], 0x289b7ec6, 4);
    Step<H>(d, a, b, c, x[0], 0xeaa127fa, 11);
    Step<H>(c, d, a, b, x[3], 0xd4ef3085, 16);
    Step<H>(b, c, d, a, x[6], 0x04881d05, 23);
    Step<H>(a, b, c, d, x[9], 0xd9d4d039, 4);
    Step<H>(d, a, b, c, x[12], 0xe6db99e5, 11);
    Step<H>(c, d, a, b, x[15], 0x1fa27cf8, 16);
    Step<H>(b, c, d, a, x[2], 0xc4ac5665, 23);

    Step<I>(a, b, c, d, x[0], 0xf4292244, 6);
    Step<I>(d, a, b, c, x[7], 0x432aff97, 10);
    Step<I>(c, d, a, b, x[14], 0xab9423a7, 15);
    Step<I>(b, c, d, a, x[5], 0xfc93a039, 21);
    Step<I>(a, b, c, d, x[12], 0x655b59c3, 6);
    Step<I>(d, a, b, c, x[3], 0x8f0ccc92, 10);
    Step<I>(c, d, a, b, x[10], 0xffeff47d, 15);
    Step<I>(b, c, d, a, x[1], 0x85845dd1, 21);
    Step<I>(a, b, c, d, x[8], 0x6fa87e4f, 6);
    Step<I>(d, a, b, c, x[15], 0xfe2ce6e0, 10);
    Step<I>(c, d, a, b, x[6], 0xa3014314, 15);
    Step<I>(b, c, d, a, x[13], 0x4e0811a1, 21);
    Step<I>(a, b, c, d, x[4], 0xf7537e82, 6);
    Step<I>(d, a, b, c, x[11], 0xbd3af235, 10);
    Step<I>(c, d, a, b, x[2], 0x2ad7d2bb, 15);
    Step<I>(b, c, d, a, x[9], 0xeb86d391, 21);

    a += a0;
    b += b0;
    c += c0;
    d += d0;
  }
  state[0] = a;
  state[1] = b;
  state[2] = c;
  state[3] = d;
}

}  // namespace

Md5::Md5() : state_{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, length_(0), pending_{} {}

void Md5::Update(const void* data, std::size_t length) {
  const unsigned char* bytes = static_cast<const unsigned char*>(data);
  std::size_t used = static_cast<std::size_t>(length_ % kBlockSize);
  length_ += length;
  if (used > 0) {
    const std::size_t take = length < kBlockSize - used ? length : kBlockSize - used;
    std::memcpy(pending_ + used, bytes, take);
    used += take;
    bytes += take;
    length -= take;
    if (used < kBlockSize) return;
    TransformBlocks(state_, pending_, 1);
  }
  TransformBlocks(state_, bytes, length / kBlockSize);
  std::memcpy(pending_, bytes + length - length % kBlockSize, length % kBlockSize);
}

void Md5::Finish(unsigned char digest[kDigestSize]) {
  const std::uint64_t bit_length = length_ * 8;
  unsigned char padding[kBlockSize + 8] = {0x80};
  const std::size_t used = static_cast<std::size_t>(length_ % kBlockSize);
  const std::size_t pad = (used < 56 ? 56 : 56 + kBlockSize) - used;
  for (int i = 0; i < 8; ++i) padding[pad + i] = static_cast<unsigned char>(bit_length >> (8 * i));
  Update(padding, pad + 8);
  for (int i = 0; i < 4; ++i) StoreLittleEndian(state_[i], digest + 4 * i);
}

void Md5::FinishHex(char* out) {
  unsigned char digest[kDigestSize];
  Finish(digest);
  for (const unsigned char byte : digest) {
    out = tessel_platform::WriteHexByte(byte, tessel_platform::kUpperHexDigits, out);
  }
  *out = '\0';
}

int MD5_String(const char* data, unsigned int length, char* out) {
  if (data == nullptr || out == nullptr) return -1;
  Md5 digest;
  digest.Update(data, length);
  digest.FinishHex(out);
  return 0;
}

int MD5_File(const char* path, char* out) {
  if (path == nullptr || out == nullptr) return -1;
  // Only regular files: a directory or a device would give a digest of
  // nothing, or never end.
  if (!tessel_platform::RegularFileExists(path)) return -1;
  std::FILE* file = tessel_platform::OpenFile(path, "rb");
  if (file == nullptr) return -1;
  Md5 digest;
  unsigned char chunk[kFileChunk];
  std::size_t got;
  while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) digest.Update(chunk, got);
  // A read error must not pass for the end of the file.
  const bool failed = std::ferror(file) != 0;
  std::fclose(file);
  if (failed) return -1;
  digest.FinishHex(out);
  return 0;
}

}  // namespace tessel
