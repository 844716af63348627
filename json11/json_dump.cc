// Compact JSON text of a value. Everything is appended to one output string,
// runs of plain bytes at once, numbers through std::to_chars (locale-free).
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "json11/byte_scan.h"
#include "json11/double_text.h"
#include "json11/json11.h"
#include "json11/json_value.h"

namespace json11 {

namespace {

// What quoting does with each byte: 0 copy it, 1 a short escape ("\n" ...),
// 2 a "\u00XX" escape, 3 look for U+2028/U+2029 (the lead byte 0xE2).
enum QuoteAction : unsigned char { kCopy = 0, kShort = 1, kHex = 2, kLineSeparatorLead = 3 };

struct QuoteTable {
  unsigned char action[256];
  char letter[256];
  constexpr QuoteTable() : action(), letter() {
    for (int c = 0; c < 0x20; ++c) action[c] = kHex;
    const char pairs[][2] = {{'\b', 'b'}, {'\f', 'f'}, {'\n', 'n'}, {'\r', 'r'},
                             {'\t', 't'}, {'"', '"'},  {'\\', '\\'}};
    for (const auto& pair : pairs) {
      action[static_cast<unsigned char>(pair[0])] = kShort;
      letter[static_cast<unsigned char>(pair[0])] = pair[1];
    }
    action[0xE2] = kLineSeparatorLead;
  }
};
constexpr QuoteTable kQuote;

// Returns the escape of a U+2028 or U+2029 starting at p, or nullptr.
const char* LineSeparatorEscape(const char* p, const char* end) {
  if (end - p < 3 || static_cast<unsigned char>(p[1]) != 0x80) return nullptr;
  const auto last = static_cast<unsigned char>(p[2]);
  if (last == 0xA8) return "\\u2028";
  if (last == 0xA9) return "\\u2029";
  return nullptr;
}

// The length of the run at p that quoting copies unchanged (an 0xE2 ends it
// even when no line separator follows).
size_t PlainLength(const char* p, const char* end) {
  const char* const begin = p;
  while (end - p >= 8) {
    const std::uint64_t word = LoadWord(p);
    if (AnyStringSpecial(word) | AnyByteEqual(word, 0xE2)) break;
    p += 8;
  }
  while (p < end && kQuote.action[static_cast<unsigned char>(*p)] == kCopy) ++p;
  return static_cast<size_t>(p - begin);
}

constexpr size_t kShortText = 64;

// Appends prefix, text in quotes, suffix and tail with one append when text
// is short and needs no escape (most keys and many values); otherwise appends
// nothing and returns false. prefix and suffix have at most 3 bytes, tail at
// most 5.
bool AppendShortPlain(std::string_view prefix, const std::string& text, std::string_view suffix,
                      std::string_view tail, std::string& out) {
  const char* const data = text.data();
  if (text.size() > kShortText || PlainLength(data, data + text.size()) != text.size()) return false;
  char buffer[kShortText + 16];
  char* p = std::copy(prefix.begin(), prefix.end(), buffer);
  *p++ = '"';
  p = std::copy(data, data + text.size(), p);
  *p++ = '"';
  p = std::copy(suffix.begin(), suffix.end(), p);
  p = std::copy(tail.begin(), tail.end(), p);
  out.append(buffer, static_cast<size_t>(p - buffer));
  return true;
}

// The text of a shared constant ("null", "true", "false", "[]", "{}"), found
// by identity; empty for every other value.
std::string_view ConstantText(const JsonValue& value) {
  const JsonStatics& statics = Statics();
  if (&value == &statics.null_value) return "null";
  if (&value == &statics.true_value) return "true";
  if (&value == &statics.false_value) return "false";
  if (&value == &statics.empty_array) return "[]";
  if (&value == &statics.empty_object) return "{}";
  return {};
}

void Quote(const std::string& value, std::string& out) {
  static const char kHexDigits[] = "0123456789abcdef";
  if (AppendShortPlain({}, value, {}, {}, out)) return;
  out.push_back('"');
  const char* const end = value.data() + value.size();
  const char* run = value.data();
  const char* p = run + PlainLength(run, end);
  while (p < end) {
    const auto c = static_cast<unsigned char>(*p);
    const unsigned char action = kQuote.action[c];
    const char* separator = action == kLineSeparatorLead ? LineSeparatorEscape(p, end) : nullptr;
    if (action == kLineSeparatorLead && separator == nullptr) {
      ++p;
    } else {
      out.append(run, static_cast<size_t>(p - run));
      if (separator != nullptr) {
        out.append(separator, 6);
        p += 3;
      } else if (action == kShort) {
        const char escape[2] = {'\\', kQuote.letter[c]};
        out.append(escape, 2);
        ++p;
      } else {
        const char escape[6] = {'\\', 'u', '0', '0', kHexDigits[c >> 4], kHexDigits[c & 0xF]};
        out.append(escape, 6);
        ++p;
      }
      run = p;
    }
    p += PlainLength(p, end);
  }
  out.append(run, static_cast<size_t>(end - run));
  out.push_back('"');
}

template <typename Int>
void AppendInteger(Int value, std::string& out) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, static_cast<size_t>(result.ptr - buffer));
}

}  // namespace

void DumpStored(std::nullptr_t, std::string& out) { out.append("null", 4); }

void DumpStored(bool value, std::string& out) {
  if (value) {
    out.append("true", 4);
  } else {
    out.append("false", 5);
  }
}

void DumpStored(int value, std::string& out) { AppendInteger(value, out); }
void DumpStored(long long value, std::string& out) { AppendInteger(value, out); }

void DumpStored(double value, std::string& out) {
  if (std::isfinite(value)) {
    char buffer[kDoubleTextCapacity];
    out.append(buffer, static_cast<size_t>(WriteDouble17(value, buffer) - buffer));
  } else if (std::isnan(value)) {
    out.append("null", 4);
  } else {
    // Read back as the same infinity by the parser.
    out.append(value < 0 ? "-1e999" : "1e999");
  }
}

void DumpStored(const std::string& value, std::string& out) { Quote(value, out); }

void DumpStored(const Json::array& values, std::string& out) {
  out.push_back('[');
  bool first = true;
  for (const Json& value : values) {
    if (!first) out.append(", ", 2);
    first = false;
    JsonAccess::Of(value).dump(out);
  }
  out.push_back(']');
}

void DumpStored(const Json::object& values, std::string& out) {
  if (values.empty()) {
    out.append("{}", 2);
    return;
  }
  std::string_view prefix = "{";
  for (const auto& [key, value] : values) {
    // "{" or ", ", the key, ": " and a constant value, in one append when
    // the key allows.
    const JsonValue& stored = JsonAccess::Of(value);
    const std::string_view constant = ConstantText(stored);
    if (!AppendShortPlain(prefix, key, ": ", constant, out)) {
      out.append(prefix.data(), prefix.size());
      Quote(key, out);
      out.append(": ", 2);
      out.append(constant.data(), constant.size());
    }
    if (constant.empty()) stored.dump(out);
    prefix = ", ";
  }
  out.push_back('}');
}

void Json::dump(std::string& out) const { m_ptr->dump(out); }

std::string Json::dump() const {
  std::string out;
  m_ptr->dump(out);
  return out;
}

}  // namespace json11
