// json11::Json is an immutable JSON value (null, number, boolean, string,
// array or object) with a strict parser, a compact serializer, a total order
// and a shape check. Copies share one reference-counted value; nothing changes
// a value after it is made, so any number of threads may read, copy, compare
// and dump the same values at once. Only a Json handle itself must not be
// assigned on one thread while another thread reads it. Values built in code
// may nest to any depth: releasing and dumping them uses heap, not stack, in
// proportion to the depth; comparing (==, <, ...) recurses one call per
// level, so compare values nested deeper than some tens of thousands of
// levels only on a thread with a stack to match.
#ifndef TESSEL_JSON11_JSON11_H_
#define TESSEL_JSON11_JSON11_H_

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/tessel_export.h"

namespace json11 {

class JsonValue;

class TESSEL_API Json final {
 public:
  // The numeric values are fixed; they also give the order of types.
  enum Type { Null = 0, Number = 1, Bool = 2, String = 3, Array = 4, Object = 5 };

  using array = std::vector<Json>;
  using object = std::map<std::string, Json>;

  // Null and booleans share process-wide constants and never allocate.
  Json() noexcept;
  Json(std::nullptr_t) noexcept;
  Json(bool value) noexcept;
  // Numbers keep the representation of the constructor chosen, whatever the
  // magnitude: 32-bit integer, 64-bit integer or double.
  Json(int value);
  Json(long long value);
  Json(double value);
  // A null pointer gives the empty string.
  Json(const char* value);
  Json(const std::string& value);
  Json(std::string&& value);
  Json(const array& values);
  Json(array&& values);
  Json(const object& values);
  Json(object&& values);
  // Other pointers would silently become booleans.
  Json(const void*) = delete;

  // Copies share the value. A moved-from Json is the null value.
  Json(const Json& other) noexcept;
  Json(Json&& other) noexcept;
  Json& operator=(const Json& other) noexcept;
  Json& operator=(Json&& other) noexcept;
  ~Json();

  Type type() const;
  bool is_null() const { return type() == Null; }
  bool is_number() const { return type() == Number; }
  bool is_bool() const { return type() == Bool; }
  bool is_string() const { return type() == String; }
  bool is_array() const { return type() == Array; }
  bool is_object() const { return type() == Object; }

  // Every number answers as a double. 0.0 for non-numbers.
  double number_value() const;
  // A 64-bit integer gives its low 32 bits; a double is truncated toward zero,
  // saturates at INT_MIN/INT_MAX out of range and gives 0 for NaN. 0 for
  // non-numbers.
  int int_value() const;
  // A double is truncated toward zero, saturates at the long long limits out
  // of range and gives 0 for NaN. 0 for non-numbers.
  long long longLong_value() const;
  // false for everything but the true value.
  bool bool_value() const;
  // The stored content, or a shared empty one for a value of another type.
  // References stay valid while some Json shares the value.
  const std::string& string_value() const;
  const array& array_items() const;
  const object& object_items() const;

  // Element i of an array, or the shared null Json when i is out of range or
  // this is not an array. Never inserts.
  const Json& operator[](size_t i) const;
  // The member under key of an object, or the shared null Json when it is
  // missing or this is not an object. Never inserts.
  const Json& operator[](const std::string& key) const;

  // Values of different types differ; numbers compare as doubles whatever
  // their representation (so a NaN differs from itself); containers compare
  // element by element.
  bool operator==(const Json& other) const;
  bool operator!=(const Json& other) const;
  // A total order for values without NaN: by type number first, then by
  // value (false before true, numbers as doubles, strings byte-wise, arrays
  // and objects lexicographically, members by key then value).
  bool operator<(const Json& other) const;
  bool operator<=(const Json& other) const;
  bool operator>(const Json& other) const;
  bool operator>=(const Json& other) const;

  // Appends compact text to out (not cleared): ", " and ": " separators,
  // object members in key order, doubles as "%.17g" gives them, infinities as
  // 1e999 / -1e999 and NaN as null, in any locale.
  void dump(std::string& out) const;
  std::string dump() const;

  // Parses one JSON value filling all of in (whitespace around it allowed).
  // On failure returns the null value and replaces err with the first error's
  // message; on success err is left untouched. Nesting deeper than 200 fails.
  // Numbers of up to 9 characters become 32-bit integers, of 10 to 18
  // characters 64-bit integers, longer ones and those with a fraction or an
  // exponent doubles. Independent of the locale; thread-safe.
  static Json parse(const std::string& in, std::string& err);
  // A null pointer fails with "null input"; otherwise parses up to the first
  // NUL byte.
  static Json parse(const char* in, std::string& err);
  // Parses values that follow one another in in. On failure the result ends
  // with a null value after those read before, and err is set as by parse.
  // Empty input gives an empty vector.
  static std::vector<Json> parse_multi(const std::string& in, std::string& err);

  // True when this is an object whose member under each key has the given
  // type (a missing member counts as Null). Otherwise false, with err set to
  // "expected JSON object, got <text>" or "bad type for <key> in <text>";
  // err is untouched on success.
  bool has_shape(const std::initializer_list<std::pair<std::string, Json::Type>>& types,
                 std::string& err) const;

 private:
  friend struct JsonAccess;  // the library's value classes and parser

  explicit Json(std::shared_ptr<const JsonValue> value) noexcept;

  std::shared_ptr<const JsonValue> m_ptr;
};

}  // namespace json11

#endif  // TESSEL_JSON11_JSON11_H_
