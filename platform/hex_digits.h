// Hexadecimal digits, written and read, for the library's text formats:
// percent-encoding, JSON escapes, digests and identifiers. Constants and pure
// functions; safe on any thread.
#ifndef TESSEL_PLATFORM_HEX_DIGITS_H_
#define TESSEL_PLATFORM_HEX_DIGITS_H_

namespace tessel_platform {

// The sixteen digits, indexed by their value (a NUL follows the last).
constexpr char kLowerHexDigits[] = "0123456789abcdef";
constexpr char kUpperHexDigits[] = "0123456789ABCDEF";

// Writes the two digits of `byte`, high nibble first, from `digits` (one of
// the tables above) to out[0..1]; returns out + 2.
inline char* WriteHexByte(unsigned char byte, const char* digits, char* out) {
  out[0] = digits[byte >> 4];
  out[1] = digits[byte & 15];
  return out + 2;
}

// The value of a hexadecimal digit of either case, or -1 for any other byte.
inline int HexDigitValue(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_HEX_DIGITS_H_
