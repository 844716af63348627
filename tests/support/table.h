// Table-driven checks of pure functions; a failure names the case's inputs.
#ifndef TESSEL_TESTS_SUPPORT_TABLE_H_
#define TESSEL_TESTS_SUPPORT_TABLE_H_

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>

namespace test_table {

// fn(input) == expected for every {input, expected}.
template <typename Expected = std::string, typename Fn>
void ExpectEach(Fn fn, std::initializer_list<std::pair<std::string, Expected>> cases) {
  for (const auto& [input, expected] : cases) EXPECT_EQ(fn(input), expected) << "[" << input << "]";
}

// fn(first, second) == expected for every {first, second, expected}.
template <typename Expected = std::string, typename Fn>
void ExpectEach2(Fn fn,
                 std::initializer_list<std::tuple<std::string, std::string, Expected>> cases) {
  for (const auto& [first, second, expected] : cases) {
    EXPECT_EQ(fn(first, second), expected) << "[" << first << "] [" << second << "]";
  }
}

}  // namespace test_table

#endif  // TESSEL_TESTS_SUPPORT_TABLE_H_
