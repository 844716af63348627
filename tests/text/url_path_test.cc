// URL and path members of StringUtils. Escapes are checked against snprintf
// and the C library's isalnum, the "%" escapes against sscanf itself over all
// byte pairs, file URLs by round trips on generated paths.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <random>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "common/string_utils.h"
#include "support/table.h"

namespace {

using tessel::StringUtils;
using Params = std::unordered_map<std::string, std::string>;
using test_table::ExpectEach;
using test_table::ExpectEach2;

TEST(UrlEncode, EveryByteAgainstTheUnreservedSet) {
  for (int i = 0; i < 256; ++i) {
    const std::string byte(1, static_cast<char>(i));
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02x", i);
    const bool unreserved = std::isalnum(i) || i == '-' || i == '.' || i == '_' || i == '~';
    EXPECT_EQ(StringUtils::url_encode(byte), unreserved ? byte : std::string(escaped)) << i;
  }
}

// The reference decoder: the documented loop with sscanf("%x") itself as the
// escape reader.
std::string DecodeWithSscanf(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size();) {
    const char c = text[i++];
    char window[3] = {0, 0, 0};
    const size_t take = text.copy(window, 2, i);
    unsigned value = 0;
    if (c == '%' && std::sscanf(window, "%x", &value) == 1) {
      out += static_cast<char>(value & 0xff);
      i += take;
    } else {
      out += c == '+' ? ' ' : c;
    }
  }
  return out;
}

// Every "%" followed by no byte, one byte, or two bytes and a trailing byte
// (which shows whether both bytes of the escape were skipped).
TEST(UrlDecode, EscapeReadsLikeSscanfForAllBytePairs) {
  EXPECT_EQ(StringUtils::url_decode("%"), DecodeWithSscanf("%"));
  for (int first = 0; first < 256; ++first) {
    const std::string single = "%" + std::string(1, static_cast<char>(first));
    ASSERT_EQ(StringUtils::url_decode(single), DecodeWithSscanf(single)) << "byte " << first;
    for (int second = 0; second < 256; ++second) {
      const std::string text = single + static_cast<char>(second) + "Q";
      ASSERT_EQ(StringUtils::url_decode(text), DecodeWithSscanf(text))
          << "bytes " << first << " " << second;
    }
  }
}

std::string RandomComponent(std::mt19937& random) {
  static const std::string kBytes = std::string("abcXYZ019 %+:#?&=.-_~\\\xc3\xa9\x01\x7f") +
                                    std::string(1, '\0');
  std::string component;
  const int length = 1 + static_cast<int>(random() % 8);
  for (int i = 0; i < length; ++i) component += kBytes[random() % kBytes.size()];
  return component;
}

TEST(FileUrls, PathToUrlAndBackRoundTrips) {
  std::mt19937 random(3);
  for (int round = 0; round < 5000; ++round) {
    const bool drive = round % 2 == 1;
    std::string path;
    if (drive) path += std::string(1, "cDzA"[random() % 4]) + ":";
    const int components = static_cast<int>(random() % 5) + (drive ? 0 : 1);
    for (int i = 0; i < components; ++i) {
      std::string component = RandomComponent(random);
      // A POSIX path whose first component looks like a drive reads back as one.
      if (!drive && i == 0 && component.size() >= 2 && component[1] == ':') component[1] = '_';
      path += "/" + component;
    }
    ASSERT_EQ(StringUtils::FilePathFromURL(StringUtils::URLFromFilePath(path)), path)
        << "[" << path << "] via " << StringUtils::URLFromFilePath(path);
  }
  EXPECT_EQ(StringUtils::FilePathFromURL(StringUtils::URLFromFilePath("/")), "/");
}

TEST(Paths, RelativeThenFullGivesThePathBack) {
  // For absolute paths without "." components, resolving the relative path
  // against the base lands on the same components.
  std::mt19937 random(5);
  const char* const names[] = {"a", "b", "c"};
  for (int round = 0; round < 2000; ++round) {
    std::string path, base;
    for (int i = 0, n = 1 + static_cast<int>(random() % 4); i < n; ++i) {
      path += std::string("/") + names[random() % 3];
    }
    for (int i = 0, n = 1 + static_cast<int>(random() % 4); i < n; ++i) {
      base += std::string("/") + names[random() % 3];
    }
    const std::string relative = StringUtils::relativePath2Path(path, base);
    if (relative.empty() || relative[0] != '.') continue;  // no climb: not resolvable
    std::string full = StringUtils::fullPathFromRelativePath(relative, base);
    if (!full.empty() && full.back() == '/') full.pop_back();
    EXPECT_EQ(full, path) << "base " << base << " relative " << relative;
  }
}

TEST(Paths, LastPathComponent) {
  const auto last = [](const std::string& path, const std::string& separator) {
    return StringUtils::lastPathComponent(path, separator[0]);
  };
  ExpectEach2(last, {{"/a/b/c.txt", "/", "c.txt"}, {"/a/b/", "/", "b"}, {"a/b", "/", "b"},
                     {"/a", "/", "/a"}, {"b/", "/", "b/"}, {"/a/b//", "/", ""}, {"/", "/", "/"},
                     {"", "/", ""}, {"//", "/", "//"}, {"C:\\dir\\f.txt", "\\", "f.txt"},
                     {"C:\\dir\\f.txt", "/", "C:\\dir\\f.txt"}});
}

}  // namespace
