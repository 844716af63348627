// The named character references known to the HTML decoder, generated into
// html_entities_table.cc by tools/gen_html_entities.py. Library-internal.
#ifndef TESSEL_COMMON_HTML_ENTITIES_TABLE_H_
#define TESSEL_COMMON_HTML_ENTITIES_TABLE_H_

#include <cstddef>

namespace tessel {
namespace html_entities_internal {

struct HtmlEntity {
  const char* name;   // entity name with its ";", e.g. "eacute;"
  const char* value;  // UTF-8 bytes of the character, one to three of them
};

constexpr size_t kHtmlEntityCount = 253;

// Sorted by name in strcmp order, which the decoder's bisection relies on.
extern const HtmlEntity kHtmlEntities[kHtmlEntityCount];

}  // namespace html_entities_internal
}  // namespace tessel

#endif  // TESSEL_COMMON_HTML_ENTITIES_TABLE_H_
