// Whole-file writes. FileUtils::writeFile writes a new file, flushes it to
// stable storage and renames it over the target. The peers are stdio's
// truncate-and-write over the same file, once with the same flush (fsync)
// and once without, which is what the flush costs. The disk decides most of
// each figure: compare within one run.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "common/file_utils.h"

namespace {

std::string TargetPath() {
  return (std::filesystem::temp_directory_path() /
          ("tessel-bench-write-" + std::to_string(getpid())))
      .string();
}

void BM_WriteFile(benchmark::State& state) {
  const std::string data(static_cast<std::size_t>(state.range(0)), 'x');
  const std::string path = TargetPath();
  for (auto _ : state) {
    tessel::FileUtils::writeFile(data.data(), static_cast<long long>(data.size()), path);
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
  std::filesystem::remove(path);
}
BENCHMARK(BM_WriteFile)->Arg(4096)->Arg(1 << 20)->UseRealTime();

void StdioTruncateAndWrite(benchmark::State& state, bool flush) {
  const std::string data(static_cast<std::size_t>(state.range(0)), 'x');
  const std::string path = TargetPath();
  for (auto _ : state) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
      state.SkipWithError("cannot open the target");
      break;
    }
    std::fwrite(data.data(), 1, data.size(), file);
    std::fflush(file);
    if (flush) fsync(fileno(file));
    std::fclose(file);
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
  std::filesystem::remove(path);
}

void BM_StdioTruncateFsync(benchmark::State& state) { StdioTruncateAndWrite(state, true); }
BENCHMARK(BM_StdioTruncateFsync)->Arg(4096)->Arg(1 << 20)->UseRealTime();

void BM_StdioTruncate(benchmark::State& state) { StdioTruncateAndWrite(state, false); }
BENCHMARK(BM_StdioTruncate)->Arg(4096)->Arg(1 << 20)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
