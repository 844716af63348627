#include "platform/utf8_run_encoder.h"

#include <array>
#include <cstdint>

#include "platform/utf8_codec.h"

#if (defined(__x86_64__) || defined(__i386__)) && defined(__GNUC__)
#define TESSEL_RUN_ENCODER_SSSE3 1
#include <tmmintrin.h>
#endif

namespace tessel_platform {
namespace {

bool IsBmpScalar(std::uint32_t value) { return value <= 0xFFFF && value - 0xD800 >= 0x800; }

#if TESSEL_RUN_ENCODER_SSSE3

// Each 32-bit lane of four BMP values is first spread into the bytes
//   b0 = 0xE0 | v >> 12                       lead of a three-byte form
//   b1 = 0x80 | (v >> 6 & 0x3F) | 0x40·(v < 0x800)  second byte, or lead of a two-byte form
//   b2 = 0x80 | (v & 0x3F)                    last byte of either form
//   b3 = v                                    the whole of a one-byte form
// and a shuffle then gathers b0 b1 b2, b1 b2 or b3 of each lane. The shuffle
// is chosen by which lanes are at least 0x80 (bits 0-3 of the index) and at
// least 0x800 (bits 4-7).
struct Gather {
  alignas(16) std::uint8_t shuffle[16];
  std::uint8_t length;
};

constexpr std::array<Gather, 256> MakeGathers() {
  std::array<Gather, 256> gathers{};
  for (int index = 0; index < 256; ++index) {
    Gather& gather = gathers[index];
    int next = 0;
    for (int lane = 0; lane < 4; ++lane) {
      const int bytes = 1 + (index >> lane & 1) + (index >> (lane + 4) & 1);
      const int first = bytes == 1 ? 3 : 3 - bytes;
      for (int k = 0; k < bytes; ++k) gather.shuffle[next++] = static_cast<std::uint8_t>(4 * lane + first + k);
    }
    gather.length = static_cast<std::uint8_t>(next);
    while (next < 16) gather.shuffle[next++] = 0x80;  // zero
  }
  return gathers;
}

constexpr std::array<Gather, 256> kGathers = MakeGathers();

// Groups of four go through the vector unit while at least 16 elements
// remain: a group's 16-byte store then only reaches bytes that the remaining
// elements overwrite.
constexpr std::size_t kVectorReach = 16;

// Copies ASCII elements eight at a time from the start of text while a whole
// eight are ASCII and `length` allows; returns how many it copied.
__attribute__((target("ssse3"))) std::size_t EncodeAsciiEights(const wchar_t* text,
                                                               std::size_t length, char* out) {
  const __m128i zero = _mm_setzero_si128();
  std::size_t i = 0;
  for (; length - i >= 8; i += 8) {
    __m128i bytes;
    if constexpr (sizeof(wchar_t) == 2) {
      const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
      if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_srli_epi16(units, 7), zero)) != 0xFFFF) break;
      bytes = _mm_packus_epi16(units, zero);
    } else {
      const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
      const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i + 4));
      const __m128i both = _mm_or_si128(low, high);
      if (_mm_movemask_epi8(_mm_cmpeq_epi32(_mm_srli_epi32(both, 7), zero)) != 0xFFFF) break;
      bytes = _mm_packus_epi16(_mm_packs_epi32(low, high), zero);
    }
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), bytes);
  }
  return i;
}

__attribute__((target("ssse3"))) RunEncoding EncodeBmpRunSsse3(const wchar_t* text,
                                                               std::size_t length, char* out) {
  const __m128i zero = _mm_setzero_si128();
  std::size_t i = 0;
  std::size_t written = 0;
  int ascii_groups = 0;
  for (; length - i >= kVectorReach; i += 4) {
    __m128i value;
    if constexpr (sizeof(wchar_t) == 2) {
      value = _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(text + i)), zero);
    } else {
      value = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
    }
    const __m128i in_plane = _mm_cmpeq_epi32(_mm_srli_epi32(value, 16), zero);
    const __m128i surrogate = _mm_cmpeq_epi32(_mm_and_si128(value, _mm_set1_epi32(0xF800)),
                                              _mm_set1_epi32(0xD800));
    if (_mm_movemask_epi8(_mm_andnot_si128(surrogate, in_plane)) != 0xFFFF) break;
    const __m128i two_or_more = _mm_cmpgt_epi32(value, _mm_set1_epi32(0x7F));
    const __m128i three = _mm_cmpgt_epi32(value, _mm_set1_epi32(0x7FF));
    const int index = _mm_movemask_ps(_mm_castsi128_ps(two_or_more)) |
                      _mm_movemask_ps(_mm_castsi128_ps(three)) << 4;
    __m128i spread = _mm_or_si128(
        _mm_or_si128(_mm_srli_epi32(value, 12),
                     _mm_and_si128(_mm_slli_epi32(value, 2), _mm_set1_epi32(0x3F00))),
        _mm_or_si128(_mm_and_si128(_mm_slli_epi32(value, 16), _mm_set1_epi32(0x3F0000)),
                     _mm_slli_epi32(value, 24)));
    spread = _mm_or_si128(spread, _mm_or_si128(_mm_set1_epi32(0x8080E0),
                                               _mm_andnot_si128(three, _mm_set1_epi32(0x4000))));
    const Gather& gather = kGathers[static_cast<std::size_t>(index)];
    const __m128i bytes = _mm_shuffle_epi8(
        spread, _mm_load_si128(reinterpret_cast<const __m128i*>(gather.shuffle)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + written), bytes);
    written += gather.length;
    ascii_groups = index == 0 ? ascii_groups + 1 : 0;
    if (ascii_groups >= 2) {
      // Two groups of ASCII in a row: ASCII text, which goes on eight
      // elements at a time (waiting for the second group keeps short words
      // between other characters off this path).
      const std::size_t ascii = EncodeAsciiEights(text + i + 4, length - i - 4, out + written);
      i += ascii;
      written += ascii;
    }
  }
  const RunEncoding rest = EncodeBmpRunPortable(text + i, length - i, out + written);
  return {i + rest.consumed, written + rest.written};
}

bool ProcessorHasSsse3() {
#if defined(__SSSE3__)
  return true;
#else
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("ssse3") != 0;
  }();
  return has;
#endif
}

#endif  // TESSEL_RUN_ENCODER_SSSE3

}  // namespace

RunEncoding EncodeBmpRunPortable(const wchar_t* text, std::size_t length, char* out) {
  std::size_t i = 0;
  std::size_t written = 0;
  while (i < length && IsBmpScalar(static_cast<std::uint32_t>(text[i]))) {
    const EncodeStep step = EncodeScalarStep(text + i, text + length, out + written);
    i += step.consumed;
    written += step.written;
  }
  return {i, written};
}

RunEncoding EncodeBmpRun(const wchar_t* text, std::size_t length, char* out) {
#if TESSEL_RUN_ENCODER_SSSE3
  if (ProcessorHasSsse3()) return EncodeBmpRunSsse3(text, length, out);
#endif
  return EncodeBmpRunPortable(text, length, out);
}

}  // namespace tessel_platform
