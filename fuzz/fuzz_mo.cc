// Checks MO catalogs on arbitrary images, through the sized parse and through
// loadMoFile on a temporary file: each is accepted or refused, never read out
// of bounds; both roads agree on acceptance and on every lookup; lookups of a
// few keys on an accepted catalog answer without fault, a miss giving the
// caller's own text.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "i18n/mo.h"

namespace {

std::string TempPath() {
  static const std::string path = "/tmp/fuzz_mo_" + std::to_string(getpid()) + ".mo";
  return path;
}

bool WriteFile(const std::string& path, const uint8_t* data, size_t size) {
  FILE* file = fopen(path.c_str(), "wb");
  if (!file) return false;
  bool ok = fwrite(data, 1, size, file) == size;
  return fclose(file) == 0 && ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto rule = [](int n) { return n == 1 ? 0 : n < 5 ? 1 : 7; };  // past nplurals on purpose
  I18N::MO from_memory(data, size, rule, 3);

  I18N::MO from_file(std::string(), rule, 3);
  if (WriteFile(TempPath(), data, size)) {
    bool read = from_file.loadMoFile(TempPath());
    if (read != (size > 0)) abort();
    if (from_file.getIsInited() != from_memory.getIsInited()) abort();
  }

  static const char* const kKeys[] = {"", "a", "Inbox", "file", "\x04", "ctx"};
  for (const char* key : kKeys) {
    for (const char* context : kKeys) {
      std::string single = from_memory.translate(key, context);
      if (single != from_file.translate(key, context) && from_file.getIsInited()) abort();
      for (int n : {-1, 0, 1, 2, 5, 100}) {
        std::string plural = from_memory.translatePlural(key, "plural", n, context);
        if (!from_memory.getIsInited() && plural != (n == 1 ? key : "plural")) abort();
      }
    }
  }
  (void)from_memory.getHeadersInfo();
  I18N::MO copy(from_memory);
  if (copy.getIsInited() != from_memory.getIsInited()) abort();
  return 0;
}
