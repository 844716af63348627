// The strict UTF-8/wide conversions and the string digest of StringUtils.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "common/md5.h"
#include "common/string_utils.h"
#include "platform/utf8_codec.h"
#include "platform/utf8_run_encoder.h"

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

// Encodes `count` elements into out (room for four bytes each) and returns the
// bytes written; throws on an element that is not a scalar value.
std::size_t EncodeStrictly(const wchar_t* text, std::size_t count, char* out) {
  std::size_t i = 0;
  std::size_t written = 0;
  while (true) {
    const tessel_platform::RunEncoding run =
        tessel_platform::EncodeBmpRun(text + i, count - i, out + written);
    i += run.consumed;
    written += run.written;
    if (i == count) return written;
    const auto value = static_cast<std::uint32_t>(text[i++]);
    if (value - 0xD800 < 0x800 || value > kMaxCodePoint) ThrowBadConversion();
    written += tessel_platform::EncodeUtf8(value, out + written);
  }
}

// The result's size foreseen from the first block (`bytes` from `count` of
// `total` elements), with a sixteenth to spare: text that keeps to one script
// is then converted without the string growing.
std::size_t EstimatedSize(std::size_t bytes, std::size_t count, std::size_t total) {
  const std::uint64_t rest = static_cast<std::uint64_t>(total - count) * bytes / count;
  return static_cast<std::size_t>(bytes + rest + rest / 16);
}

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
  std::string result;
  const wchar_t* element = text.data();
  const wchar_t* const end = element + text.size();
  // Encoded block by block on the stack and appended, so that the input is
  // read once and the result's pages are written once.
  char block[4 * kEncodeBlock];  // at most four bytes per element
  while (element < end) {
    const std::size_t count = std::min<std::size_t>(kEncodeBlock, end - element);
    const std::size_t bytes = EncodeStrictly(element, count, block);
    element += count;
    if (result.empty()) result.reserve(EstimatedSize(bytes, count, text.size()));
    result.append(block, bytes);
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
