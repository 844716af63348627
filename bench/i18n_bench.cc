// Lookup rate and load time of a 6,000-message catalog: this library's
// registry against the C library's dcgettext/dcngettext, on the same MO file
// compiled by msgfmt and installed in a private locale tree. Then load and miss
// times of a catalog whose keys were crafted against an unseeded hash, beside
// the same number of plain keys.
#include <benchmark/benchmark.h>
#include <unistd.h>
#include <libintl.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/i18n_utils.h"

namespace {

namespace fs = std::filesystem;

constexpr int kSingulars = 4000;
constexpr int kWithContext = 1000;
constexpr int kPlurals = 1000;
const char* const kDomain = "tessel_bench";

int TwoForms(int n) { return n != 1 ? 1 : 0; }

struct Catalog {
  bool ready = false;
  std::string error;
  fs::path root;  // <root>/de/LC_MESSAGES/<domain>.mo
  fs::path mo;
  std::vector<std::string> hits, misses;           // context-less message ids
  std::vector<std::string> contexts, contextIds;    // context-keyed messages
  std::vector<std::string> glibcContextKeys;        // "ctx\004id" for glibc
  std::vector<std::string> singulars, plurals;
};

std::string Text(const char* kind, int i) {
  return std::string(kind) + " number " + std::to_string(i) + " in the folder list";
}

void WritePo(const fs::path& path, Catalog& c) {
  std::ofstream po(path);
  po << "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
        "\"Plural-Forms: nplurals=2; plural=(n != 1);\\n\"\n\n";
  for (int i = 0; i < kSingulars; ++i) {
    c.hits.push_back(Text("Message", i));
    c.misses.push_back(Text("Missing", i));
    po << "msgid \"" << c.hits.back() << "\"\nmsgstr \"Nachricht " << i << " der Ordnerliste\"\n\n";
  }
  for (int i = 0; i < kWithContext; ++i) {
    c.contexts.push_back("menu" + std::to_string(i % 7));
    c.contextIds.push_back(Text("Entry", i));
    c.glibcContextKeys.push_back(c.contexts.back() + '\x04' + c.contextIds.back());
    po << "msgctxt \"" << c.contexts.back() << "\"\nmsgid \"" << c.contextIds.back()
       << "\"\nmsgstr \"Eintrag " << i << "\"\n\n";
  }
  for (int i = 0; i < kPlurals; ++i) {
    c.singulars.push_back(Text("file", i));
    c.plurals.push_back(Text("files", i));
    po << "msgid \"" << c.singulars.back() << "\"\nmsgid_plural \"" << c.plurals.back()
       << "\"\nmsgstr[0] \"Datei " << i << "\"\nmsgstr[1] \"Dateien " << i << "\"\n\n";
  }
}

Catalog& Shared() {
  static Catalog c = [] {
    Catalog made;
#ifndef TESSEL_MSGFMT
    made.error = "msgfmt was not found at configure time";
    return made;
#else
    made.root = fs::temp_directory_path() / ("tessel-bench-i18n-" + std::to_string(getpid()));
    fs::create_directories(made.root / "de" / "LC_MESSAGES");
    const fs::path po = made.root / "bench.po";
    WritePo(po, made);
    made.mo = made.root / "de" / "LC_MESSAGES" / (std::string(kDomain) + ".mo");
    const std::string command =
        std::string(TESSEL_MSGFMT) + " -o '" + made.mo.string() + "' '" + po.string() + "'";
    if (std::system(command.c_str()) != 0) {
      made.error = "msgfmt failed";
      return made;
    }
    setenv("LANGUAGE", "de", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    bindtextdomain(kDomain, made.root.c_str());
    bind_textdomain_codeset(kDomain, "UTF-8");
    I18N::I18nUtils::getInstance()->addMO(made.mo.string(), TwoForms, 2, kDomain);
    // Both sides must really translate, or the comparison means nothing.
    const std::string ours = I18N::I18nUtils::getInstance()->gettext(made.hits[7], kDomain);
    const std::string glibc = dcgettext(kDomain, made.hits[7].c_str(), LC_MESSAGES);
    if (ours != "Nachricht 7 der Ordnerliste" || glibc != ours) {
      made.error = "a catalog does not translate: ours='" + ours + "' glibc='" + glibc + "'";
      return made;
    }
    made.ready = true;
    return made;
#endif
  }();
  return c;
}

bool Ready(benchmark::State& state) {
  if (!Shared().ready) state.SkipWithError(Shared().error.c_str());
  return Shared().ready;
}

// Runs lookup(i) for i = 0, 1, ... count - 1, 0, 1, ... one per iteration.
template <typename Lookup>
void Cycle(benchmark::State& state, size_t count, Lookup lookup) {
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(lookup(i));
    i = (i + 1) % count;
  }
  state.SetItemsProcessed(state.iterations());
}

// Message ids are the caller's strings; the registry takes them by value.
void BM_Ours_Gettext(benchmark::State& state, bool hit) {
  if (!Ready(state)) return;
  const auto& ids = hit ? Shared().hits : Shared().misses;
  const std::string domain = kDomain;
  I18N::I18nUtils* registry = I18N::I18nUtils::getInstance();
  Cycle(state, ids.size(), [&](size_t i) { return registry->gettext(ids[i], domain); });
}

void BM_Glibc_Dcgettext(benchmark::State& state, bool hit) {
  if (!Ready(state)) return;
  const auto& ids = hit ? Shared().hits : Shared().misses;
  Cycle(state, ids.size(),
        [&](size_t i) { return dcgettext(kDomain, ids[i].c_str(), LC_MESSAGES); });
}

void BM_Ours_Xgettext(benchmark::State& state) {
  if (!Ready(state)) return;
  const Catalog& c = Shared();
  const std::string domain = kDomain;
  I18N::I18nUtils* registry = I18N::I18nUtils::getInstance();
  Cycle(state, c.contextIds.size(), [&](size_t i) {
    return registry->xgettext(c.contextIds[i], c.contexts[i], domain);
  });
}

void BM_Glibc_DcgettextContext(benchmark::State& state) {
  if (!Ready(state)) return;
  const Catalog& c = Shared();
  Cycle(state, c.glibcContextKeys.size(), [&](size_t i) {
    return dcgettext(kDomain, c.glibcContextKeys[i].c_str(), LC_MESSAGES);
  });
}

void BM_Ours_Ngettext(benchmark::State& state) {
  if (!Ready(state)) return;
  const Catalog& c = Shared();
  const std::string domain = kDomain;
  I18N::I18nUtils* registry = I18N::I18nUtils::getInstance();
  Cycle(state, c.singulars.size(), [&](size_t i) {
    return registry->ngettext(c.singulars[i], c.plurals[i], static_cast<int>(i % 4), domain);
  });
}

void BM_Glibc_Dcngettext(benchmark::State& state) {
  if (!Ready(state)) return;
  const Catalog& c = Shared();
  Cycle(state, c.singulars.size(), [&](size_t i) {
    return dcngettext(kDomain, c.singulars[i].c_str(), c.plurals[i].c_str(), i % 4,
                      LC_MESSAGES);
  });
}

// Reading and parsing the whole file into a catalog.
void BM_Ours_Load(benchmark::State& state) {
  if (!Ready(state)) return;
  const std::string path = Shared().mo.string();
  for (auto _ : state) {
    I18N::MO catalog(path, TwoForms, 2);
    if (!catalog.getIsInited()) {
      state.SkipWithError("catalog not accepted");
      break;
    }
    benchmark::DoNotOptimize(catalog);
  }
}

// The C library loads a domain's catalog on its first lookup and keeps it for
// the life of the process, so each iteration binds a domain of its own (a hard
// link to the same file).
void BM_Glibc_FirstLookup(benchmark::State& state) {
  if (!Ready(state)) return;
  const Catalog& c = Shared();
  static int next = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::string domain = "tessel_bench_fresh_" + std::to_string(next++);
    fs::create_hard_link(c.mo, c.root / "de" / "LC_MESSAGES" / (domain + ".mo"));
    bindtextdomain(domain.c_str(), c.root.c_str());
    bind_textdomain_codeset(domain.c_str(), "UTF-8");
    state.ResumeTiming();
    const char* answer = dcgettext(domain.c_str(), c.hits[11].c_str(), LC_MESSAGES);
    if (answer == c.hits[11]) {
      state.SkipWithError("glibc did not translate");
      break;
    }
    benchmark::DoNotOptimize(answer);
  }
}

// Catalogs of 8,000 messages built in memory: plain keys, and keys whose
// standard string hashes all fall into one window of 256 slots of a 16,384-slot
// index, the shape that made an unseeded linear-probing table quadratic to
// load and linear to miss in. The two should cost the same.
struct Flood {
  std::vector<unsigned char> image;
  std::vector<std::string> misses;
};

std::vector<unsigned char> ImageOf(const std::vector<std::string>& keys) {
  const uint32_t n = static_cast<uint32_t>(keys.size());
  std::vector<unsigned char> image(28 + 16 * n);
  auto put = [&image](size_t at, uint32_t value) {
    for (int i = 0; i < 4; ++i) image[at + i] = static_cast<unsigned char>(value >> (8 * i));
  };
  const uint32_t header[] = {0x950412de, 0, n, 28, 28 + 8 * n, 0, 0};
  for (uint32_t i = 0; i < 7; ++i) put(4 * i, header[i]);
  for (uint32_t i = 0; i < n; ++i) {
    for (const uint32_t table : {28u, 28 + 8 * n}) {  // the key translates to itself
      put(table + 8 * i, static_cast<uint32_t>(keys[i].size()));
      put(table + 8 * i + 4, static_cast<uint32_t>(image.size()));
      image.insert(image.end(), keys[i].begin(), keys[i].end());
      image.push_back(0);
    }
  }
  return image;
}

// The first 8,000 keys that pass the filter are the messages, the next 1,000
// the misses.
Flood BuildFlood(bool crafted) {
  Flood made;
  std::vector<std::string> keys;
  for (size_t i = 0; made.misses.size() < 1000; ++i) {
    std::string key = "Message number " + std::to_string(i);
    if (crafted && (std::hash<std::string_view>()(key) & 16383) >= 256) continue;
    (keys.size() < 8000 ? keys : made.misses).push_back(std::move(key));
  }
  made.image = ImageOf(keys);
  return made;
}

const Flood& FloodCatalog(bool crafted) {
  static const Flood plain = BuildFlood(false);
  static const Flood craftedKeys = BuildFlood(true);
  return crafted ? craftedKeys : plain;
}

void BM_Ours_LoadFlood(benchmark::State& state, bool crafted) {
  const Flood& c = FloodCatalog(crafted);
  for (auto _ : state) {
    I18N::MO catalog(c.image.data(), c.image.size(), TwoForms, 2);
    benchmark::DoNotOptimize(catalog);
  }
}

void BM_Ours_MissFlood(benchmark::State& state, bool crafted) {
  const Flood& c = FloodCatalog(crafted);
  const I18N::MO catalog(c.image.data(), c.image.size(), TwoForms, 2);
  Cycle(state, c.misses.size(), [&](size_t i) { return catalog.translate(c.misses[i], ""); });
}

BENCHMARK_CAPTURE(BM_Ours_Gettext, hit, true);
BENCHMARK_CAPTURE(BM_Glibc_Dcgettext, hit, true);
BENCHMARK_CAPTURE(BM_Ours_Gettext, miss, false);
BENCHMARK_CAPTURE(BM_Glibc_Dcgettext, miss, false);
BENCHMARK(BM_Ours_Xgettext);
BENCHMARK(BM_Glibc_DcgettextContext);
BENCHMARK(BM_Ours_Ngettext);
BENCHMARK(BM_Glibc_Dcngettext);
BENCHMARK(BM_Ours_Load)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Glibc_FirstLookup)->Unit(benchmark::kMicrosecond)->Iterations(400);
BENCHMARK_CAPTURE(BM_Ours_LoadFlood, plain, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Ours_LoadFlood, crafted, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Ours_MissFlood, plain, false);
BENCHMARK_CAPTURE(BM_Ours_MissFlood, crafted, true);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  if (!Shared().root.empty()) {
    std::error_code ignored;
    fs::remove_all(Shared().root, ignored);
  }
  return 0;
}
