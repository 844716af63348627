// Checks the JSON parser and serializer on arbitrary bytes. When parse
// succeeds: parse(dump(v)) == v (unless v holds a NaN, which never equals
// itself) and dumping the reparsed value gives the same bytes (unless a
// number's text changes representation, see below); err is left as the caller
// set it. When it fails: the result is null and err begins with one of the
// parser's messages. parse_multi never returns more values than the input has
// bytes. Whatever the result, wrapping it in eight levels of arrays per input
// byte (built in code, beyond the parser's limit) dumps as brackets around its
// text and is released, within the memory and time bounds below.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz_bounds.h"
#include "json11/json11.h"

namespace {

using json11::Json;

bool KnownError(const std::string& err) {
  static const char* const kPrefixes[] = {
      "unexpected end of input",        "exceeded maximum nesting depth",
      "parse error: expected ",         "expected value, got ",
      "expected '\"' in object, got ",  "expected ':' in object, got ",
      "expected ',' in object, got ",   "expected ',' in list, got ",
      "leading 0s not permitted in numbers", "invalid ",
      "at least one digit required in fractional part",
      "at least one digit required in exponent", "unexpected end of input in string",
      "unescaped ",                     "bad \\u escape: ",
      "invalid escape character ",      "unexpected trailing ",
  };
  for (const char* prefix : kPrefixes) {
    if (err.rfind(prefix, 0) == 0) return true;
  }
  return false;
}

bool HasNaN(const Json& value) {
  if (value.is_number()) return value.number_value() != value.number_value();
  for (const Json& item : value.array_items()) {
    if (HasNaN(item)) return true;
  }
  for (const auto& member : value.object_items()) {
    if (HasNaN(member.second)) return true;
  }
  return false;
}

// Dumps value wrapped in depth arrays and checks the text.
void CheckDeepWrap(const Json& value, size_t depth) {
  const std::string inner = value.dump();
  Json deep = value;
  for (size_t i = 0; i < depth; ++i) deep = Json(Json::array{deep});
  const std::string text = deep.dump();
  if (text.size() != inner.size() + 2 * depth ||
      text.compare(0, depth, std::string(depth, '[')) != 0 ||
      text.compare(depth, inner.size(), inner) != 0 ||
      text.compare(depth + inner.size(), depth, std::string(depth, ']')) != 0) {
    abort();
  }
}

}  // namespace

FUZZ_DEFAULT_BOUNDS(1024, 10)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::string err = "untouched";
  Json value = Json::parse(text, err);
  if (err == "untouched") {
    const std::string first = value.dump();
    std::string err2 = "untouched";
    Json again = Json::parse(first, err2);
    if (err2 != "untouched") abort();  // our own output always parses
    if (!HasNaN(value) && !(again == value)) abort();
    // A dump of the reparsed value is stable from then on: the second and
    // third generations match byte for byte.
    const std::string second = again.dump();
    std::string err3;
    if (Json::parse(second, err3).dump() != second) abort();
  } else {
    if (!value.is_null() || !KnownError(err)) abort();
  }

  std::string multi_err;
  std::vector<Json> values = Json::parse_multi(text, multi_err);
  if (values.size() > size) abort();
  CheckDeepWrap(value, 8 * size);
  return 0;
}
