// The value classes behind json11::Json: one immutable object per value,
// shared between Json handles. Internal to the library (not part of the
// public interface); tests include it only to name the value classes.
#ifndef TESSEL_JSON11_JSON_VALUE_H_
#define TESSEL_JSON11_JSON_VALUE_H_

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "json11/json11.h"

namespace json11 {

class JsonValue {
 public:
  // Which number, string or container class a value is, so that the writer
  // can format it together with the separators around it and the destructor
  // can find nested containers; kOther for null and booleans.
  enum class Kind : unsigned char { kOther, kInt, kLong, kDouble, kString, kArray, kObject };

  explicit JsonValue(Kind kind) : kind_(kind) {}
  Kind kind() const { return kind_; }

  virtual Json::Type type() const = 0;
  // Called only with a value of the same Json::Type.
  virtual bool equal_to(const JsonValue* other) const = 0;
  virtual bool less_than(const JsonValue* other) const = 0;
  virtual void dump(std::string& out) const = 0;
  virtual double number_value() const;
  virtual int int_value() const;
  virtual long long longLong_value() const;
  virtual bool bool_value() const;
  virtual const std::string& string_value() const;
  virtual const Json::array& array_items() const;
  virtual const Json& operator[](const std::string& key) const;
  virtual const Json& operator[](size_t i) const;
  virtual const Json::object& object_items() const;
  virtual ~JsonValue() = default;

 private:
  const Kind kind_;
};

// Appends the text of one stored value (definitions beside the serializer).
void DumpStored(std::nullptr_t, std::string& out);
void DumpStored(bool value, std::string& out);
void DumpStored(int value, std::string& out);
void DumpStored(long long value, std::string& out);
void DumpStored(double value, std::string& out);
void DumpStored(const std::string& value, std::string& out);
void DumpStored(const Json::array& values, std::string& out);
void DumpStored(const Json::object& values, std::string& out);

template <typename T>
bool StoredLess(const T& a, const T& b) {
  return a < b;
}
inline bool StoredLess(std::nullptr_t, std::nullptr_t) { return false; }

template <Json::Type tag, typename T>
class Value : public JsonValue {
 public:
  explicit Value(const T& value, Kind kind = Kind::kOther) : JsonValue(kind), m_value(value) {}
  explicit Value(T&& value, Kind kind = Kind::kOther) : JsonValue(kind), m_value(std::move(value)) {}

  const T& stored() const { return m_value; }

  Json::Type type() const override { return tag; }
  bool equal_to(const JsonValue* other) const override {
    return m_value == static_cast<const Value*>(other)->m_value;
  }
  bool less_than(const JsonValue* other) const override {
    return StoredLess(m_value, static_cast<const Value*>(other)->m_value);
  }
  void dump(std::string& out) const override { DumpStored(m_value, out); }

 protected:
  // Never changed after construction, except that a container's destructor
  // takes out nested containers to release them without recursion.
  T m_value;
};

class JsonNull final : public Value<Json::Null, std::nullptr_t> {
 public:
  JsonNull() : Value(nullptr) {}
};

class JsonBoolean final : public Value<Json::Bool, bool> {
 public:
  explicit JsonBoolean(bool value) : Value(value) {}
  bool bool_value() const override;
};

// The three number classes compare through number_value(), so any two
// representations compare as doubles.
class JsonInt final : public Value<Json::Number, int> {
 public:
  explicit JsonInt(int value) : Value(value, Kind::kInt) {}
  bool equal_to(const JsonValue* other) const override;
  bool less_than(const JsonValue* other) const override;
  double number_value() const override;
  int int_value() const override;
  long long longLong_value() const override;
};

class JsonLong final : public Value<Json::Number, long long> {
 public:
  explicit JsonLong(long long value) : Value(value, Kind::kLong) {}
  bool equal_to(const JsonValue* other) const override;
  bool less_than(const JsonValue* other) const override;
  double number_value() const override;
  int int_value() const override;
  long long longLong_value() const override;
};

class JsonDouble final : public Value<Json::Number, double> {
 public:
  explicit JsonDouble(double value) : Value(value, Kind::kDouble) {}
  bool equal_to(const JsonValue* other) const override;
  bool less_than(const JsonValue* other) const override;
  double number_value() const override;
  int int_value() const override;
  long long longLong_value() const override;
};

class JsonString final : public Value<Json::String, std::string> {
 public:
  explicit JsonString(const std::string& value) : Value(value, Kind::kString) {}
  explicit JsonString(std::string&& value) : Value(std::move(value), Kind::kString) {}
  const std::string& string_value() const override;
};

// Releasing a container releases the containers nested in it one after
// another on the heap instead of one inside the other on the stack, so that
// values of any depth are destroyed without exhausting the stack.
class JsonArray final : public Value<Json::Array, Json::array> {
 public:
  explicit JsonArray(const Json::array& values) : Value(values, Kind::kArray) {}
  explicit JsonArray(Json::array&& values) : Value(std::move(values), Kind::kArray) {}
  ~JsonArray() override;
  const Json::array& array_items() const override;
  const Json& operator[](size_t i) const override;
};

class JsonObject final : public Value<Json::Object, Json::object> {
 public:
  explicit JsonObject(const Json::object& values) : Value(values, Kind::kObject) {}
  explicit JsonObject(Json::object&& values) : Value(std::move(values), Kind::kObject) {}
  ~JsonObject() override;
  const Json::object& object_items() const override;
  const Json& operator[](const std::string& key) const override;
};

// The library's way between handles and values.
struct JsonAccess {
  // Wraps a value made by the library (never null) into a handle.
  static Json Wrap(std::shared_ptr<const JsonValue> value) noexcept { return Json(std::move(value)); }
  // Makes a new value of class V.
  template <typename V, typename... Args>
  static Json Make(Args&&... args) {
    return Json(std::make_shared<V>(std::forward<Args>(args)...));
  }
  static const JsonValue& Of(const Json& json) noexcept { return *json.m_ptr; }
  static std::shared_ptr<const JsonValue>& Handle(Json& json) noexcept { return json.m_ptr; }
};

// The process-wide constants, made once on first use (thread-safe) in static
// storage and never destroyed, so values held by other static objects stay
// usable during shutdown. Handles to them carry no reference count.
struct JsonStatics {
  JsonNull null_value;
  JsonBoolean true_value{true};
  JsonBoolean false_value{false};
  JsonString empty_string{std::string()};
  JsonArray empty_array{Json::array()};
  JsonObject empty_object{Json::object()};
  Json null_json = Unowned(null_value);
  Json true_json = Unowned(true_value);
  Json false_json = Unowned(false_value);
  Json empty_array_json = Unowned(empty_array);
  Json empty_object_json = Unowned(empty_object);

 private:
  static Json Unowned(const JsonValue& value) noexcept;
};
const JsonStatics& Statics() noexcept;

}  // namespace json11

#endif  // TESSEL_JSON11_JSON_VALUE_H_
