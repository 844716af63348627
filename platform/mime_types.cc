#include "platform/mime_types.h"

#include <algorithm>
#include <cstring>

namespace tessel_platform {

const char* MimeTypeForExtension(const std::string& extension) {
  std::string key = !extension.empty() && extension[0] == '.' ? extension.substr(1) : extension;
  if (key.empty()) return nullptr;
  std::transform(key.begin(), key.end(), key.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  const MimeEntry* const end = kMimeTable + kMimeTableSize;
  const MimeEntry* found =
      std::lower_bound(kMimeTable, end, key, [](const MimeEntry& entry, const std::string& k) {
        return std::strcmp(entry.extension, k.c_str()) < 0;
      });
  return found != end && key == found->extension ? found->type : nullptr;
}

}  // namespace tessel_platform
