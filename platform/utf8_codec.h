// Decoding and encoding of single UTF-8 sequences, shared by the lenient
// UTF-16 conversions of this layer and the library's strict wide-string
// conversions. Pure functions of their arguments; safe on any thread.
#ifndef TESSEL_PLATFORM_UTF8_CODEC_H_
#define TESSEL_PLATFORM_UTF8_CODEC_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tessel_platform {

constexpr char32_t kReplacementCharacter = 0xFFFD;
constexpr char32_t kIllFormed = 0xFFFFFFFF;

// True when the 8 bytes at p are all ASCII.
inline bool IsAsciiBlock(const unsigned char* p) {
  std::uint64_t block;
  std::memcpy(&block, p, sizeof block);
  return (block & 0x8080808080808080ULL) == 0;
}

// True when the 4 wide elements at p are all ASCII.
inline bool IsAsciiUnits(const wchar_t* p) {
  return (static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) |
          static_cast<std::uint32_t>(p[2]) | static_cast<std::uint32_t>(p[3])) < 0x80;
}

// Decodes the sequence starting at p (p < end) following the table of
// well-formed byte sequences of the Unicode Standard (chapter 3). Returns the
// number of bytes taken, at least 1. On success *code_point is the scalar
// value; otherwise it is kIllFormed and the bytes taken are the maximal
// subpart of the ill-formed sequence (a single byte when the first byte
// cannot start a sequence).
inline std::size_t DecodeUtf8(const unsigned char* p, const unsigned char* end,
                              char32_t* code_point) {
  const unsigned lead = p[0];
  if (lead < 0x80) {
    *code_point = lead;
    return 1;
  }
  // Fast paths for the common well-formed two- and three-byte sequences,
  // recognised on a little-endian word of the next bytes; the general walk
  // below decides everything else.
  if (end - p >= 4) {
    const std::uint32_t word = static_cast<std::uint32_t>(lead) | (std::uint32_t{p[1]} << 8) |
                               (std::uint32_t{p[2]} << 16) | (std::uint32_t{p[3]} << 24);
    if ((word & 0xC0C0F0) == 0x8080E0) {
      const char32_t value = ((lead & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F);
      if (value >= 0x800 && value - 0xD800 >= 0x800) {
        *code_point = value;
        return 3;
      }
    } else if ((word & 0xC0E0) == 0x80C0 && lead >= 0xC2) {
      *code_point = ((lead & 0x1F) << 6) | (p[1] & 0x3F);
      return 2;
    }
  }
  std::size_t length;
  unsigned low = 0x80;
  unsigned high = 0xBF;
  char32_t value;
  if (lead < 0xC2) {
    *code_point = kIllFormed;
    return 1;
  } else if (lead < 0xE0) {
    length = 2;
    value = lead & 0x1F;
  } else if (lead < 0xF0) {
    length = 3;
    value = lead & 0x0F;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;  // no surrogates
  } else if (lead < 0xF5) {
    length = 4;
    value = lead & 0x07;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
  } else {
    *code_point = kIllFormed;
    return 1;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (p + i == end || p[i] < low || p[i] > high) {
      *code_point = kIllFormed;
      return i;
    }
    value = (value << 6) | (p[i] & 0x3F);
    low = 0x80;
    high = 0xBF;
  }
  *code_point = value;
  return length;
}

// Writes the UTF-8 form of a code point (at most U+10FFFF) to out and returns
// its length, 1 to 4. A surrogate code point gets the three-byte form.
inline std::size_t EncodeUtf8(char32_t code_point, char* out) {
  if (code_point < 0x80) {
    out[0] = static_cast<char>(code_point);
    return 1;
  }
  if (code_point < 0x800) {
    out[0] = static_cast<char>(0xC0 | (code_point >> 6));
    out[1] = static_cast<char>(0x80 | (code_point & 0x3F));
    return 2;
  }
  if (code_point < 0x10000) {
    out[0] = static_cast<char>(0xE0 | (code_point >> 12));
    out[1] = static_cast<char>(0x80 | ((code_point >> 6) & 0x3F));
    out[2] = static_cast<char>(0x80 | (code_point & 0x3F));
    return 3;
  }
  out[0] = static_cast<char>(0xF0 | (code_point >> 18));
  out[1] = static_cast<char>(0x80 | ((code_point >> 12) & 0x3F));
  out[2] = static_cast<char>(0x80 | ((code_point >> 6) & 0x3F));
  out[3] = static_cast<char>(0x80 | (code_point & 0x3F));
  return 4;
}

struct EncodeStep {
  std::size_t consumed;  // wide elements
  std::size_t written;   // bytes
};

// Encodes the scalar value at p (the caller knows it is one), or a run of
// four ASCII elements at once, into out. Reads nothing at or beyond end.
inline EncodeStep EncodeScalarStep(const wchar_t* p, const wchar_t* end, char* out) {
  const std::uint32_t value = static_cast<std::uint32_t>(*p);
  if (value < 0x80) {
    if (end - p >= 4 && IsAsciiUnits(p)) {
      for (int k = 0; k < 4; ++k) out[k] = static_cast<char>(p[k]);
      return {4, 4};
    }
    out[0] = static_cast<char>(value);
    return {1, 1};
  }
  if (value >= 0x800 && value < 0x10000) {
    out[0] = static_cast<char>(0xE0 | (value >> 12));
    out[1] = static_cast<char>(0x80 | ((value >> 6) & 0x3F));
    out[2] = static_cast<char>(0x80 | (value & 0x3F));
    return {1, 3};
  }
  return {1, EncodeUtf8(value, out)};
}

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_UTF8_CODEC_H_
