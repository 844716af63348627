// The string forms of the UTF-8/UTF-16 conversions, shared by every system:
// they convert block by block through the system's buffer forms.
#include <cstdint>
#include <new>

#include "platform/utf16_conversion.h"

namespace tessel_platform {
namespace {

// Units or bytes per block of the string forms, which convert each block into
// a buffer on the stack and append it, all within the data cache.
constexpr std::size_t kBlock = 4096;

bool IsHighSurrogate(wchar_t element) {
  return static_cast<std::uint32_t>(element) - 0xD800 < 0x400;
}

// The end of the UTF-8 block that starts at `start`: never inside a sequence
// or a maximal subpart, which consist of a lead byte and at most three
// continuation bytes, so a cut before a byte that is not a continuation byte
// splits neither.
std::size_t Utf8BlockEnd(const unsigned char* text, std::size_t start, std::size_t length) {
  const std::size_t end = start + kBlock;
  if (end >= length) return length;
  for (std::size_t cut = end; cut + 3 >= end; --cut) {
    if ((text[cut] & 0xC0) != 0x80) return cut;
  }
  // Four continuation bytes: whatever precedes them ends before `end`.
  return end;
}

// The end of the UTF-16 block that starts at `start`: a surrogate pair stays
// in one block.
std::size_t Utf16BlockEnd(const wchar_t* text, std::size_t start, std::size_t length) {
  std::size_t end = start + kBlock;
  if (end >= length) return length;
  return IsHighSurrogate(text[end - 1]) ? end + 1 : end;
}

// Reserves room for `worst` elements, or, where the string cannot be that
// long, for the exact count that `measure` gives. A result longer than the
// string can be is an allocation that cannot succeed: std::bad_alloc, thrown
// before `out` changes.
template <typename String, typename Measure>
void ReserveUpTo(String& out, std::size_t worst, Measure measure) {
  if (worst <= out.max_size()) {
    out.reserve(worst);
    return;
  }
  const std::size_t exact = measure();
  if (exact > out.max_size()) throw std::bad_alloc();
  out.reserve(exact);
}

}  // namespace

void Utf8ToUtf16(const char* text, std::size_t length, std::wstring& out) {
  ReserveUpTo(out, length, [&] { return Utf16LengthOfUtf8(text, length); });
  out.clear();
  const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
  for (std::size_t start = 0; start < length;) {
    const std::size_t end = Utf8BlockEnd(bytes, start, length);
    wchar_t units[kBlock + 3];
    out.append(units, Utf8ToUtf16(text + start, end - start, units));
    start = end;
  }
}

void Utf16ToUtf8(const wchar_t* text, std::size_t length, std::string& out) {
  const std::size_t worst = length <= SIZE_MAX / 3 ? 3 * length : SIZE_MAX;
  ReserveUpTo(out, worst, [&] { return Utf8LengthOfUtf16(text, length); });
  out.clear();
  for (std::size_t start = 0; start < length;) {
    const std::size_t end = Utf16BlockEnd(text, start, length);
    char bytes[3 * (kBlock + 1)];
    out.append(bytes, Utf16ToUtf8(text + start, end - start, bytes));
    start = end;
  }
}

}  // namespace tessel_platform
