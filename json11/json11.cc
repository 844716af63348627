// The value model: construction, accessors, equality, ordering, shape check.
#include "json11/json11.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "json11/json_value.h"

namespace json11 {

// ---- shared constants ----

Json JsonStatics::Unowned(const JsonValue& value) noexcept {
  // An aliasing pointer without a control block: copies cost no atomic count.
  return JsonAccess::Wrap(std::shared_ptr<const JsonValue>(std::shared_ptr<const JsonValue>(), &value));
}

const JsonStatics& Statics() noexcept {
  alignas(JsonStatics) static unsigned char storage[sizeof(JsonStatics)];
  static const JsonStatics* const statics = new (storage) JsonStatics();
  return *statics;
}

// ---- defaults of the value classes ----

double JsonValue::number_value() const { return 0.0; }
int JsonValue::int_value() const { return 0; }
long long JsonValue::longLong_value() const { return 0; }
bool JsonValue::bool_value() const { return false; }
const std::string& JsonValue::string_value() const { return Statics().empty_string.string_value(); }
const Json::array& JsonValue::array_items() const { return Statics().empty_array.array_items(); }
const Json::object& JsonValue::object_items() const { return Statics().empty_object.object_items(); }
const Json& JsonValue::operator[](const std::string&) const { return Statics().null_json; }
const Json& JsonValue::operator[](size_t) const { return Statics().null_json; }

bool JsonBoolean::bool_value() const { return m_value; }
const std::string& JsonString::string_value() const { return m_value; }
const Json::array& JsonArray::array_items() const { return m_value; }
const Json::object& JsonObject::object_items() const { return m_value; }

const Json& JsonArray::operator[](size_t i) const {
  return i < m_value.size() ? m_value[i] : Statics().null_json;
}

const Json& JsonObject::operator[](const std::string& key) const {
  auto it = m_value.find(key);
  return it == m_value.end() ? Statics().null_json : it->second;
}

// ---- releasing nested containers ----

namespace {

using Handle = std::shared_ptr<const JsonValue>;

// The containers waiting to be released by the outermost container
// destructor running on this thread; null when none runs.
thread_local std::vector<Handle>* t_releasing = nullptr;

// Moves the handle into pending when it holds the last reference to a
// container, so that its release happens in the loop below rather than
// inside the destructor of its parent. Leaves it in place when memory for
// the list runs out.
void TakeIfLastContainer(Json& json, std::vector<Handle>& pending) noexcept {
  Handle& handle = JsonAccess::Handle(json);
  if (handle.use_count() != 1) return;
  const JsonValue::Kind kind = handle->kind();
  if (kind != JsonValue::Kind::kArray && kind != JsonValue::Kind::kObject) return;
  try {
    pending.push_back(std::move(handle));
  } catch (...) {
  }
}

void TakeNested(Json::array& items, std::vector<Handle>& pending) noexcept {
  for (Json& item : items) TakeIfLastContainer(item, pending);
}

void TakeNested(Json::object& members, std::vector<Handle>& pending) noexcept {
  for (auto& member : members) TakeIfLastContainer(member.second, pending);
}

// Called by a container's destructor with its own items. Inside an outer
// release the nested containers join that release's list; otherwise this
// call becomes the outer release and drains the list, each container
// released there adding its own nested ones.
template <typename Items>
void ReleaseNested(Items& items) noexcept {
  if (t_releasing != nullptr) {
    TakeNested(items, *t_releasing);
    return;
  }
  std::vector<Handle> pending;
  TakeNested(items, pending);
  if (pending.empty()) return;
  t_releasing = &pending;
  while (!pending.empty()) {
    Handle last = std::move(pending.back());
    pending.pop_back();
    last.reset();
  }
  t_releasing = nullptr;
}

}  // namespace

JsonArray::~JsonArray() { ReleaseNested(m_value); }
JsonObject::~JsonObject() { ReleaseNested(m_value); }

// ---- numbers ----

namespace {

// Truncates toward zero; NaN gives 0 and values beyond the range of Int
// saturate at its limits.
template <typename Int>
Int SaturatingTruncate(double v) {
  // Both limits are powers of two, so these doubles are exact.
  constexpr double kMin = static_cast<double>(std::numeric_limits<Int>::min());
  constexpr double kEnd = -kMin;
  if (std::isnan(v)) return 0;
  if (v < kMin) return std::numeric_limits<Int>::min();
  if (v >= kEnd) return std::numeric_limits<Int>::max();
  return static_cast<Int>(v);
}

}  // namespace

bool JsonInt::equal_to(const JsonValue* other) const { return number_value() == other->number_value(); }
bool JsonInt::less_than(const JsonValue* other) const { return number_value() < other->number_value(); }
double JsonInt::number_value() const { return m_value; }
int JsonInt::int_value() const { return m_value; }
long long JsonInt::longLong_value() const { return m_value; }

bool JsonLong::equal_to(const JsonValue* other) const { return number_value() == other->number_value(); }
bool JsonLong::less_than(const JsonValue* other) const { return number_value() < other->number_value(); }
double JsonLong::number_value() const { return static_cast<double>(m_value); }
int JsonLong::int_value() const {
  return static_cast<int>(static_cast<std::uint32_t>(static_cast<unsigned long long>(m_value)));
}
long long JsonLong::longLong_value() const { return m_value; }

bool JsonDouble::equal_to(const JsonValue* other) const { return m_value == other->number_value(); }
bool JsonDouble::less_than(const JsonValue* other) const { return m_value < other->number_value(); }
double JsonDouble::number_value() const { return m_value; }
int JsonDouble::int_value() const { return SaturatingTruncate<int>(m_value); }
long long JsonDouble::longLong_value() const { return SaturatingTruncate<long long>(m_value); }

// ---- construction ----

Json::Json(std::shared_ptr<const JsonValue> value) noexcept : m_ptr(std::move(value)) {}
Json::Json() noexcept : Json(Statics().null_json) {}
Json::Json(std::nullptr_t) noexcept : Json() {}
Json::Json(bool value) noexcept : Json(value ? Statics().true_json : Statics().false_json) {}
Json::Json(int value) : m_ptr(std::make_shared<JsonInt>(value)) {}
Json::Json(long long value) : m_ptr(std::make_shared<JsonLong>(value)) {}
Json::Json(double value) : m_ptr(std::make_shared<JsonDouble>(value)) {}
Json::Json(const char* value)
    : m_ptr(std::make_shared<JsonString>(value ? std::string(value) : std::string())) {}
Json::Json(const std::string& value) : m_ptr(std::make_shared<JsonString>(value)) {}
Json::Json(std::string&& value) : m_ptr(std::make_shared<JsonString>(std::move(value))) {}
Json::Json(const array& values) : m_ptr(std::make_shared<JsonArray>(values)) {}
Json::Json(array&& values) : m_ptr(std::make_shared<JsonArray>(std::move(values))) {}
Json::Json(const object& values) : m_ptr(std::make_shared<JsonObject>(values)) {}
Json::Json(object&& values) : m_ptr(std::make_shared<JsonObject>(std::move(values))) {}

Json::Json(const Json& other) noexcept = default;
Json::Json(Json&& other) noexcept : m_ptr(std::move(other.m_ptr)) {
  other.m_ptr = Statics().null_json.m_ptr;
}
Json& Json::operator=(const Json& other) noexcept = default;
Json& Json::operator=(Json&& other) noexcept {
  if (this != &other) {
    m_ptr = std::move(other.m_ptr);
    other.m_ptr = Statics().null_json.m_ptr;
  }
  return *this;
}
Json::~Json() = default;

// ---- reading ----

Json::Type Json::type() const { return m_ptr->type(); }
double Json::number_value() const { return m_ptr->number_value(); }
int Json::int_value() const { return m_ptr->int_value(); }
long long Json::longLong_value() const { return m_ptr->longLong_value(); }
bool Json::bool_value() const { return m_ptr->bool_value(); }
const std::string& Json::string_value() const { return m_ptr->string_value(); }
const Json::array& Json::array_items() const { return m_ptr->array_items(); }
const Json::object& Json::object_items() const { return m_ptr->object_items(); }
const Json& Json::operator[](size_t i) const { return (*m_ptr)[i]; }
const Json& Json::operator[](const std::string& key) const { return (*m_ptr)[key]; }

// ---- equality and order ----

bool Json::operator==(const Json& other) const {
  if (m_ptr->type() != other.m_ptr->type()) return false;
  return m_ptr->equal_to(other.m_ptr.get());
}

bool Json::operator<(const Json& other) const {
  if (m_ptr->type() != other.m_ptr->type()) return m_ptr->type() < other.m_ptr->type();
  return m_ptr->less_than(other.m_ptr.get());
}

bool Json::operator!=(const Json& other) const { return !(*this == other); }
bool Json::operator<=(const Json& other) const { return !(other < *this); }
bool Json::operator>(const Json& other) const { return other < *this; }
bool Json::operator>=(const Json& other) const { return !(*this < other); }

// ---- shape ----

bool Json::has_shape(const std::initializer_list<std::pair<std::string, Json::Type>>& types,
                     std::string& err) const {
  if (!is_object()) {
    err = "expected JSON object, got " + dump();
    return false;
  }
  for (const auto& [key, type] : types) {
    if ((*this)[key].type() != type) {
      err = "bad type for " + key + " in " + dump();
      return false;
    }
  }
  return true;
}

}  // namespace json11
