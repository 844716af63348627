#include "platform/utf16_transcoder.h"

#include <cstdint>

#include "platform/utf8_codec.h"
#include "platform/utf8_run_encoder.h"

namespace tessel_platform {
namespace transcoder {
namespace {

constexpr char32_t kFirstSupplementary = 0x10000;

std::uint32_t Unit(wchar_t element) { return static_cast<std::uint32_t>(element); }

bool IsHighSurrogate(std::uint32_t unit) { return unit - 0xD800 < 0x400; }
bool IsLowSurrogate(std::uint32_t unit) { return unit - 0xDC00 < 0x400; }

// One loop serves measuring (kWrite false, out unused) and converting.
template <bool kWrite>
std::size_t Utf8ToUtf16Units(const char* text, std::size_t length, wchar_t* out) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  const unsigned char* const end = p + length;
  std::size_t written = 0;
  while (p < end) {
    if (*p < 0x80) {
      if (end - p >= 8 && IsAsciiBlock(p)) {
        if (kWrite) {
          for (int i = 0; i < 8; ++i) out[written + i] = static_cast<wchar_t>(p[i]);
        }
        p += 8;
        written += 8;
      } else {
        if (kWrite) out[written] = static_cast<wchar_t>(*p);
        ++p;
        ++written;
      }
      continue;
    }
    char32_t code_point;
    p += DecodeUtf8(p, end, &code_point);
    if (code_point == kIllFormed) code_point = kReplacementCharacter;
    if (code_point >= kFirstSupplementary) {
      if (kWrite) {
        const char32_t offset = code_point - kFirstSupplementary;
        out[written] = static_cast<wchar_t>(0xD800 + (offset >> 10));
        out[written + 1] = static_cast<wchar_t>(0xDC00 + (offset & 0x3FF));
      }
      written += 2;
    } else {
      if (kWrite) out[written] = static_cast<wchar_t>(code_point);
      ++written;
    }
  }
  return written;
}

}  // namespace

std::size_t Utf16LengthOfUtf8(const char* text, std::size_t length) {
  return Utf8ToUtf16Units<false>(text, length, nullptr);
}

std::size_t Utf8ToUtf16(const char* text, std::size_t length, wchar_t* out) {
  return Utf8ToUtf16Units<true>(text, length, out);
}

// Each element counted as the code point it holds (above U+FFFF as four
// bytes): exact for valid text, and enough when U+FFFD replaces surrogates or
// elements beyond UTF-16.
std::size_t Utf8LengthOfUtf16(const wchar_t* text, std::size_t length) {
  std::size_t extra = 0;
  // Branch-free, so that the compiler can vectorise it.
  for (std::size_t i = 0; i < length; ++i) {
    const std::uint32_t value = Unit(text[i]);
    extra += static_cast<std::size_t>(value >= 0x80) + (value >= 0x800) + (value >= 0x10000);
  }
  return length + extra;
}

std::size_t Utf16ToUtf8(const wchar_t* text, std::size_t length, char* out) {
  char* const first = out;
  const wchar_t* p = text;
  const wchar_t* const end = text + length;
  while (true) {
    const RunEncoding run = EncodeBmpRun(p, static_cast<std::size_t>(end - p), out);
    p += run.consumed;
    out += run.written;
    if (p == end) break;
    const std::uint32_t unit = Unit(*p++);
    char32_t code_point = kReplacementCharacter;
    if (IsHighSurrogate(unit) && p < end && IsLowSurrogate(Unit(*p))) {
      code_point = kFirstSupplementary + ((unit - 0xD800) << 10) + (Unit(*p++) - 0xDC00);
    }
    out += EncodeUtf8(code_point, out);
  }
  return static_cast<std::size_t>(out - first);
}

}  // namespace transcoder
}  // namespace tessel_platform
