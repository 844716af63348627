// Throughput of the encodings on 64 MiB inputs, each beside its peer in the
// same run: MD5 and Base64 against OpenSSL, UTF-8 <-> UTF-16 against glibc
// iconv, s2ws/ws2s against std::wstring_convert.
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <malloc.h>

#include <codecvt>
#include <locale>
#include <random>
#include <string>
#include <vector>

#include "common/base64.h"
#include "common/string_utils.h"
#include "common/string_utils_win.h"

#if defined(TESSEL_BENCH_HAVE_OPENSSL)
#include <openssl/evp.h>
#endif

namespace {

constexpr std::size_t kInputSize = 64u << 20;

// Fixed thresholds: with glibc's adaptive ones, whether a fresh 64 MiB result
// (s2ws, ws2s and their peer) is mmap'd afresh on every iteration, its page
// faults included, depends on which benchmark ran before, and on this virtual
// machine the faults cost more than the conversion.
const bool kFixedMallocThresholds = [] {
  mallopt(M_MMAP_THRESHOLD, 256 << 20);
  mallopt(M_TRIM_THRESHOLD, 512 << 20);
  return true;
}();

// Random bytes without NUL (StringUtils::md5 stops at the first NUL).
const std::string& Binary() {
  static const std::string data = [] {
    std::mt19937_64 random(1);
    std::string bytes(kInputSize, '\0');
    for (char& c : bytes) c = static_cast<char>(1 + random() % 255);
    return bytes;
  }();
  return data;
}

const std::string& Base64Text() {
  static const std::string text = [] {
    std::string encoded;
    tessel::Base64_Encode(encoded, Binary().substr(0, kInputSize / 4 * 3));
    return encoded;
  }();
  return text;
}

std::string Repeat(const std::string& unit) {
  std::string text;
  text.reserve(kInputSize + unit.size());
  while (text.size() < kInputSize) text += unit;
  return text;
}

const std::string& AsciiText() {
  static const std::string text = Repeat(
      "Subject: Quarterly report\r\nFrom: Alice <alice@example.com>\r\n"
      "The meeting moved to Thursday at 10:30; please bring the figures.\r\n");
  return text;
}

const std::string& MixedText() {
  static const std::string text = Repeat(
      "\xE9\x82\xAE\xE4\xBB\xB6 mail \xE4\xB8\xBB\xE9\xA2\x98: "
      "\xE5\xAD\xA3\xE5\xBA\xA6\xE6\x8A\xA5\xE5\x91\x8A report, "
      "\xE5\x91\xA8\xE5\x9B\x9B 10:30 \xE5\xBC\x80\xE4\xBC\x9A\xE3\x80\x82 ");
  return text;
}

const std::wstring& Utf16Of(const std::string& text) {
  static std::vector<std::pair<const std::string*, std::wstring>> cache;
  for (const auto& entry : cache) {
    if (entry.first == &text) return entry.second;
  }
  std::wstring wide;
  tessel::StringUtilsWin::utf8ToUnicode(text.c_str(), wide);
  cache.emplace_back(&text, std::move(wide));
  return cache.back().second;
}

void SetBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

// ---- MD5 ---------------------------------------------------------------

void BM_Md5_Tessel(benchmark::State& state) {
  const std::string& data = Binary();
  for (auto _ : state) benchmark::DoNotOptimize(tessel::StringUtils::md5(data));
  SetBytes(state, data.size());
}
BENCHMARK(BM_Md5_Tessel)->Unit(benchmark::kMillisecond);

// ---- Base64 --------------------------------------------------------------

void BM_Base64Encode_Tessel(benchmark::State& state) {
  const std::string& data = Binary();
  std::string out;
  out.reserve(data.size() / 3 * 4 + 4);
  tessel::Base64_Encode(out, data);  // the pages of out touched, as the peer's are
  for (auto _ : state) {
    out.clear();
    tessel::Base64_Encode(out, data);
    benchmark::DoNotOptimize(out.data());
  }
  SetBytes(state, data.size());
}
BENCHMARK(BM_Base64Encode_Tessel)->Unit(benchmark::kMillisecond);

void BM_Base64Decode_Tessel(benchmark::State& state) {
  const std::string& text = Base64Text();
  std::string out;
  out.reserve(text.size() / 4 * 3);
  tessel::Base64_Decode(out, text);  // the pages of out touched, as the peer's are
  for (auto _ : state) {
    out.clear();
    tessel::Base64_Decode(out, text);
    benchmark::DoNotOptimize(out.data());
  }
  SetBytes(state, text.size());
}
BENCHMARK(BM_Base64Decode_Tessel)->Unit(benchmark::kMillisecond);

#if defined(TESSEL_BENCH_HAVE_OPENSSL)
void BM_Md5_OpenSSL(benchmark::State& state) {
  const std::string& data = Binary();
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  for (auto _ : state) {
    EVP_Digest(data.data(), data.size(), digest, &length, EVP_md5(), nullptr);
    benchmark::DoNotOptimize(digest);
  }
  SetBytes(state, data.size());
}
BENCHMARK(BM_Md5_OpenSSL)->Unit(benchmark::kMillisecond);

void BM_Base64Encode_OpenSSL(benchmark::State& state) {
  const std::string& data = Binary();
  std::vector<unsigned char> out(data.size() / 3 * 4 + 5);
  for (auto _ : state) {
    benchmark::DoNotOptimize(EVP_EncodeBlock(
        out.data(), reinterpret_cast<const unsigned char*>(data.data()), static_cast<int>(data.size())));
  }
  SetBytes(state, data.size());
}
BENCHMARK(BM_Base64Encode_OpenSSL)->Unit(benchmark::kMillisecond);

void BM_Base64Decode_OpenSSL(benchmark::State& state) {
  const std::string& text = Base64Text();
  std::vector<unsigned char> out(text.size() / 4 * 3 + 3);
  for (auto _ : state) {
    benchmark::DoNotOptimize(EVP_DecodeBlock(
        out.data(), reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size())));
  }
  SetBytes(state, text.size());
}
BENCHMARK(BM_Base64Decode_OpenSSL)->Unit(benchmark::kMillisecond);
#endif

// ---- UTF-8 <-> UTF-16 ---------------------------------------------------------

void Utf8ToUtf16Tessel(benchmark::State& state, const std::string& text) {
  std::wstring out;
  tessel::StringUtilsWin::utf8ToUnicode(text.c_str(), out);  // out's pages touched, as iconv's are
  for (auto _ : state) {
    tessel::StringUtilsWin::utf8ToUnicode(text.c_str(), out);
    benchmark::DoNotOptimize(out.data());
  }
  SetBytes(state, text.size());
}

void Utf16ToUtf8Tessel(benchmark::State& state, const std::string& text) {
  const std::wstring& wide = Utf16Of(text);
  std::string out;
  tessel::StringUtilsWin::unicodeToUtf8(wide.c_str(), out);  // out's pages touched, as iconv's are
  for (auto _ : state) {
    tessel::StringUtilsWin::unicodeToUtf8(wide.c_str(), out);
    benchmark::DoNotOptimize(out.data());
  }
  SetBytes(state, text.size());
}

// iconv converts into a buffer allocated once, as the library's string
// forms reuse the caller's string.
void IconvLoop(benchmark::State& state, const char* to, const char* from, const char* input,
               std::size_t input_bytes, std::size_t output_bytes, std::size_t counted) {
  iconv_t converter = iconv_open(to, from);
  if (converter == reinterpret_cast<iconv_t>(-1)) {
    state.SkipWithError("iconv_open failed");
    return;
  }
  std::vector<char> out(output_bytes);
  for (auto _ : state) {
    char* in = const_cast<char*>(input);
    std::size_t in_left = input_bytes;
    char* dst = out.data();
    std::size_t out_left = out.size();
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &in, &in_left, &dst, &out_left) == static_cast<std::size_t>(-1)) {
      state.SkipWithError("iconv failed");
      break;
    }
    benchmark::DoNotOptimize(out.data());
  }
  iconv_close(converter);
  SetBytes(state, counted);
}

void Utf8ToUtf16Iconv(benchmark::State& state, const std::string& text) {
  IconvLoop(state, "UTF-16LE", "UTF-8", text.data(), text.size(), 2 * text.size() + 16,
            text.size());
}

void Utf16ToUtf8Iconv(benchmark::State& state, const std::string& text) {
  // iconv reads UTF-16 as 16-bit units, so it gets them packed.
  const std::wstring& wide = Utf16Of(text);
  static std::vector<std::pair<const std::string*, std::u16string>> packed;
  const std::u16string* units = nullptr;
  for (const auto& entry : packed) {
    if (entry.first == &text) units = &entry.second;
  }
  if (units == nullptr) {
    packed.emplace_back(&text, std::u16string(wide.begin(), wide.end()));
    units = &packed.back().second;
  }
  IconvLoop(state, "UTF-8", "UTF-16LE", reinterpret_cast<const char*>(units->data()),
            2 * units->size(), text.size() + 16, text.size());
}

void BM_Utf8ToUtf16_Ascii_Tessel(benchmark::State& s) { Utf8ToUtf16Tessel(s, AsciiText()); }
void BM_Utf8ToUtf16_Ascii_Iconv(benchmark::State& s) { Utf8ToUtf16Iconv(s, AsciiText()); }
void BM_Utf8ToUtf16_Mixed_Tessel(benchmark::State& s) { Utf8ToUtf16Tessel(s, MixedText()); }
void BM_Utf8ToUtf16_Mixed_Iconv(benchmark::State& s) { Utf8ToUtf16Iconv(s, MixedText()); }
void BM_Utf16ToUtf8_Ascii_Tessel(benchmark::State& s) { Utf16ToUtf8Tessel(s, AsciiText()); }
void BM_Utf16ToUtf8_Ascii_Iconv(benchmark::State& s) { Utf16ToUtf8Iconv(s, AsciiText()); }
void BM_Utf16ToUtf8_Mixed_Tessel(benchmark::State& s) { Utf16ToUtf8Tessel(s, MixedText()); }
void BM_Utf16ToUtf8_Mixed_Iconv(benchmark::State& s) { Utf16ToUtf8Iconv(s, MixedText()); }
BENCHMARK(BM_Utf8ToUtf16_Ascii_Tessel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf8ToUtf16_Ascii_Iconv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf8ToUtf16_Mixed_Tessel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf8ToUtf16_Mixed_Iconv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf16ToUtf8_Ascii_Tessel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf16ToUtf8_Ascii_Iconv)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf16ToUtf8_Mixed_Tessel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Utf16ToUtf8_Mixed_Iconv)->Unit(benchmark::kMillisecond);

// ---- s2ws / ws2s ----------------------------------------------------------------

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
using Converter = std::wstring_convert<std::codecvt_utf8<wchar_t>>;

// state.range(0): input bytes, the full 64 MiB or its first 1 MiB.
std::string MixedPrefix(const benchmark::State& state) {
  return MixedText().substr(0, static_cast<std::size_t>(state.range(0)));
}

void BM_S2ws_Mixed_Tessel(benchmark::State& state) {
  const std::string text = MixedPrefix(state);
  for (auto _ : state) benchmark::DoNotOptimize(tessel::StringUtils::s2ws(text));
  SetBytes(state, text.size());
}
void BM_S2ws_Mixed_WstringConvert(benchmark::State& state) {
  const std::string text = MixedPrefix(state);
  for (auto _ : state) benchmark::DoNotOptimize(Converter().from_bytes(text));
  SetBytes(state, text.size());
}
void BM_Ws2s_Mixed_Tessel(benchmark::State& state) {
  const std::wstring wide = tessel::StringUtils::s2ws(MixedPrefix(state));
  for (auto _ : state) benchmark::DoNotOptimize(tessel::StringUtils::ws2s(wide));
  SetBytes(state, static_cast<std::size_t>(state.range(0)));
}
void BM_Ws2s_Mixed_WstringConvert(benchmark::State& state) {
  const std::wstring wide = tessel::StringUtils::s2ws(MixedPrefix(state));
  for (auto _ : state) benchmark::DoNotOptimize(Converter().to_bytes(wide));
  SetBytes(state, static_cast<std::size_t>(state.range(0)));
}
#pragma GCC diagnostic pop
// The mixed text repeats a 64-byte unit, so 1 MiB cuts it at a character
// boundary.
BENCHMARK(BM_S2ws_Mixed_Tessel)->Arg(kInputSize)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_S2ws_Mixed_WstringConvert)->Arg(kInputSize)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ws2s_Mixed_Tessel)->Arg(kInputSize)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ws2s_Mixed_WstringConvert)->Arg(kInputSize)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
