// Checks decode_html_entities_utf8 on arbitrary bytes: out-of-place decoding
// equals in-place decoding, the result is never longer than the input, the
// terminating NUL is written, and errno is left as it was.
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/html_entities.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The decoder reads a NUL-terminated text: stop at the first NUL.
  std::string text(reinterpret_cast<const char*>(data), size);
  text.resize(strnlen(text.c_str(), text.size()));

  std::vector<char> out(text.size() + 1, '\x7f');
  errno = 1234;
  size_t out_len = decode_html_entities_utf8(out.data(), text.c_str());
  if (errno != 1234) abort();
  if (out_len > text.size() || out[out_len] != '\0') abort();

  std::vector<char> in_place(text.begin(), text.end());
  in_place.push_back('\0');
  size_t in_place_len = decode_html_entities_utf8(in_place.data(), nullptr);
  if (in_place_len != out_len) abort();
  if (memcmp(in_place.data(), out.data(), out_len + 1) != 0) abort();
  return 0;
}
