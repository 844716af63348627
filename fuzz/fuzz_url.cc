// Checks the URL and path members of StringUtils on arbitrary bytes:
// url_decode(url_encode(x)) == x and url_encode writes only unreserved bytes
// and escapes; url_decode never lengthens text; getUrlParams' count equals
// the map's size and every key and value came from the text; the path functions
// return without fault, lastPathComponent never longer than its input.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unordered_map>

#include "common/string_utils.h"

namespace {

using tessel::StringUtils;

bool IsUnreservedOrEscape(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         c == '-' || c == '.' || c == '_' || c == '~' || c == '%';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);

  const std::string encoded = StringUtils::url_encode(text);
  for (char c : encoded) {
    if (!IsUnreservedOrEscape(c)) abort();
  }
  if (StringUtils::url_decode(encoded) != text) abort();
  if (StringUtils::url_decode(text).size() > text.size()) abort();

  std::unordered_map<std::string, std::string> params{{"stale", "1"}};
  int count = StringUtils::getUrlParams(text, params);
  if (count != static_cast<int>(params.size())) abort();
  for (const auto& [key, value] : params) {
    if (key.empty() || value.empty()) abort();
    // Runs of "=" count as one separator, so only the two parts are checked.
    if (key != "stale" && (text.find(key) == std::string::npos ||
                           text.find(value) == std::string::npos)) {
      abort();
    }
  }
  (void)StringUtils::appendUrlParams(text, params, size % 2 == 0);

  // The second half of the input is the base directory.
  const std::string first = text.substr(0, size / 2), second = text.substr(size / 2);
  (void)StringUtils::fullPathFromRelativePath(first, second);
  (void)StringUtils::relativePath2Path(first, second);
  (void)StringUtils::FilePathFromURL(text);
  (void)StringUtils::URLFromFilePath(text);
  const char separator = size > 0 ? static_cast<char>(data[0]) : '/';
  if (StringUtils::lastPathComponent(text, separator).size() > text.size()) abort();
  if (StringUtils::lastPathComponent(text, '/').size() > text.size()) abort();
  return 0;
}
