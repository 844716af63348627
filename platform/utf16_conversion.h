// Conversions between UTF-8 and UTF-16 that never fail: the system's
// code-page services where it has them (Windows), this layer's own transcoder
// elsewhere, with the same results everywhere. UTF-16 code units are carried
// one per wchar_t element, whatever the width of wchar_t. Malformed input is
// replaced, not rejected: each maximal subpart of an ill-formed UTF-8 sequence
// becomes one U+FFFD, and so does each unpaired surrogate (or any element
// above 0xFFFF) of UTF-16 input. Pure functions; safe on any thread.
#ifndef TESSEL_PLATFORM_UTF16_CONVERSION_H_
#define TESSEL_PLATFORM_UTF16_CONVERSION_H_

#include <cstddef>
#include <string>

namespace tessel_platform {

// Number of UTF-16 units that Utf8ToUtf16 writes for these bytes; never more
// than `length`.
std::size_t Utf16LengthOfUtf8(const char* text, std::size_t length);

// Converts `length` bytes of UTF-8 into `out`, which has room for
// Utf16LengthOfUtf8(text, length) units (`length` units always suffice).
// Returns the number of units written. Writes no terminating NUL.
std::size_t Utf8ToUtf16(const char* text, std::size_t length, wchar_t* out);

// At least the number of bytes that Utf16ToUtf8 writes for these units, and
// never more than four times `length`.
std::size_t Utf8LengthOfUtf16(const wchar_t* text, std::size_t length);

// Converts `length` UTF-16 units into `out`, which has room for
// Utf8LengthOfUtf16(text, length) bytes. Returns the number of bytes written.
// Writes no terminating NUL.
std::size_t Utf16ToUtf8(const wchar_t* text, std::size_t length, char* out);

// The same conversions into a string, whose previous contents are replaced.
// Room for the worst case is reserved first (one unit per byte, three bytes
// per unit; untouched pages cost nothing), so a std::bad_alloc can only come
// before `out` is changed. The text is then converted in cache-sized blocks
// straight into `out`, reusing its storage.
void Utf8ToUtf16(const char* text, std::size_t length, std::wstring& out);
void Utf16ToUtf8(const wchar_t* text, std::size_t length, std::string& out);

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_UTF16_CONVERSION_H_
