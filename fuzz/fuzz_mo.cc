// Checks MO catalogs on arbitrary images, through the sized parse and through
// loadMoFile on a temporary file: each is accepted or refused, never read out
// of bounds; both roads agree on acceptance and on every lookup; lookups of a
// few keys on an accepted catalog answer without fault, a miss giving the
// caller's own text; the parse never holds more than 40 times the image plus
// 1 MB of heap. The image is the input followed by 4,096 NUL bytes for each
// unit of the input's last byte (up to about 1 MB), so that small inputs
// describe large images whose strings point into long runs of NULs; the
// memory and time limits set below then catch a load that outgrows its image.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz_bounds.h"
#include "i18n/mo.h"
#include "tests/i18n/heap_peak.h"

namespace {

std::string TempPath() {
  static const std::string path = "/tmp/fuzz_mo_" + std::to_string(getpid()) + ".mo";
  return path;
}

bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes) {
  FILE* file = fopen(path.c_str(), "wb");
  if (!file) return false;
  bool ok = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return fclose(file) == 0 && ok;
}

std::vector<uint8_t> ImageOf(const uint8_t* data, size_t size) {
  std::vector<uint8_t> image(data, data + size);
  if (size > 0) image.resize(size + 4096 * size_t{data[size - 1]}, 0);
  return image;
}

}  // namespace

// Limits that a load bounded by its image stays far below (a 1 MB image takes
// milliseconds and a few MB).
FUZZ_DEFAULT_BOUNDS(1024, 20)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto rule = [](int n) { return n == 1 ? 0 : n < 5 ? 1 : 7; };  // past nplurals on purpose
  const std::vector<uint8_t> image = ImageOf(data, size);
  I18N::MO from_memory(std::string(), rule, 3);
  const size_t peak = heap_peak::PeakHeapBytes(
      [&] { from_memory.parseMoFile(image.data(), image.size()); });
  if (peak > 40 * image.size() + (1u << 20)) abort();

  I18N::MO from_file(std::string(), rule, 3);
  if (WriteFile(TempPath(), image)) {
    bool read = from_file.loadMoFile(TempPath());
    if (read != !image.empty()) abort();
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
