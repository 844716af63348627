// The MIME type table: extension to media type, compiled in. Read-only data;
// safe on any thread.
#ifndef TESSEL_PLATFORM_MIME_TYPES_H_
#define TESSEL_PLATFORM_MIME_TYPES_H_

#include <cstddef>
#include <string>

namespace tessel_platform {

struct MimeEntry {
  const char* extension;  // lower case, without the leading '.'
  const char* type;
};

// Generated into mime_table.cc, sorted by extension.
extern const MimeEntry kMimeTable[];
extern const std::size_t kMimeTableSize;

// The media type for an extension, compared without regard to ASCII case and
// accepted with or without one leading '.'; nullptr when the table does not
// know it.
const char* MimeTypeForExtension(const std::string& extension);

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_MIME_TYPES_H_
