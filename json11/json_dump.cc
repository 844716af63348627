// Compact JSON text of a value. Everything is appended to one output string,
// runs of plain bytes at once, numbers through std::to_chars (locale-free).
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <vector>

#include "json11/byte_scan.h"
#include "json11/double_text.h"
#include "json11/json11.h"
#include "json11/json_value.h"
#include "platform/hex_digits.h"

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


// Whether quoting copies all n bytes at p unchanged.
bool AllPlain(const char* p, size_t n) {
  if (n < 8) return PlainLength(p, p + n) == n;
  for (size_t i = 0; i + 8 < n; i += 8) {
    const std::uint64_t word = LoadWord(p + i);
    if (AnyStringSpecial(word) | AnyByteEqual(word, 0xE2)) return false;
  }
  const std::uint64_t last = LoadWord(p + n - 8);  // may overlap the previous word
  return (AnyStringSpecial(last) | AnyByteEqual(last, 0xE2)) == 0;
}

// Copies n bytes in words: short copies through memmove cost a call each.
char* CopyShort(const char* from, size_t n, char* to) {
  for (; n >= 8; n -= 8, from += 8, to += 8) std::memcpy(to, from, 8);
  for (; n > 0; --n) *to++ = *from++;
  return to;
}

constexpr size_t kShortText = 64;

// Writes text in quotes at out when it is at most kShortText bytes and needs
// no escape (most keys and many values), and returns the end; otherwise
// writes nothing and returns nullptr.
char* WriteShortPlain(const std::string& text, char* out) {
  if (text.size() > kShortText || !AllPlain(text.data(), text.size())) return nullptr;
  *out++ = '"';
  out = CopyShort(text.data(), text.size(), out);
  *out++ = '"';
  return out;
}

void Quote(const std::string& value, std::string& out) {
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
        char escape[6] = {'\\', 'u', '0', '0'};
        tessel_platform::WriteHexByte(c, tessel_platform::kLowerHexDigits, escape + 4);
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

char* WriteNumber(int value, char* out) { return std::to_chars(out, out + 24, value).ptr; }
char* WriteNumber(long long value, char* out) { return std::to_chars(out, out + 24, value).ptr; }

char* WriteNumber(double value, char* out) {
  if (std::isfinite(value)) return WriteDouble17(value, out);
  // JSON has no token for these: an infinity as a number that reads back
  // as the same infinity, a NaN as null.
  const std::string_view text = std::isnan(value) ? "null" : value < 0 ? "-1e999" : "1e999";
  return std::copy(text.begin(), text.end(), out);
}

// Room that WriteScalar may use (the double writer's fixed-size copies).
constexpr size_t kScalarCapacity = kShortText + kDoubleTextCapacity;

// Writes the text of a number, a short plain string, null or a boolean at out
// (kScalarCapacity bytes) and returns its end; nullptr for long or escaped
// strings and for containers.
char* WriteScalar(const JsonValue& value, char* out) {
  switch (value.kind()) {
    case JsonValue::Kind::kInt: return WriteNumber(static_cast<const JsonInt&>(value).stored(), out);
    case JsonValue::Kind::kLong: return WriteNumber(static_cast<const JsonLong&>(value).stored(), out);
    case JsonValue::Kind::kDouble: return WriteNumber(static_cast<const JsonDouble&>(value).stored(), out);
    case JsonValue::Kind::kString: return WriteShortPlain(static_cast<const JsonString&>(value).stored(), out);
    case JsonValue::Kind::kArray:
    case JsonValue::Kind::kObject: return nullptr;
    case JsonValue::Kind::kOther: break;
  }
  const JsonStatics& statics = Statics();
  std::string_view text;
  if (&value == &statics.null_value) {
    text = "null";
  } else if (&value == &statics.true_value) {
    text = "true";
  } else if (&value == &statics.false_value) {
    text = "false";
  } else {
    return nullptr;
  }
  return CopyShort(text.data(), text.size(), out);
}

// Collects the small pieces of one container (separators, keys, scalars) and
// hands them to the output string in few appends: each append is a call and
// a memmove, which would cost more than the pieces themselves.
class PendingText {
 public:
  // The most one piece may take: ", ", a quoted short key, ": " and a scalar.
  static constexpr size_t kPieceCapacity = 2 + kShortText + 2 + 2 + kScalarCapacity;

  explicit PendingText(std::string& out) : out_(out) {}

  // Where the next piece of at most kPieceCapacity bytes goes.
  char* Next() {
    if (used_ + kPieceCapacity > sizeof buffer_) Flush();
    return buffer_ + used_;
  }
  void Commit(char* end) { used_ = static_cast<size_t>(end - buffer_); }
  // Appends what is pending; before anything else writes to the output.
  std::string& Flush() {
    out_.append(buffer_, used_);
    used_ = 0;
    return out_;
  }

 private:
  std::string& out_;
  size_t used_ = 0;
  char buffer_[2 * kPieceCapacity + 128];
};

// Writes a value with all that is nested in it. The containers being written
// are kept on the heap, innermost last, so the depth of a value costs heap
// rather than stack; all pieces go through one pending text. Each container's
// elements are written in a loop of their own until a nested container opens.
class TreeWriter {
 public:
  explicit TreeWriter(std::string& out) : pending_(out) {}

  // Writes the whole of items (then call Finish).
  template <typename Items>
  void WriteAll(const Items& items) {
    if (!Element(items)) open_.push_back(FrameOf(items));
    while (!open_.empty()) {
      Frame& top = open_.back();
      if (top.isObject) {
        ContinueObject(top);
      } else {
        ContinueArray(top);
      }
    }
  }
  void Finish() { pending_.Flush(); }

 private:
  // Where a container being written has got to; the array fields serve
  // arrays, the member fields objects.
  struct Frame {
    const Json* element = nullptr;
    const Json* elementsEnd = nullptr;
    Json::object::const_iterator member;
    Json::object::const_iterator membersEnd;
    bool isObject = false;
    bool first = true;
  };

  static Frame FrameOf(const Json::array& items) {
    Frame frame;
    frame.element = items.data();
    frame.elementsEnd = items.data() + items.size();
    return frame;
  }

  static Frame FrameOf(const Json::object& members) {
    Frame frame;
    frame.member = members.begin();
    frame.membersEnd = members.end();
    frame.isObject = true;
    return frame;
  }

  // Writes elements of the innermost array (frame) up to the end, which it
  // closes, or up to a nested container, which it opens.
  void ContinueArray(Frame& frame) {
    const Json* element = frame.element;
    std::string_view separator = frame.first ? "[" : ", ";
    while (element != frame.elementsEnd) {
      const JsonValue& value = JsonAccess::Of(*element++);
      if (!Element(separator, value)) {
        frame.element = element;
        frame.first = false;
        return Open(value);  // frame is not used after this
      }
      separator = ", ";
    }
    Close("]");
  }

  void ContinueObject(Frame& frame) {
    auto member = frame.member;
    std::string_view separator = frame.first ? "{" : ", ";
    while (member != frame.membersEnd) {
      const auto& [key, json] = *member++;
      char* p = CopyShort(separator.data(), separator.size(), pending_.Next());
      char* const keyEnd = WriteShortPlain(key, p);
      if (keyEnd != nullptr) {
        pending_.Commit(keyEnd);
      } else {
        pending_.Commit(p);
        Quote(key, pending_.Flush());
      }
      const JsonValue& value = JsonAccess::Of(json);
      if (!Element(": ", value)) {
        frame.member = member;
        frame.first = false;
        return Open(value);
      }
      separator = ", ";
    }
    Close("}");
  }

  void Open(const JsonValue& container) {
    if (container.kind() == JsonValue::Kind::kArray) {
      open_.push_back(FrameOf(static_cast<const JsonArray&>(container).stored()));
    } else {
      open_.push_back(FrameOf(static_cast<const JsonObject&>(container).stored()));
    }
  }

  void Close(std::string_view text) {
    pending_.Commit(CopyShort(text.data(), text.size(), pending_.Next()));
    open_.pop_back();
  }

  // Writes the separator and the value, and returns true; for a container
  // with elements writes only the separator and returns false (the caller
  // opens it).
  bool Element(std::string_view separator, const JsonValue& value) {
    char* p = CopyShort(separator.data(), separator.size(), pending_.Next());
    char* const end = WriteScalar(value, p);
    if (end != nullptr) {
      pending_.Commit(end);
      return true;
    }
    pending_.Commit(p);
    switch (value.kind()) {
      case JsonValue::Kind::kArray: return Element(static_cast<const JsonArray&>(value).stored());
      case JsonValue::Kind::kObject: return Element(static_cast<const JsonObject&>(value).stored());
      default: value.dump(pending_.Flush()); return true;
    }
  }

  // Writes an empty container and returns true; false for one with elements.
  template <typename Items>
  bool Element(const Items& items) {
    if (!items.empty()) return false;
    const char* const text = std::is_same_v<Items, Json::object> ? "{}" : "[]";
    pending_.Commit(CopyShort(text, 2, pending_.Next()));
    return true;
  }

  PendingText pending_;
  std::vector<Frame> open_;
};

}  // namespace

void DumpStored(std::nullptr_t, std::string& out) { out.append("null", 4); }

void DumpStored(bool value, std::string& out) {
  if (value) {
    out.append("true", 4);
  } else {
    out.append("false", 5);
  }
}

namespace {

template <typename Number>
void AppendNumber(Number value, std::string& out) {
  char buffer[kDoubleTextCapacity];
  out.append(buffer, static_cast<size_t>(WriteNumber(value, buffer) - buffer));
}

}  // namespace

void DumpStored(int value, std::string& out) { AppendNumber(value, out); }
void DumpStored(long long value, std::string& out) { AppendNumber(value, out); }
void DumpStored(double value, std::string& out) { AppendNumber(value, out); }

void DumpStored(const std::string& value, std::string& out) {
  char buffer[kShortText + 2];
  char* const end = WriteShortPlain(value, buffer);
  if (end != nullptr) {
    out.append(buffer, static_cast<size_t>(end - buffer));
  } else {
    Quote(value, out);
  }
}

void DumpStored(const Json::array& values, std::string& out) {
  TreeWriter writer(out);
  writer.WriteAll(values);
  writer.Finish();
}

void DumpStored(const Json::object& values, std::string& out) {
  TreeWriter writer(out);
  writer.WriteAll(values);
  writer.Finish();
}

void Json::dump(std::string& out) const { m_ptr->dump(out); }

std::string Json::dump() const {
  std::string out;
  m_ptr->dump(out);
  return out;
}

}  // namespace json11
