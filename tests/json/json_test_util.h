// Helpers shared by the JSON tests.
#ifndef TESSEL_TESTS_JSON_JSON_TEST_UTIL_H_
#define TESSEL_TESTS_JSON_JSON_TEST_UTIL_H_

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <typeinfo>

#include "json11/json11.h"
#include "json11/json_value.h"

namespace json_test {

// The value class behind a Json ("json11::JsonInt", ...), from its type information.
inline std::string ValueClass(const json11::Json& json) {
  const json11::JsonValue& value = json11::JsonAccess::Of(json);
  const std::type_info& info = typeid(value);
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> name(
      abi::__cxa_demangle(info.name(), nullptr, nullptr, &status), std::free);
  return status == 0 ? name.get() : info.name();
}

inline json11::Json Parse(const std::string& text, std::string* error = nullptr) {
  std::string err;
  json11::Json json = json11::Json::parse(text, err);
  if (error) *error = err;
  return json;
}

// The error message of parsing text ("" when it parses).
inline std::string ParseError(const std::string& text) {
  std::string err;
  Parse(text, &err);
  return err;
}

}  // namespace json_test

#endif  // TESSEL_TESTS_JSON_JSON_TEST_UTIL_H_
