#include "common/html_entities.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "common/html_entities_table.h"
#include "platform/utf8_codec.h"

namespace {

using tessel::html_entities_internal::HtmlEntity;
using tessel::html_entities_internal::kHtmlEntities;
using tessel::html_entities_internal::kHtmlEntityCount;

constexpr unsigned long kCodePointLimit = 0x110000;

// The row whose name, ";" included, starts `text`, or null. Names end with
// their only ";", so none is a prefix of another and bisection over the
// strcmp-sorted table stays exact although each step compares a prefix.
const HtmlEntity* FindNamedEntity(const char* text) {
  size_t low = 0;
  size_t high = kHtmlEntityCount;
  while (low < high) {
    const size_t mid = low + (high - low) / 2;
    const char* name = kHtmlEntities[mid].name;
    const int order = std::strncmp(text, name, std::strlen(name));
    if (order == 0) return &kHtmlEntities[mid];
    if (order < 0) {
      high = mid;
    } else {
      low = mid + 1;
    }
  }
  return nullptr;
}

// Reads the number of a numeric reference with strtoul; true, with the value
// in *code, when the read stops exactly at `semicolon` without error and the
// value is a code point. The caller's errno survives the read.
bool ReadCodePoint(const char* digits, int base, const char* semicolon, uint32_t* code) {
  const int saved_errno = errno;
  errno = 0;
  char* stop = nullptr;
  const unsigned long value = std::strtoul(digits, &stop, base);
  const bool valid = errno == 0 && stop == semicolon && value < kCodePointLimit;
  errno = saved_errno;
  *code = static_cast<uint32_t>(value);
  return valid;
}

// Decodes the reference that starts at `amp` and whose first ";" is
// `semicolon`: writes its UTF-8 bytes at `out` and returns their count, or
// returns 0 when the text is no reference (a reference writes at least one
// byte, even "&#0;").
size_t DecodeReference(const char* amp, const char* semicolon, char* out) {
  if (amp[1] != '#') {
    const HtmlEntity* entity = FindNamedEntity(amp + 1);
    if (entity == nullptr) return 0;
    const size_t size = std::strlen(entity->value);
    std::memcpy(out, entity->value, size);
    return size;
  }
  const bool hex = amp[2] == 'x' || amp[2] == 'X';
  uint32_t code = 0;
  if (!ReadCodePoint(amp + (hex ? 3 : 2), hex ? 16 : 10, semicolon, &code)) return 0;
  return tessel_platform::EncodeUtf8(code, out);
}

// The first ";" after a position. The positions asked about only grow, so a
// ";" found earlier answers every later question before it, and a search that
// found none answers all later ones: each byte is searched at most once, and
// text full of "&" without ";" stays linear.
class SemicolonFinder {
 public:
  explicit SemicolonFinder(const char* end) : end_(end), found_(nullptr) {}

  // The first ";" at or after `from`, or null.
  const char* From(const char* from) {
    if (found_ == end_) return nullptr;
    if (found_ == nullptr || found_ < from) {
      const void* hit = std::memchr(from, ';', static_cast<size_t>(end_ - from));
      found_ = hit != nullptr ? static_cast<const char*>(hit) : end_;
      if (found_ == end_) return nullptr;
    }
    return found_;
  }

 private:
  const char* const end_;  // the source's terminating NUL
  const char* found_;      // last answer; end_ once no ";" remains
};

// Moves `size` bytes from the read to the write position; they may overlap
// when decoding in place, and coincide until the first reference shrinks it.
char* CopyBytes(char* out, const char* in, size_t size) {
  if (out != in) std::memmove(out, in, size);
  return out + size;
}

}  // namespace

size_t decode_html_entities_utf8(char* dest, const char* src) {
  const char* in = src != nullptr ? src : dest;
  const char* const end = in + std::strlen(in);
  char* out = dest;
  SemicolonFinder semicolons(end);
  for (;;) {
    const void* hit = std::memchr(in, '&', static_cast<size_t>(end - in));
    if (hit == nullptr) {
      CopyBytes(out, in, static_cast<size_t>(end - in) + 1);
      return static_cast<size_t>(out - dest) + static_cast<size_t>(end - in);
    }
    const char* amp = static_cast<const char*>(hit);
    out = CopyBytes(out, in, static_cast<size_t>(amp - in));
    const char* semicolon = semicolons.From(amp + 1);
    const size_t written = semicolon != nullptr ? DecodeReference(amp, semicolon, out) : 0;
    if (written != 0) {
      out += written;
      in = semicolon + 1;
    } else {
      *out++ = '&';
      in = amp + 1;
    }
  }
}
