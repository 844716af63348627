// A fixture giving each test a fresh directory of its own, removed afterwards.
#ifndef TESSEL_TESTS_FILES_TEMP_DIR_H_
#define TESSEL_TESTS_FILES_TEMP_DIR_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

class TempDirTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::random_device seed;
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::temp_directory_path() /
           (std::string("tessel-") + info->name() + "-" + std::to_string(seed()));
    ASSERT_TRUE(std::filesystem::create_directory(dir_));
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string Path(const std::string& name) const { return (dir_ / name).string(); }

  // Writes `content` to `name` with the standard library; returns the path.
  std::string Make(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

  static std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  // Bytes 0, 1, 2, ... 250, 0, 1, ...: no two chunks alike.
  static std::string Pattern(std::size_t length) {
    std::string data(length, '\0');
    for (std::size_t i = 0; i < length; ++i) data[i] = static_cast<char>(i % 251);
    return data;
  }

  std::filesystem::path dir_;
};

#endif  // TESSEL_TESTS_FILES_TEMP_DIR_H_
