// The generated table: values checked against the HTML 4.01 entity sets, and
// every row reachable by the decoder's bisection (which needs strcmp order).
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

const char* ValueOf(const char* name) {
  for (const auto& row : kHtmlEntities) {
    if (std::strcmp(row.name, name) == 0) return row.value;
  }
  return nullptr;
}

TEST(HtmlEntityTable, CarriesTheHtml401CodePoints) {
  // name, UTF-8 of the code point HTML 4.01 assigns it
  const char* const kKnown[][2] = {
      {"AElig;", "\xC3\x86"},        // U+00C6, HTMLlat1
      {"nbsp;", "\xC2\xA0"},         // U+00A0, HTMLlat1
      {"lang;", "\xE2\x8C\xA9"},     // U+2329, HTMLsymbol
      {"euro;", "\xE2\x82\xAC"},     // U+20AC, HTMLspecial
      {"apos;", "'"},                // U+0027, the one addition
  };
  for (const auto& known : kKnown) {
    const char* value = ValueOf(known[0]);
    ASSERT_NE(value, nullptr) << known[0];
    EXPECT_STREQ(value, known[1]) << known[0];
  }
}

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
