#include "common/base64.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace tessel {
namespace {

constexpr char kAlphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
constexpr char kPad = '=';

// Two output characters for each 12-bit value, so a group of three bytes
// costs two lookups.
struct PairTable {
  std::array<char, 2 * 4096> chars{};
  constexpr PairTable() {
    for (int i = 0; i < 4096; ++i) {
      chars[2 * i] = kAlphabet[i >> 6];
      chars[2 * i + 1] = kAlphabet[i & 63];
    }
  }
};
constexpr PairTable kPairs;

// The decoder's byte map: the byte taken as a signed 8-bit number, the value
// modulo 256.
constexpr std::uint8_t MapByte(int byte) {
  const int value = static_cast<signed char>(static_cast<unsigned char>(byte));
  if (value == '+') return 62;
  if (value == '/') return 63;
  if (value <= '9') return static_cast<std::uint8_t>(value + 4);
  if (value == '=') return 64;
  if (value <= 'Z') return static_cast<std::uint8_t>(value - 65);
  if (value <= 'z') return static_cast<std::uint8_t>(value - 71);
  return 64;
}

struct DecodeTable {
  std::array<std::uint8_t, 256> values{};
  constexpr DecodeTable() {
    for (int i = 0; i < 256; ++i) values[i] = MapByte(i);
  }
};
constexpr DecodeTable kDecode;

// Decodes one group of four characters into dst and returns the bytes it
// gives: one when the third character is the pad, two when only the fourth
// is, else three (three are always written).
inline std::size_t DecodeGroup(const unsigned char* src, unsigned char* dst) {
  const std::uint8_t s1 = kDecode.values[src[0]];
  const std::uint8_t s2 = kDecode.values[src[1]];
  const std::uint8_t s3 = kDecode.values[src[2]];
  const std::uint8_t s4 = kDecode.values[src[3]];
  dst[0] = static_cast<unsigned char>((s1 << 2) + (s2 >> 4));
  dst[1] = static_cast<unsigned char>((s2 << 4) + (s3 >> 2));
  dst[2] = static_cast<unsigned char>((s3 << 6) + s4);
  return src[2] == kPad ? 1 : src[3] == kPad ? 2 : 3;
}

inline void EncodeGroup(const unsigned char* in, char* out) {
  const unsigned group = (unsigned{in[0]} << 16) | (unsigned{in[1]} << 8) | in[2];
  std::memcpy(out, &kPairs.chars[2 * (group >> 12)], 2);
  std::memcpy(out + 2, &kPairs.chars[2 * (group & 0xFFF)], 2);
}

}  // namespace

void Base64_Encode(std::string& out, const std::string& in) {
  if (in.empty()) return;
  const std::size_t full = in.size() / 3;
  const std::size_t rest = in.size() % 3;
  const std::size_t start = out.size();
  out.resize(start + 4 * (full + (rest != 0)));
  const unsigned char* src = reinterpret_cast<const unsigned char*>(in.data());
  char* dst = &out[start];
  for (std::size_t i = 0; i < full; ++i, src += 3, dst += 4) EncodeGroup(src, dst);
  if (rest != 0) {
    const unsigned char last[3] = {src[0], static_cast<unsigned char>(rest == 2 ? src[1] : 0), 0};
    EncodeGroup(last, dst);
    dst[3] = kPad;
    if (rest == 1) dst[2] = kPad;
  }
}

void Base64_Decode(std::string& out, const std::string& in) {
  const std::size_t groups = in.size() / 4;
  if (groups == 0) return;
  const std::size_t start = out.size();
  out.resize(start + 3 * groups);
  const unsigned char* src = reinterpret_cast<const unsigned char*>(in.data());
  unsigned char* const first = reinterpret_cast<unsigned char*>(&out[start]);
  unsigned char* dst = first;
  for (std::size_t i = 0; i < groups; ++i, src += 4) dst += DecodeGroup(src, dst);
  out.resize(start + static_cast<std::size_t>(dst - first));
}

}  // namespace tessel
