// Text core and dates. The peer for isValidEmail is the same pattern compiled
// with std::regex on every call (what a straightforward validator does) and,
// for reference, matched with a regex compiled once. Throughput runs use 1 MB
// inputs and report bytes/s.
#include <benchmark/benchmark.h>

#include <random>
#include <regex>
#include <string>

#include "common/date_time.h"
#include "common/string_utils.h"

namespace {

using tessel::StringUtils;

const char kEmailPattern[] = R"(\w+([-+.&]\w+)*@\w+([-.]\w+)*\.\w+([-.]\w+)*)";
const char* const kAddresses[] = {"john.smith-jr@mail.example.com", "a@b", "bad..dots@x.y",
                                  "first+tag&x@sub-domain.example.org"};

void BM_IsValidEmail(benchmark::State& state) {
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(StringUtils::isValidEmail(kAddresses[i++ & 3]));
  }
}
BENCHMARK(BM_IsValidEmail);

void BM_RegexCompiledPerCall(benchmark::State& state) {
  size_t i = 0;
  for (auto _ : state) {
    const std::regex pattern(kEmailPattern);
    benchmark::DoNotOptimize(std::regex_match(kAddresses[i++ & 3], pattern));
  }
}
BENCHMARK(BM_RegexCompiledPerCall);

void BM_RegexCompiledOnce(benchmark::State& state) {
  static const std::regex pattern(kEmailPattern);
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::regex_match(kAddresses[i++ & 3], pattern));
  }
}
BENCHMARK(BM_RegexCompiledOnce);

// 1 MB of mixed text: mostly unreserved bytes, some spaces, slashes and UTF-8.
const std::string& MixedText() {
  static const std::string text = [] {
    static const char kBytes[] = "abcdefghijklmnopqrstuvwxyz0123456789-._ /&=?\xc3\xa9";
    std::mt19937 random(1);
    std::string out(1 << 20, ' ');
    for (char& c : out) c = kBytes[random() % (sizeof kBytes - 1)];
    return out;
  }();
  return text;
}

void BM_UrlEncode(benchmark::State& state) {
  const std::string& text = MixedText();
  for (auto _ : state) benchmark::DoNotOptimize(StringUtils::url_encode(text));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_UrlEncode);

void BM_UrlDecode(benchmark::State& state) {
  const std::string encoded = StringUtils::url_encode(MixedText());
  for (auto _ : state) benchmark::DoNotOptimize(StringUtils::url_decode(encoded));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * encoded.size()));
}
BENCHMARK(BM_UrlDecode);

void BM_StringSplit(benchmark::State& state) {
  const std::string& text = MixedText();
  for (auto _ : state) benchmark::DoNotOptimize(StringUtils::string_split(text, "/&="));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_StringSplit);

void BM_DateTimeDescription(benchmark::State& state) {
  tessel::DateTime t(1425823200);
  for (auto _ : state) {
    benchmark::DoNotOptimize(t.description());
    t.addSeconds(7919);
  }
}
BENCHMARK(BM_DateTimeDescription);

void BM_DateTimeDateStart(benchmark::State& state) {
  tessel::DateTime t(1425823200);
  for (auto _ : state) {
    benchmark::DoNotOptimize(t.dateStart());
    t.addSeconds(7919);
  }
}
BENCHMARK(BM_DateTimeDateStart);

}  // namespace

BENCHMARK_MAIN();
