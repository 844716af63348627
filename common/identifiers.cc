// Version-4 UUIDs from std::random_device, and the nonces made of them.
#include "common/identifiers.h"

#include <cstdint>
#include <random>

#include "common/string_utils.h"
#include "platform/hex_digits.h"

namespace tessel {

namespace {

// Two 32-bit draws, the first forming the upper half.
uint64_t Draw64(std::random_device& device) {
  const uint64_t high = static_cast<uint32_t>(device());
  return high << 32 | static_cast<uint32_t>(device());
}

// Writes the low `digits` nibbles of `value`, most significant first.
char* WriteHex(char* out, uint64_t value, int digits) {
  for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
    *out++ = tessel_platform::kLowerHexDigits[(value >> shift) & 15];
  }
  return out;
}

}  // namespace

std::string random_uuid() {
  std::random_device device;
  uint64_t a = Draw64(device);
  uint64_t b = Draw64(device);
  a = (a & ~uint64_t{0xF000}) | uint64_t{0x4000};
  b = (b & ~(uint64_t{3} << 62)) | uint64_t{1} << 63;

  char text[36];
  char* out = WriteHex(text, a >> 32, 8);
  *out++ = '-';
  out = WriteHex(out, a >> 16, 4);
  *out++ = '-';
  out = WriteHex(out, a, 4);
  *out++ = '-';
  out = WriteHex(out, b >> 48, 4);
  *out++ = '-';
  out = WriteHex(out, b >> 32, 4);
  WriteHex(out, b, 8);
  return std::string(text, sizeof text);
}

std::string nonce() {
  std::string id = random_uuid();
  StringUtils::replace_all_distinct(id, "-", "");
  return id;
}

std::string StringUtils::generateUUID() { return random_uuid(); }

}  // namespace tessel
