// The strict UTF-8/wide conversions and the string digest of StringUtils.
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "common/md5.h"
#include "common/string_utils.h"
#include "platform/utf8_codec.h"

namespace tessel {
namespace {

constexpr char32_t kMaxCodePoint = 0x10FFFF;

// The largest code point one wchar_t holds: U+10FFFF where wchar_t has 32
// bits, U+FFFF where it has 16.
constexpr char32_t kMaxWideCodePoint =
    std::numeric_limits<wchar_t>::max() < kMaxCodePoint
        ? static_cast<char32_t>(std::numeric_limits<wchar_t>::max())
        : kMaxCodePoint;

constexpr std::size_t kEncodeBlock = 2048;  // wide elements

[[noreturn]] void ThrowBadConversion() { throw std::range_error("bad conversion"); }

}  // namespace

std::wstring StringUtils::s2ws(const std::string& text) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* const end = p + text.size();
  // One element per byte is the most the conversion can produce.
  std::wstring result(text.size(), L'\0');
  wchar_t* out = &result[0];
  while (p < end) {
    while (end - p >= 8 && tessel_platform::IsAsciiBlock(p)) {
      for (int i = 0; i < 8; ++i) out[i] = static_cast<wchar_t>(p[i]);
      p += 8;
      out += 8;
    }
    if (p == end) break;
    char32_t code_point;
    p += tessel_platform::DecodeUtf8(p, end, &code_point);
    if (code_point == tessel_platform::kIllFormed || code_point > kMaxWideCodePoint) {
      ThrowBadConversion();
    }
    *out++ = static_cast<wchar_t>(code_point);
  }
  result.resize(static_cast<std::size_t>(out - result.data()));
  return result;
}

std::string StringUtils::ws2s(const std::wstring& text) {
  const tessel_platform::WideScan scan = tessel_platform::ScanWide(text.data(), text.size());
  if (!scan.all_scalar) ThrowBadConversion();
  // Encoded block by block on the stack and appended, so that the result's
  // pages are written once.
  std::string result;
  result.reserve(scan.utf8_bound);
  const wchar_t* element = text.data();
  const wchar_t* const end = element + text.size();
  char block[4 * kEncodeBlock];  // at most four bytes per element
  while (element < end) {
    const wchar_t* const block_end =
        end - element > static_cast<std::ptrdiff_t>(kEncodeBlock) ? element + kEncodeBlock : end;
    char* out = block;
    while (element < block_end) {
      const tessel_platform::EncodeStep step =
          tessel_platform::EncodeScalarStep(element, block_end, out);
      element += step.consumed;
      out += step.written;
    }
    result.append(block, static_cast<std::size_t>(out - block));
  }
  return result;
}

std::string StringUtils::md5(const std::string& text) {
  char hex[Md5::kHexSize];
  Md5 digest;
  digest.Update(text.c_str(), std::strlen(text.c_str()));
  digest.FinishHex(hex);
  return std::string(hex, Md5::kHexSize - 1);
}

}  // namespace tessel
