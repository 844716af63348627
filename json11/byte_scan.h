// Word-at-a-time tests on eight bytes, for skipping runs of plain text in
// strings. Internal to the library; no state.
#ifndef TESSEL_JSON11_BYTE_SCAN_H_
#define TESSEL_JSON11_BYTE_SCAN_H_

#include <cstdint>
#include <cstring>

namespace json11 {

constexpr std::uint64_t kEachByte = 0x0101010101010101u;
constexpr std::uint64_t kHighBits = 0x8080808080808080u;

// Eight bytes from p, which must be readable.
inline std::uint64_t LoadWord(const char* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// Non-zero when some byte of word is below n (n <= 0x80).
constexpr std::uint64_t AnyByteBelow(std::uint64_t word, unsigned n) {
  return (word - kEachByte * n) & ~word & kHighBits;
}

// Non-zero when some byte of word equals c.
constexpr std::uint64_t AnyByteEqual(std::uint64_t word, unsigned char c) {
  return AnyByteBelow(word ^ (kEachByte * c), 1);
}

// Non-zero when some byte of word is a control byte, '"' or '\\': the bytes
// that end a run of plain string content on both reading and writing.
constexpr std::uint64_t AnyStringSpecial(std::uint64_t word) {
  return AnyByteBelow(word, 0x20) | AnyByteEqual(word, '"') | AnyByteEqual(word, '\\');
}

}  // namespace json11

#endif  // TESSEL_JSON11_BYTE_SCAN_H_
