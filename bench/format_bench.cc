// Speed of I18nUtils::formatMatch on short interface texts, beside the C
// library's snprintf filling the same text with positions dropped ("%s1" as
// "%s"), which is what any formatter must at least do.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "i18n/i18n_utils.h"

namespace {

constexpr const char* kPositional = "%s1 sent you %d2 messages (%.1f3 MB) on %s4";
constexpr const char* kPlain = "%s sent you %d messages (%.1f MB) on %s";

void Snprintf(benchmark::State& state) {
  for (auto _ : state) {
    char buffer[256];
    const int n = std::snprintf(buffer, sizeof buffer, kPlain, "Ann", 12, 3.25, "Monday");
    std::string text(buffer, static_cast<size_t>(n));
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(Snprintf);

void FormatMatch(benchmark::State& state) {
  for (auto _ : state) {
    std::string text = I18N::I18nUtils::formatMatch(kPositional, "Ann", 12, 3.25, "Monday");
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(FormatMatch);

}  // namespace

BENCHMARK_MAIN();
