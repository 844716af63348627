// This layer's own UTF-8/UTF-16 transcoder: the replacement rules of
// platform/utf16_conversion.h written out (each maximal subpart of ill-formed
// UTF-8, each unpaired surrogate and each element above 0xFFFF becomes one
// U+FFFD). The system-specific conversions use it directly or wherever the
// system's own service would answer differently. Pure functions; safe on any
// thread.
#ifndef TESSEL_PLATFORM_UTF16_TRANSCODER_H_
#define TESSEL_PLATFORM_UTF16_TRANSCODER_H_

#include <cstddef>

namespace tessel_platform {
namespace transcoder {

// The buffer forms of platform/utf16_conversion.h, with the same contracts.
std::size_t Utf16LengthOfUtf8(const char* text, std::size_t length);
std::size_t Utf8ToUtf16(const char* text, std::size_t length, wchar_t* out);
std::size_t Utf8LengthOfUtf16(const wchar_t* text, std::size_t length);
std::size_t Utf16ToUtf8(const wchar_t* text, std::size_t length, char* out);

}  // namespace transcoder
}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_UTF16_TRANSCODER_H_
