// Conversions between UTF-8 and UTF-16 that never fail: this layer's stand-in
// for the system code-page services. UTF-16 code units are carried one per
// wchar_t element, whatever the width of wchar_t. Malformed input is replaced,
// not rejected: each maximal subpart of an ill-formed UTF-8 sequence becomes
// one U+FFFD, and so does each unpaired surrogate (or any element above 0xFFFF)
// of UTF-16 input. Pure functions; safe on any thread.
#ifndef TESSEL_PLATFORM_UTF16_CONVERSION_H_
#define TESSEL_PLATFORM_UTF16_CONVERSION_H_

#include <cstddef>

namespace tessel_platform {

// Number of UTF-16 units that Utf8ToUtf16 writes for these bytes; never more
// than `length`.
std::size_t Utf16LengthOfUtf8(const char* text, std::size_t length);

// Converts `length` bytes of UTF-8 into `out`, which has room for
// Utf16LengthOfUtf8(text, length) units (`length` units always suffice).
// Returns the number of units written. Writes no terminating NUL.
std::size_t Utf8ToUtf16(const char* text, std::size_t length, wchar_t* out);

// Number of bytes that Utf16ToUtf8 writes for these units; never more than
// three times `length`.
std::size_t Utf8LengthOfUtf16(const wchar_t* text, std::size_t length);

// Converts `length` UTF-16 units into `out`, which has room for
// Utf8LengthOfUtf16(text, length) bytes. Returns the number of bytes written.
// Writes no terminating NUL.
std::size_t Utf16ToUtf8(const wchar_t* text, std::size_t length, char* out);

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_UTF16_CONVERSION_H_
