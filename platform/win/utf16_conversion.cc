// Windows conversions: the system's MultiByteToWideChar/WideCharToMultiByte
// with code page 65001 (UTF-8), asked to refuse ill-formed input. Text they
// refuse, and text too long for their int counts, goes to this layer's
// transcoder, so malformed input is replaced by the same rules on every
// system: the systems' own replacement differs between versions (Wine 8 gives
// one U+FFFD for "\xE0\x80" where the maximal-subpart rule gives two).
#include "platform/utf16_conversion.h"

#include <windows.h>

#include <climits>

#include "platform/utf16_transcoder.h"

namespace tessel_platform {
namespace {

constexpr UINT kUtf8 = CP_UTF8;

bool FitsInt(std::size_t count) { return count <= static_cast<std::size_t>(INT_MAX); }

// The system's strict conversions; 0 when they refuse the text (or it is
// empty).
int SystemToUtf16(const char* text, std::size_t length, wchar_t* out, int room) {
  return MultiByteToWideChar(kUtf8, MB_ERR_INVALID_CHARS, text, static_cast<int>(length), out,
                             room);
}

int SystemToUtf8(const wchar_t* text, std::size_t length, char* out, int room) {
  return WideCharToMultiByte(kUtf8, WC_ERR_INVALID_CHARS, text, static_cast<int>(length), out,
                             room, nullptr, nullptr);
}

}  // namespace

std::size_t Utf16LengthOfUtf8(const char* text, std::size_t length) {
  if (length == 0) return 0;
  const int units = FitsInt(length) ? SystemToUtf16(text, length, nullptr, 0) : 0;
  return units > 0 ? static_cast<std::size_t>(units)
                   : transcoder::Utf16LengthOfUtf8(text, length);
}

std::size_t Utf8ToUtf16(const char* text, std::size_t length, wchar_t* out) {
  if (length == 0) return 0;
  // `length` units always suffice, and the system writes no more than the
  // text needs.
  const int units =
      FitsInt(length) ? SystemToUtf16(text, length, out, static_cast<int>(length)) : 0;
  return units > 0 ? static_cast<std::size_t>(units) : transcoder::Utf8ToUtf16(text, length, out);
}

std::size_t Utf8LengthOfUtf16(const wchar_t* text, std::size_t length) {
  if (length == 0) return 0;
  const int bytes = FitsInt(3 * length) ? SystemToUtf8(text, length, nullptr, 0) : 0;
  return bytes > 0 ? static_cast<std::size_t>(bytes)
                   : transcoder::Utf8LengthOfUtf16(text, length);
}

std::size_t Utf16ToUtf8(const wchar_t* text, std::size_t length, char* out) {
  if (length == 0) return 0;
  // The caller has room for Utf8LengthOfUtf16 bytes, which for text the
  // system accepts is exactly what it writes; three bytes per unit bound it.
  const int bytes =
      FitsInt(3 * length) ? SystemToUtf8(text, length, out, static_cast<int>(3 * length)) : 0;
  return bytes > 0 ? static_cast<std::size_t>(bytes) : transcoder::Utf16ToUtf8(text, length, out);
}

}  // namespace tessel_platform
