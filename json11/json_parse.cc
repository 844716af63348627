// A strict recursive-descent JSON reader. It walks a byte range whose end is
// always readable as a NUL byte (std::string and C strings both guarantee
// one), so looking at the current byte never needs a bounds check: the NUL
// matches nothing the grammar looks for.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "json11/byte_scan.h"
#include "json11/json11.h"
#include "json11/json_value.h"
#include "platform/hex_digits.h"
#include "platform/utf8_codec.h"

namespace json11 {

namespace {

constexpr int kMaxDepth = 200;

// Bytes that end a run of plain string content: the quote, the backslash and
// the control bytes (the terminating NUL among them).
struct StringStopTable {
  bool stop[256];
  constexpr StringStopTable() : stop() {
    for (int c = 0; c < 0x20; ++c) stop[c] = true;
    stop[static_cast<unsigned char>('"')] = true;
    stop[static_cast<unsigned char>('\\')] = true;
  }
};
constexpr StringStopTable kStringStop;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsWhitespace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool IsHighSurrogate(long cp) { return cp >= 0xD800 && cp <= 0xDBFF; }
bool IsLowSurrogate(long cp) { return cp >= 0xDC00 && cp <= 0xDFFF; }

void AppendUtf8(long cp, std::string& out) {
  char bytes[4];
  out.append(bytes, tessel_platform::EncodeUtf8(static_cast<char32_t>(cp), bytes));
}

// "'x' (120)" for printable ASCII, "(code)" otherwise; the code is the byte
// as a signed char.
std::string Describe(char c) {
  char buffer[16];
  const auto u = static_cast<unsigned char>(c);
  const int code = static_cast<signed char>(c);
  if (u >= 0x20 && u <= 0x7F) {
    std::snprintf(buffer, sizeof buffer, "'%c' (%d)", c, code);
  } else {
    std::snprintf(buffer, sizeof buffer, "(%d)", code);
  }
  return buffer;
}

// Digits of at most 18 characters (sign included) fit a long long.
long long ShortInteger(const char* first, const char* last) {
  const bool negative = *first == '-';
  long long value = 0;
  for (const char* p = first + negative; p < last; ++p) value = value * 10 + (*p - '0');
  return negative ? -value : value;
}

// std::from_chars leaves the value alone when the magnitude is beyond the
// double range; the C conversion gives an infinity above and a (signed) zero
// below. text is well-formed: -?digits[.digits][(e|E)[+-]digits].
double OutOfRangeDouble(const char* first, const char* last) {
  const bool negative = *first == '-';
  const char* p = first + negative;
  // Decimal position of the first non-zero digit relative to the point.
  long long magnitude = 0;
  bool seen_digit = false;
  for (; IsDigit(*p) && p < last; ++p) {
    seen_digit = seen_digit || *p != '0';
    if (seen_digit) ++magnitude;
  }
  if (p < last && *p == '.') {
    for (++p; p < last && IsDigit(*p) && !seen_digit; ++p) {
      seen_digit = *p != '0';
      if (!seen_digit) --magnitude;
    }
    while (p < last && IsDigit(*p)) ++p;
  }
  long long exponent = 0;
  if (p < last) {
    ++p;  // 'e' or 'E'
    const bool negative_exponent = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    for (; p < last; ++p) {
      if (exponent < 1000000000) exponent = exponent * 10 + (*p - '0');
    }
    if (negative_exponent) exponent = -exponent;
  }
  const double magnitude_result =
      magnitude + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  return negative ? -magnitude_result : magnitude_result;
}

}  // namespace

class JsonParser {
 public:
  JsonParser(const char* begin, const char* end, std::string& err)
      : p_(begin), end_(end), err_(err) {}

  Json ParseValue(int depth);
  void SkipWhitespace() {
    while (IsWhitespace(*p_)) ++p_;
  }
  bool AtEnd() const { return p_ == end_; }
  bool failed() const { return failed_; }

  Json ParseDocument() {
    Json result = ParseValue(0);
    SkipWhitespace();
    if (!failed_ && !AtEnd()) Fail("unexpected trailing " + Describe(*p_));
    return failed_ ? Json() : result;
  }

 private:
  Json Fail(std::string message) {
    if (!failed_) err_ = std::move(message);
    failed_ = true;
    return Json();
  }

  // Skips whitespace and takes the byte there; 0 (with the failure recorded)
  // at the end of the input.
  char NextToken() {
    SkipWhitespace();
    if (AtEnd()) {
      Fail("unexpected end of input");
      return 0;
    }
    return *p_++;
  }

  Json ExpectWord(const char* word, size_t length, const Json& value);
  Json ParseNumber();
  bool ParseString(std::string& out);
  Json ParseArray(int depth);
  Json ParseObject(int depth);
  Json::object TakeMembers(size_t base);

  const char* p_;
  const char* const end_;
  std::string& err_;
  bool failed_ = false;
  // Elements of the arrays being read, innermost last; each finished array
  // takes its own off the top, so the final vectors are allocated once.
  std::vector<Json> elements_;
  // Members of the objects being read, likewise.
  std::vector<std::pair<std::string, Json>> members_;
};

Json JsonParser::ParseValue(int depth) {
  if (depth > kMaxDepth) return Fail("exceeded maximum nesting depth");
  const char c = NextToken();
  if (failed_) return Json();
  switch (c) {
    case '-': case '0': case '1': case '2': case '3': case '4':
    case '5': case '6': case '7': case '8': case '9':
      --p_;
      return ParseNumber();
    case 't':
      return ExpectWord("true", 4, Statics().true_json);
    case 'f':
      return ExpectWord("false", 5, Statics().false_json);
    case 'n':
      return ExpectWord("null", 4, Statics().null_json);
    case '"': {
      std::string text;
      if (!ParseString(text)) return Json();
      return JsonAccess::Make<JsonString>(std::move(text));
    }
    case '{':
      return ParseObject(depth);
    case '[':
      return ParseArray(depth);
    default:
      return Fail("expected value, got " + Describe(c));
  }
}

Json JsonParser::ExpectWord(const char* word, size_t length, const Json& value) {
  --p_;
  const size_t available = std::min<size_t>(length, end_ - p_);
  if (available == length && std::memcmp(p_, word, length) == 0) {
    p_ += length;
    return value;
  }
  return Fail("parse error: expected " + std::string(word) + ", got " +
              std::string(p_, available));
}

Json JsonParser::ParseNumber() {
  const char* const start = p_;
  if (*p_ == '-') ++p_;
  if (*p_ == '0') {
    ++p_;
    if (IsDigit(*p_)) return Fail("leading 0s not permitted in numbers");
  } else if (*p_ >= '1' && *p_ <= '9') {
    while (IsDigit(*++p_)) {
    }
  } else {
    return Fail("invalid " + Describe(*p_) + " in number");
  }
  if (*p_ != '.' && *p_ != 'e' && *p_ != 'E') {
    const auto length = p_ - start;
    if (length <= 9) return JsonAccess::Make<JsonInt>(static_cast<int>(ShortInteger(start, p_)));
    if (length <= 18) return JsonAccess::Make<JsonLong>(ShortInteger(start, p_));
  }
  if (*p_ == '.') {
    ++p_;
    if (!IsDigit(*p_)) return Fail("at least one digit required in fractional part");
    while (IsDigit(*++p_)) {
    }
  }
  if (*p_ == 'e' || *p_ == 'E') {
    ++p_;
    if (*p_ == '+' || *p_ == '-') ++p_;
    if (!IsDigit(*p_)) return Fail("at least one digit required in exponent");
    while (IsDigit(*++p_)) {
    }
  }
  double value = 0.0;
  const auto result = std::from_chars(start, p_, value);
  if (result.ec == std::errc::result_out_of_range) value = OutOfRangeDouble(start, p_);
  return JsonAccess::Make<JsonDouble>(value);
}

// Reads the rest of a string after its opening quote into out. Returns false
// (with the failure recorded) on a malformed string.
bool JsonParser::ParseString(std::string& out) {
  constexpr long kNone = -1;
  long pending = kNone;  // a \u code point kept back to pair surrogates
  auto flush = [&] {
    if (pending != kNone) AppendUtf8(pending, out);
    pending = kNone;
  };
  for (;;) {
    const char* run = p_;
    while (end_ - p_ >= 8 && !AnyStringSpecial(LoadWord(p_))) p_ += 8;
    while (!kStringStop.stop[static_cast<unsigned char>(*p_)]) ++p_;
    if (p_ != run) {
      flush();
      out.append(run, static_cast<size_t>(p_ - run));
    }
    if (AtEnd()) {
      Fail("unexpected end of input in string");
      return false;
    }
    const char c = *p_++;
    if (c == '"') {
      flush();
      return true;
    }
    if (c != '\\') {
      Fail("unescaped " + Describe(c) + " in string");
      return false;
    }
    if (AtEnd()) {
      Fail("unexpected end of input in string");
      return false;
    }
    const char e = *p_++;
    if (e == 'u') {
      const size_t available = std::min<size_t>(4, end_ - p_);
      long cp = 0;
      for (size_t i = 0; i < 4; ++i) {
        const int digit = i < available ? tessel_platform::HexDigitValue(static_cast<unsigned char>(p_[i])) : -1;
        if (digit < 0) {
          Fail("bad \\u escape: " + std::string(p_, available));
          return false;
        }
        cp = cp * 16 + digit;
      }
      if (IsHighSurrogate(pending) && IsLowSurrogate(cp)) {
        AppendUtf8((pending - 0xD800) * 1024 + (cp - 0xDC00) + 0x10000, out);
        pending = kNone;
      } else {
        flush();
        pending = cp;
      }
      p_ += 4;
      continue;
    }
    flush();
    switch (e) {
      case 'b': out.push_back('\b'); break;
      case 'f': out.push_back('\f'); break;
      case 'n': out.push_back('\n'); break;
      case 'r': out.push_back('\r'); break;
      case 't': out.push_back('\t'); break;
      case '"': case '\\': case '/': out.push_back(e); break;
      default:
        Fail("invalid escape character " + Describe(e));
        return false;
    }
  }
}

Json JsonParser::ParseArray(int depth) {
  char c = NextToken();
  if (c == ']') return Statics().empty_array_json;
  const size_t base = elements_.size();
  for (;;) {
    if (failed_) break;
    --p_;
    elements_.push_back(ParseValue(depth + 1));
    if (failed_) break;
    c = NextToken();
    if (c == ']') {
      Json::array items(std::make_move_iterator(elements_.begin() + base),
                        std::make_move_iterator(elements_.end()));
      elements_.resize(base);
      return JsonAccess::Make<JsonArray>(std::move(items));
    }
    if (c != ',') {
      Fail("expected ',' in list, got " + Describe(c));
      break;
    }
    NextToken();
  }
  elements_.resize(base);
  return Json();
}

Json JsonParser::ParseObject(int depth) {
  char c = NextToken();
  if (c == '}') return Statics().empty_object_json;
  const size_t base = members_.size();
  for (;;) {
    if (c != '"') {
      Fail("expected '\"' in object, got " + Describe(c));
      break;
    }
    std::string key;
    if (!ParseString(key)) break;
    c = NextToken();
    if (c != ':') {
      Fail("expected ':' in object, got " + Describe(c));
      break;
    }
    members_.emplace_back(std::move(key), ParseValue(depth + 1));
    if (failed_) break;
    c = NextToken();
    if (c == '}') return JsonAccess::Make<JsonObject>(TakeMembers(base));
    if (c != ',') {
      Fail("expected ',' in object, got " + Describe(c));
      break;
    }
    c = NextToken();
  }
  members_.resize(base);
  return Json();
}

// Builds the map only once the members are read, so that its nodes lie
// together in memory rather than between the values' allocations.
Json::object JsonParser::TakeMembers(size_t base) {
  Json::object members;
  for (auto member = members_.begin() + base; member != members_.end(); ++member) {
    auto it = members.lower_bound(member->first);
    if (it != members.end() && it->first == member->first) {
      it->second = std::move(member->second);  // a repeated key: the later value wins
    } else {
      members.emplace_hint(it, std::move(member->first), std::move(member->second));
    }
  }
  members_.resize(base);
  return members;
}

Json Json::parse(const std::string& in, std::string& err) {
  return JsonParser(in.data(), in.data() + in.size(), err).ParseDocument();
}

Json Json::parse(const char* in, std::string& err) {
  if (in == nullptr) {
    err = "null input";
    return Json();
  }
  return JsonParser(in, in + std::strlen(in), err).ParseDocument();
}

std::vector<Json> Json::parse_multi(const std::string& in, std::string& err) {
  std::vector<Json> values;
  JsonParser parser(in.data(), in.data() + in.size(), err);
  while (!parser.AtEnd() && !parser.failed()) {
    values.push_back(parser.ParseValue(0));
    parser.SkipWhitespace();
  }
  return values;
}

}  // namespace json11
