// decode_html_entities_utf8 against a straightforward decoder that walks the
// text byte by byte (linear search of the same entity table, strtoul for
// numbers), on 1 MB without "&" and on 1 MB dense with references; and the
// pinyin converters on 1 M characters of Chinese text, plus the index build.
#include <benchmark/benchmark.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/html_entities.h"
#include "common/html_entities_table.h"
#include "common/pinyin.h"
#include "platform/utf8_codec.h"
// The library keeps its entity table hidden; the naive decoder below uses a
// copy of the same generated data.
#include "common/html_entities_table.cc"

namespace {

using tessel::html_entities_internal::kHtmlEntities;

constexpr size_t kTextSize = 1 << 20;

std::string Repeat(const std::string& piece, size_t size) {
  std::string text;
  while (text.size() < size) text += piece;
  text.resize(size);
  return text;
}

const std::string& PlainText() {
  static const std::string text = Repeat(
      "Dear customer, your order #4711 has shipped; it should arrive within 3-5 days. ", kTextSize);
  return text;
}

const std::string& DenseText() {
  static const std::string text = Repeat(
      "&lt;p&gt;Caf&eacute; &amp; cr&egrave;me &#8364;5 &#x1F600; &quot;x&quot; &AMP; &nbsp;", kTextSize);
  return text;
}

// The straightforward decoder: one byte at a time, a fresh search for ";" at
// each "&", a linear scan of the names.
size_t NaiveDecode(char* dest, const char* in) {
  char* out = dest;
  while (*in != '\0') {
    if (*in != '&') {
      *out++ = *in++;
      continue;
    }
    const char* semicolon = std::strchr(in, ';');
    size_t written = 0;
    if (semicolon != nullptr && in[1] == '#') {
      const bool hex = in[2] == 'x' || in[2] == 'X';
      const int saved = errno;
      errno = 0;
      char* stop = nullptr;
      const unsigned long c = std::strtoul(in + (hex ? 3 : 2), &stop, hex ? 16 : 10);
      if (errno == 0 && stop == semicolon && c < 0x110000) {
        written = tessel_platform::EncodeUtf8(static_cast<char32_t>(c), out);
      }
      errno = saved;
    } else if (semicolon != nullptr) {
      for (const auto& row : kHtmlEntities) {
        if (std::strncmp(in + 1, row.name, std::strlen(row.name)) == 0) {
          written = std::strlen(row.value);
          std::memcpy(out, row.value, written);
          break;
        }
      }
    }
    if (written != 0) {
      out += written;
      in = semicolon + 1;
    } else {
      *out++ = *in++;
    }
  }
  *out = '\0';
  return static_cast<size_t>(out - dest);
}

template <size_t (*Decode)(char*, const char*)>
void RunDecoder(benchmark::State& state, const std::string& text) {
  std::vector<char> dest(text.size() + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(Decode(dest.data(), text.c_str()));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_Decode_NoAmpersand(benchmark::State& state) {
  RunDecoder<decode_html_entities_utf8>(state, PlainText());
}
void BM_Naive_NoAmpersand(benchmark::State& state) { RunDecoder<NaiveDecode>(state, PlainText()); }
void BM_Decode_EntityDense(benchmark::State& state) {
  RunDecoder<decode_html_entities_utf8>(state, DenseText());
}
void BM_Naive_EntityDense(benchmark::State& state) { RunDecoder<NaiveDecode>(state, DenseText()); }
BENCHMARK(BM_Decode_NoAmpersand);
BENCHMARK(BM_Naive_NoAmpersand);
BENCHMARK(BM_Decode_EntityDense);
BENCHMARK(BM_Naive_EntityDense);

// A mail-like paragraph: mostly hanzi, with full-width punctuation and some
// Latin letters and digits.
std::wstring ChineseText() {
  const std::wstring paragraph =
      L"尊敬的用户，您好！您在北京时间2024年6月11日提交的订单已经发货，"
      L"预计三到五个工作日内送达上海市长宁区。如有疑问，请回复此邮件或致电客服中心。"
      L"感谢您选择我们的服务，祝您生活愉快、工作顺利。";
  std::wstring text;
  while (text.size() < kTextSize) text += paragraph;
  text.resize(kTextSize);
  return text;
}

template <std::string (*Convert)(std::wstring&)>
void RunConverter(benchmark::State& state) {
  std::wstring text = ChineseText();
  Convert(text);  // builds the index before timing
  for (auto _ : state) benchmark::DoNotOptimize(Convert(text));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_PinYinConvert(benchmark::State& state) { RunConverter<pinYinConvert>(state); }
void BM_JianPinConvert(benchmark::State& state) { RunConverter<jianPinConvert>(state); }
BENCHMARK(BM_PinYinConvert);
BENCHMARK(BM_JianPinConvert);

// clearCache() and the conversion of one character that rebuilds the index.
void BM_PinyinIndexBuild(benchmark::State& state) {
  std::wstring one = L"中";
  for (auto _ : state) {
    clearCache();
    benchmark::DoNotOptimize(jianPinConvert(one));
  }
}
BENCHMARK(BM_PinyinIndexBuild)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
