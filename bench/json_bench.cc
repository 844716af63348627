// Parse and dump speed of json11::Json on the standard corpora, beside
// nlohmann/json and RapidJSON measured in the same run, and the heap held by
// each library's parsed form of a document.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "json11/json11.h"

#if TESSEL_BENCH_HAVE_NLOHMANN
#include <nlohmann/json.hpp>
#endif
#if TESSEL_BENCH_HAVE_RAPIDJSON
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#endif

namespace {

const char* const kCorpora[] = {"twitter", "citm_catalog", "canada"};

std::string ReadCorpus(const std::string& name) {
  std::ifstream file(std::string(TESSEL_BENCH_DATA_DIR) + "/" + name + ".json", std::ios::binary);
  if (!file) throw std::runtime_error("missing corpus " + name);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

size_t HeapInUse() { return mallinfo2().uordblks; }

// One library under test: parse a text into its own form, and dump a parsed
// form into a string.
template <typename Doc>
struct Library {
  std::function<std::unique_ptr<Doc>(const std::string&)> parse;
  std::function<std::string(const Doc&)> dump;
};

template <typename Doc>
void RegisterCase(const std::string& operation, const std::string& corpus, const char* library,
                  const Library<Doc>& lib) {
  const std::string name = operation + "/" + corpus + "/" + library;
  if (operation == "parse") {
    benchmark::RegisterBenchmark(name.c_str(), [lib, corpus](benchmark::State& state) {
      const std::string text = ReadCorpus(corpus);
      for (auto _ : state) {
        auto doc = lib.parse(text);
        benchmark::DoNotOptimize(doc.get());
      }
      state.SetBytesProcessed(state.iterations() * text.size());
    });
  } else if (operation == "dump") {
    benchmark::RegisterBenchmark(name.c_str(), [lib, corpus](benchmark::State& state) {
      const auto doc = lib.parse(ReadCorpus(corpus));
      size_t bytes = 0;
      for (auto _ : state) {
        const std::string out = lib.dump(*doc);
        bytes += out.size();
        benchmark::DoNotOptimize(out.data());
      }
      state.SetBytesProcessed(bytes);
    });
  } else {
    benchmark::RegisterBenchmark(name.c_str(), [lib, corpus](benchmark::State& state) {
      const std::string text = ReadCorpus(corpus);
      size_t held = 0;
      for (auto _ : state) {
        const size_t before = HeapInUse();
        auto doc = lib.parse(text);
        held = HeapInUse() - before;
        benchmark::DoNotOptimize(doc.get());
      }
      state.counters["heap_bytes"] = static_cast<double>(held);
      state.counters["per_input_byte"] = static_cast<double>(held) / static_cast<double>(text.size());
    })->Iterations(3);
  }
}

template <typename Doc>
void AddLibrary(std::vector<std::function<void(const std::string&, const std::string&)>>& libraries,
                const char* library, const Library<Doc>& lib) {
  libraries.push_back([library, lib](const std::string& operation, const std::string& corpus) {
    RegisterCase(operation, corpus, library, lib);
  });
}

bool RegisterAll() {
  // Fixed thresholds: with glibc's adaptive ones, whether the large output
  // strings are mmap'd afresh on every iteration (page faults included)
  // depends on which benchmark ran before, not on the library measured.
  mallopt(M_MMAP_THRESHOLD, 256 << 20);
  mallopt(M_TRIM_THRESHOLD, 512 << 20);
  // One registrar per library; the cases run library after library for each
  // operation and corpus, so that peers are measured close together in time.
  std::vector<std::function<void(const std::string&, const std::string&)>> libraries;
  AddLibrary<json11::Json>(
      libraries, "json11", {[](const std::string& text) {
                   std::string err;
                   auto doc = std::make_unique<json11::Json>(json11::Json::parse(text, err));
                   if (!err.empty()) throw std::runtime_error(err);
                   return doc;
                 },
                 [](const json11::Json& doc) { return doc.dump(); }});
#if TESSEL_BENCH_HAVE_NLOHMANN
  AddLibrary<nlohmann::json>(
      libraries, "nlohmann", {[](const std::string& text) {
                     return std::make_unique<nlohmann::json>(nlohmann::json::parse(text));
                   },
                   [](const nlohmann::json& doc) { return doc.dump(); }});
#endif
#if TESSEL_BENCH_HAVE_RAPIDJSON
  AddLibrary<rapidjson::Document>(
      libraries, "rapidjson", {[](const std::string& text) {
                      auto doc = std::make_unique<rapidjson::Document>();
                      doc->Parse(text.c_str(), text.size());
                      if (doc->HasParseError()) throw std::runtime_error("rapidjson parse error");
                      return doc;
                    },
                    [](const rapidjson::Document& doc) {
                      rapidjson::StringBuffer buffer;
                      rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
                      doc.Accept(writer);
                      return std::string(buffer.GetString(), buffer.GetSize());
                    }});
#endif
  for (const char* operation : {"parse", "dump"}) {
    for (const char* corpus : kCorpora) {
      for (const auto& add : libraries) add(operation, corpus);
    }
  }
  for (const auto& add : libraries) add("memory", "citm_catalog");
  return true;
}

const bool kRegistered = RegisterAll();

}  // namespace

BENCHMARK_MAIN();
