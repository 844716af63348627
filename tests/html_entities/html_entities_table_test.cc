// The generated table: every row reachable by the decoder's bisection (which needs strcmp order).
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "common/html_entities.h"
#include "common/html_entities_table.h"
// The committed, generated data, compiled into this test as well: the
// library keeps its copy hidden.
#include "common/html_entities_table.cc"

namespace {

using tessel::html_entities_internal::kHtmlEntities;

// The decoder's bisection must reach every row, in any context.
TEST(HtmlEntityTable, DecoderFindsEveryRow) {
  for (const auto& row : kHtmlEntities) {
    const std::string text = std::string("<&") + row.name + ">";
    std::string dest(text.size() + 1, '\0');
    const size_t size = decode_html_entities_utf8(&dest[0], text.c_str());
    EXPECT_EQ(dest.substr(0, size), std::string("<") + row.value + ">") << row.name;
  }
}

}  // namespace
