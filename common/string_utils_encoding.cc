// The strict UTF-8/wide conversions and the string digest of StringUtils.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
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

// Input units per block of the conversions, which convert each block into a
// buffer on the stack and append it, all within the data cache.
constexpr std::size_t kDecodeBlock = 4096;  // bytes
constexpr std::size_t kEncodeBlock = 2048;  // wide elements

[[noreturn]] void ThrowBadConversion() { throw std::range_error("bad conversion"); }

// Decodes the sequences that start in the `count` bytes at p (the last may end
// up to three bytes further, before `end`) into out, one element each, and
// advances p past them. Returns the elements written; throws on an ill-formed
// sequence or a code point that one element cannot hold.
std::size_t DecodeStrictly(const char*& text, std::size_t count, const char* text_end,
                           wchar_t* out) {
  const auto* p = reinterpret_cast<const unsigned char*>(text);
  const unsigned char* const stop = p + count;
  const auto* const end = reinterpret_cast<const unsigned char*>(text_end);
  wchar_t* const first = out;
  while (p < stop) {
    while (stop - p >= 8 && tessel_platform::IsAsciiBlock(p)) {
      for (int i = 0; i < 8; ++i) out[i] = static_cast<wchar_t>(p[i]);
      p += 8;
      out += 8;
    }
    while (p < stop && *p < 0x80) *out++ = static_cast<wchar_t>(*p++);
    // A run of other characters, up to the next ASCII byte.
    while (p < stop && *p >= 0x80) {
      char32_t code_point;
      p += tessel_platform::DecodeUtf8(p, end, &code_point);
      static_assert(tessel_platform::kIllFormed > kMaxWideCodePoint, "one test for both");
      if (code_point > kMaxWideCodePoint) ThrowBadConversion();
      *out++ = static_cast<wchar_t>(code_point);
    }
  }
  text = reinterpret_cast<const char*>(p);
  return static_cast<std::size_t>(out - first);
}

// Encodes the `count` elements at text into out (room for four bytes each)
// and advances text past them. Returns the bytes written; throws on an
// element that is not a scalar value.
std::size_t EncodeStrictly(const wchar_t*& text, std::size_t count, const wchar_t* /*end*/,
                           char* out) {
  std::size_t i = 0;
  std::size_t written = 0;
  while (true) {
    const tessel_platform::RunEncoding run =
        tessel_platform::EncodeBmpRun(text + i, count - i, out + written);
    i += run.consumed;
    written += run.written;
    if (i == count) break;
    const auto value = static_cast<std::uint32_t>(text[i++]);
    if (value - 0xD800 < 0x800 || value > kMaxCodePoint) ThrowBadConversion();
    written += tessel_platform::EncodeUtf8(value, out + written);
  }
  text += count;
  return written;
}

// The result's size foreseen from the first block (`produced` units from
// `consumed` of `total` input units), with a sixteenth to spare: text that
// keeps to its scripts is then converted without the result growing.
std::size_t EstimatedSize(std::size_t produced, std::size_t consumed, std::size_t total) {
  const std::uint64_t rest = static_cast<std::uint64_t>(total - consumed) * produced / consumed;
  return static_cast<std::size_t>(produced + rest + rest / 16);
}

// Converts text block by block: `convert(p, count, end, buffer)` converts
// the input that starts in the `count` units at p (kBlock at most) into the
// buffer (kRoom units), advances p and returns the units written. So the
// input is read once and the result's pages are written once.
template <typename Out, std::size_t kBlock, std::size_t kRoom, typename In, typename Convert>
std::basic_string<Out> ConvertInBlocks(const std::basic_string<In>& text, Convert convert) {
  std::basic_string<Out> result;
  const In* p = text.data();
  const In* const end = p + text.size();
  Out buffer[kRoom];
  while (p < end) {
    const In* const block = p;
    const std::size_t written =
        convert(p, std::min<std::size_t>(kBlock, static_cast<std::size_t>(end - p)), end, buffer);
    if (result.empty()) {
      result.reserve(std::min(
          EstimatedSize(written, static_cast<std::size_t>(p - block), text.size()),
          result.max_size()));
    }
    // A result longer than a string can be is memory that cannot be had.
    if (written > result.max_size() - result.size()) throw std::bad_alloc();
    result.append(buffer, written);
  }
  return result;
}

}  // namespace

std::wstring StringUtils::s2ws(const std::string& text) {
  // A sequence that starts in a block may end three bytes beyond it.
  return ConvertInBlocks<wchar_t, kDecodeBlock, kDecodeBlock + 3>(text, DecodeStrictly);
}

std::string StringUtils::ws2s(const std::wstring& text) {
  return ConvertInBlocks<char, kEncodeBlock, 4 * kEncodeBlock>(text, EncodeStrictly);
}

std::string StringUtils::md5(const std::string& text) {
  char hex[Md5::kHexSize];
  Md5 digest;
  digest.Update(text.c_str(), std::strlen(text.c_str()));
  digest.FinishHex(hex);
  return std::string(hex, Md5::kHexSize - 1);
}

}  // namespace tessel
