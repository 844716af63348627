// URL and path members of StringUtils. Escapes are checked against snprintf
// and the C library's isalnum, the "%" escapes against sscanf itself over all
// byte pairs, file URLs by round trips on generated paths.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/string_utils.h"

namespace {

using tessel::StringUtils;
using Params = std::unordered_map<std::string, std::string>;

TEST(UrlEncode, EveryByteAgainstTheUnreservedSet) {
  for (int i = 0; i < 256; ++i) {
    const std::string byte(1, static_cast<char>(i));
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02x", i);
    const bool unreserved = std::isalnum(i) || i == '-' || i == '.' || i == '_' || i == '~';
    EXPECT_EQ(StringUtils::url_encode(byte), unreserved ? byte : std::string(escaped)) << i;
  }
}

TEST(UrlEncode, DocumentedExamples) {
  EXPECT_EQ(StringUtils::url_encode("a b&c=d/\xc3\xa9"), "a%20b%26c%3dd%2f%c3%a9");
  EXPECT_EQ(StringUtils::url_encode("AZaz09-._~"), "AZaz09-._~");
  EXPECT_EQ(StringUtils::url_encode(""), "");
  EXPECT_EQ(StringUtils::url_encode(std::string("\0+", 2)), "%00%2b");
}

TEST(UrlDecode, DocumentedExamples) {
  EXPECT_EQ(StringUtils::url_decode("a+b%20c%2F"), "a b c/");
  EXPECT_EQ(StringUtils::url_decode("%4g"), "\x04");
  EXPECT_EQ(StringUtils::url_decode("100%"), "100%");
  EXPECT_EQ(StringUtils::url_decode("%zz"), "%zz");
  EXPECT_EQ(StringUtils::url_decode("%%41"), "%A");
  EXPECT_EQ(StringUtils::url_decode("%+"), "% ");
}

TEST(UrlDecode, RoundTripsEncodedBytes) {
  std::mt19937 random(11);
  for (int round = 0; round < 3000; ++round) {
    std::string text(random() % 40, '\0');
    for (char& c : text) c = static_cast<char>(random());
    ASSERT_EQ(StringUtils::url_decode(StringUtils::url_encode(text)), text);
  }
}

// The reference decoder: the documented loop with sscanf("%x") itself as the
// escape reader.
std::string DecodeWithSscanf(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size();) {
    const char c = text[i++];
    if (c == '%') {
      const size_t take = std::min<size_t>(2, text.size() - i);
      char window[3] = {0, 0, 0};
      text.copy(window, take, i);
      unsigned value = 0;
      if (std::sscanf(window, "%x", &value) == 1) {
        out += static_cast<char>(value & 0xff);
        i += take;
      } else {
        out += '%';
      }
    } else {
      out += c == '+' ? ' ' : c;
    }
  }
  return out;
}

TEST(UrlDecode, EscapeReadsLikeSscanfForAllBytePairs) {
  for (int first = 0; first < 256; ++first) {
    std::string single = "%";
    single += static_cast<char>(first);
    ASSERT_EQ(StringUtils::url_decode(single), DecodeWithSscanf(single)) << "byte " << first;
    for (int second = 0; second < 256; ++second) {
      // A trailing byte shows whether both bytes of the escape were skipped.
      std::string text = single;
      text += static_cast<char>(second);
      text += 'Q';
      ASSERT_EQ(StringUtils::url_decode(text), DecodeWithSscanf(text))
          << "bytes " << first << " " << second;
    }
  }
  EXPECT_EQ(StringUtils::url_decode("%"), DecodeWithSscanf("%"));
}

TEST(UrlDecode, SignsWhiteSpaceAndHexPrefix) {
  // Values read by `printf '%x'`-style scanning: a sign, leading white space
  // and "0x" all count.
  EXPECT_EQ(StringUtils::url_decode("%-1"), "\xff");
  EXPECT_EQ(StringUtils::url_decode("%+f"), "\x0f");
  EXPECT_EQ(StringUtils::url_decode("% 5"), "\x05");
  EXPECT_EQ(StringUtils::url_decode("%0x"), std::string(1, '\0'));
  EXPECT_EQ(StringUtils::url_decode("%x1"), "%x1");
}

TEST(UrlParams, ReadsTheQueryAfterTheLastQuestionMark) {
  Params params{{"old", "1"}};
  EXPECT_EQ(StringUtils::getUrlParams("/p?a=1&b=2&a=3", params), 2);
  EXPECT_EQ(params, (Params{{"a", "3"}, {"b", "2"}}));

  params = {{"old", "1"}};
  EXPECT_EQ(StringUtils::getUrlParams("no-query", params), 1);
  EXPECT_EQ(params, (Params{{"old", "1"}}));

  EXPECT_EQ(StringUtils::getUrlParams("x?y?k=v", params), 1);
  EXPECT_EQ(params, (Params{{"k", "v"}}));

  EXPECT_EQ(StringUtils::getUrlParams("/p?a&b=&=c&d=e=f&g==h&&i=%20#x", params), 2);
  EXPECT_EQ(params, (Params{{"g", "h"}, {"i", "%20#x"}}));

  EXPECT_EQ(StringUtils::getUrlParams("/p?", params), 0);
  EXPECT_TRUE(params.empty());
}

TEST(UrlParams, AppendFollowsTheQueryAndKeepsTheFragment) {
  Params one{{"k", "a b"}};
  EXPECT_EQ(StringUtils::appendUrlParams("/p#top", one, true), "/p?k=a%20b#top");
  EXPECT_EQ(StringUtils::appendUrlParams("/p#top", one, false), "/p?k=a b#top");
  EXPECT_EQ(one, (Params{{"k", "a b"}}));

  Params kv{{"k", "v"}};
  EXPECT_EQ(StringUtils::appendUrlParams("/p?x=1", kv, false), "/p?x=1&k=v");
  EXPECT_EQ(StringUtils::appendUrlParams("/p?x=1#f?g", kv, false), "/p?x=1&k=v#f?g");
  EXPECT_EQ(StringUtils::appendUrlParams("/p#", kv, false), "/p?k=v");

  Params none;
  EXPECT_EQ(StringUtils::appendUrlParams("p?a=1", none, true), "p?a=1&");
  EXPECT_EQ(StringUtils::appendUrlParams("p?", none, true), "p");
  EXPECT_EQ(StringUtils::appendUrlParams("p", none, true), "p");
}

TEST(UrlParams, AppendedParametersReadBack) {
  Params many{{"a", "1"}, {"b", "two"}, {"c", "x/y"}, {"d", "4"}};
  const std::string url = StringUtils::appendUrlParams("https://h/p?z=0", many, true);
  ASSERT_EQ(url.rfind("https://h/p?z=0&", 0), 0u) << url;
  Params read;
  EXPECT_EQ(StringUtils::getUrlParams(url, read), 5);
  for (auto& entry : read) entry.second = StringUtils::url_decode(entry.second);
  Params expected = many;
  expected["z"] = "0";
  EXPECT_EQ(read, expected);
}

TEST(FileUrls, DocumentedExamples) {
  EXPECT_EQ(StringUtils::URLFromFilePath("/tmp/a b.txt"), "file:///tmp/a%20b.txt");
  EXPECT_EQ(StringUtils::FilePathFromURL("file:///tmp/a%20b.txt"), "/tmp/a b.txt");
  EXPECT_EQ(StringUtils::FilePathFromURL("file:///C:/My%20Files/a.txt"), "C:/My Files/a.txt");
  EXPECT_EQ(StringUtils::FilePathFromURL("file:///Users/a.txt"), "/Users/a.txt");
  EXPECT_EQ(StringUtils::FilePathFromURL("FILE:///x+y"), "FILE:///x y");
  EXPECT_EQ(StringUtils::FilePathFromURL("rel/a%2fb"), "rel/a/b");
  EXPECT_EQ(StringUtils::URLFromFilePath("C:/a b"), "file:///C%3a/a%20b");
  EXPECT_EQ(StringUtils::URLFromFilePath("C:\\a"), "file:///C%3a%5ca");
  EXPECT_EQ(StringUtils::URLFromFilePath("//a//b//"), "file:///a/b");
  EXPECT_EQ(StringUtils::URLFromFilePath(""), "file:///");
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

TEST(Paths, FullPathFromRelativePath) {
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("../c/d", "/a/b"), "/a/c/d");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("./c", "/a/b"), "/a/b/./c");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("../../../c", "/a/b"), "/c");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("../x", "a/b"), "a/x");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("/a", "/x/y"), "/x/y/a");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("", "/a/b"), "/a/b/");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("dir/f", "/a"), "dir/f");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("../a/../b", "/x/y"), "/x/a/../b");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("..", "/x/y"), "/x/");
  EXPECT_EQ(StringUtils::fullPathFromRelativePath("./", ""), ".");
}

TEST(Paths, RelativePath2Path) {
  EXPECT_EQ(StringUtils::relativePath2Path("/a/b/c/d.txt", "/a/b/x"), "../c/d.txt");
  EXPECT_EQ(StringUtils::relativePath2Path("/a/b/c", "/a/b"), "c");
  EXPECT_EQ(StringUtils::relativePath2Path("/a/b", "/a/b"), "");
  EXPECT_EQ(StringUtils::relativePath2Path("/a", "/a/b/c"), "../../");
  EXPECT_EQ(StringUtils::relativePath2Path("rel/x", "/a"), "rel/x");
  EXPECT_EQ(StringUtils::relativePath2Path("/A/b", "/a/b"), "../../A/b");
  EXPECT_EQ(StringUtils::relativePath2Path("/a/x/b", "/a/y/b"), "../../x/b");
  EXPECT_EQ(StringUtils::relativePath2Path("", "/a"), "../");
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
  EXPECT_EQ(StringUtils::lastPathComponent("/a/b/c.txt", '/'), "c.txt");
  EXPECT_EQ(StringUtils::lastPathComponent("/a/b/", '/'), "b");
  EXPECT_EQ(StringUtils::lastPathComponent("a/b", '/'), "b");
  EXPECT_EQ(StringUtils::lastPathComponent("/a", '/'), "/a");
  EXPECT_EQ(StringUtils::lastPathComponent("b/", '/'), "b/");
  EXPECT_EQ(StringUtils::lastPathComponent("/a/b//", '/'), "");
  EXPECT_EQ(StringUtils::lastPathComponent("/", '/'), "/");
  EXPECT_EQ(StringUtils::lastPathComponent("", '/'), "");
  EXPECT_EQ(StringUtils::lastPathComponent("//", '/'), "//");
  EXPECT_EQ(StringUtils::lastPathComponent("C:\\dir\\f.txt", '\\'), "f.txt");
  EXPECT_EQ(StringUtils::lastPathComponent("C:\\dir\\f.txt", '/'), "C:\\dir\\f.txt");
}

}  // namespace
