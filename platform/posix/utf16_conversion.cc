// POSIX systems have no UTF-16 service of their own: the conversions are
// this layer's transcoder.
#include "platform/utf16_conversion.h"

#include "platform/utf16_transcoder.h"

namespace tessel_platform {

std::size_t Utf16LengthOfUtf8(const char* text, std::size_t length) {
  return transcoder::Utf16LengthOfUtf8(text, length);
}

std::size_t Utf8ToUtf16(const char* text, std::size_t length, wchar_t* out) {
  return transcoder::Utf8ToUtf16(text, length, out);
}

std::size_t Utf8LengthOfUtf16(const wchar_t* text, std::size_t length) {
  return transcoder::Utf8LengthOfUtf16(text, length);
}

std::size_t Utf16ToUtf8(const wchar_t* text, std::size_t length, char* out) {
  return transcoder::Utf16ToUtf8(text, length, out);
}

}  // namespace tessel_platform
