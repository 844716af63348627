// Helpers shared by the JSON tests.
#ifndef TESSEL_TESTS_JSON_JSON_TEST_UTIL_H_
#define TESSEL_TESTS_JSON_JSON_TEST_UTIL_H_

#include <string>

#include "json11/json11.h"

namespace json_test {

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
