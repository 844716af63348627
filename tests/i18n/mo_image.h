// Test helpers: MO images built byte by byte, following the GNU gettext file
// layout (header, source table, translation table, NUL-terminated strings; no
// hash table), and the catalogs that msgfmt compiled for this suite.
#ifndef TESSEL_TESTS_I18N_MO_IMAGE_H_
#define TESSEL_TESTS_I18N_MO_IMAGE_H_

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace i18n_test {

struct RawMessage {
  std::string source;       // [context 0x04] singular [0x00 plural]
  std::string translation;  // form0 [0x00 form1 ...]
};

inline void PutWord(std::vector<unsigned char>& image, size_t offset, uint32_t value,
                    bool bigEndian) {
  for (int i = 0; i < 4; ++i) {
    const int shift = bigEndian ? 24 - 8 * i : 8 * i;
    image[offset + i] = static_cast<unsigned char>(value >> shift);
  }
}

inline std::vector<unsigned char> BuildImage(const std::vector<RawMessage>& messages,
                                             bool bigEndian = false, uint32_t revision = 0) {
  const uint32_t n = static_cast<uint32_t>(messages.size());
  const uint32_t sources = 28;
  const uint32_t targets = sources + 8 * n;
  std::vector<unsigned char> image(targets + 8 * n);
  // Magic, revision, count, the two table offsets, an empty hash table.
  const uint32_t header[] = {0x950412de, revision, n, sources, targets, 0, 0};
  for (uint32_t i = 0; i < 7; ++i) PutWord(image, 4 * i, header[i], bigEndian);
  auto append = [&](const std::string& text, uint32_t descriptor) {
    PutWord(image, descriptor, static_cast<uint32_t>(text.size()), bigEndian);
    PutWord(image, descriptor + 4, static_cast<uint32_t>(image.size()), bigEndian);
    image.insert(image.end(), text.begin(), text.end());
    image.push_back(0);
  };
  for (uint32_t i = 0; i < n; ++i) {
    append(messages[i].source, sources + 8 * i);
    append(messages[i].translation, targets + 8 * i);
  }
  return image;
}

inline std::vector<unsigned char> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>());
}

// A catalog compiled by msgfmt: name "de", "ru" or "sysdep"; order "little" or "big".
inline std::string CompiledCatalog(const std::string& name, const std::string& order) {
  return std::string(TESSEL_I18N_MO_DIR) + "/" + name + "-" + order + ".mo";
}

inline int GermanRule(int n) { return n != 1 ? 1 : 0; }

}  // namespace i18n_test

#endif  // TESSEL_TESTS_I18N_MO_IMAGE_H_
