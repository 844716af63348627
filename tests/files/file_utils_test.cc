#include "common/file_utils.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/table.h"
#include "temp_dir.h"

namespace {

namespace FileUtils = tessel::FileUtils;

using test_table::ExpectEach;

TEST(FileUtilsPath, SplitsTheFinalComponent) {
  ExpectEach(FileUtils::lastPathComponent,
             {{"dir/name.txt", "name.txt"}, {"a/b/", "b"}, {"a\\b\\", "b\\"}, {"name", "name"},
              {"C:name", "name"}, {"a//b", "b"}, {"", ""}});
  ExpectEach(FileUtils::fileNameFromfilePath,
             {{"C:\\dir\\name.txt", "name.txt"}, {"a/b/", ""}, {"a\\b\\", "b\\"}, {"", ""}});
  ExpectEach(FileUtils::fileDirFromFilePath,
             {{"dir/sub/name.txt", "dir/sub/"}, {"name.txt", ""}, {"a/b/", "a/b"},
              {"C:\\dir\\x.eml", "C:\\dir\\"}});
  ExpectEach(FileUtils::fileExtensionFromFilePath,
             {{"a/b.txt", ".txt"}, {"a/b", ""}, {"a/.profile", ".profile"}, {"n.tar.gz", ".gz"},
              {"dir.d\\name", ""}, {"a.b c", ""}, {"a.d/name", ".d/name"}, {"", ""}});
  ExpectEach(FileUtils::mimeTypeFromFileExtension,
             {{"PNG", "image/png"}, {".html", "text/html"}, {"no-such", "application/octet-stream"},
              {"", "application/octet-stream"}});
  const auto formal = [](std::string path, bool slash) {
    FileUtils::formalizePath(path, slash);
    return path;
  };
  EXPECT_EQ(formal("C:\\dir\\sub", true), "C:/dir/sub/");
  EXPECT_EQ(formal("a/", true), "a/");
  EXPECT_EQ(formal("\\a\\", false), "/a/");
  EXPECT_EQ(formal("", true), "");
  const std::string tmp = FileUtils::tmpPath("x", "y");
  EXPECT_EQ(tmp, FileUtils::tmpPath("", ""));
  EXPECT_TRUE(tmp.back() == '/' && tmp.find('\\') == std::string::npos) << tmp;
}

using FileUtilsIo = TempDirTest;

TEST_F(FileUtilsIo, ReadsWholeFiles) {
  const std::string data = Pattern(1000);
  char* buffer = nullptr;
  ASSERT_EQ(FileUtils::readFile(Make("f", data), &buffer), 1000);
  std::unique_ptr<char[]> owned(buffer);
  EXPECT_EQ(std::string(buffer, 1000), data);
  // An empty file gives an empty buffer, not none.
  EXPECT_EQ(FileUtils::readFile(Make("empty", ""), &buffer), 0);
  owned.reset(buffer);
  EXPECT_NE(buffer, nullptr);
  // What cannot be read gives nothing.
  buffer = reinterpret_cast<char*>(this);
  EXPECT_EQ(FileUtils::readFile(Path("missing"), &buffer), 0);
  EXPECT_EQ(buffer, nullptr);
  buffer = reinterpret_cast<char*>(this);
  EXPECT_EQ(FileUtils::readFile(dir_.string(), &buffer), 0);
  EXPECT_EQ(buffer, nullptr);
  EXPECT_EQ(FileUtils::readFile(Make("f", "data"), nullptr), 0);
}

TEST_F(FileUtilsIo, ReadsChunksAndRefusesBadArgumentsWithAnEmptyResult) {
  const std::string data = Pattern(1000), thousand = Make("k", data);
  std::string chunk = "previous";
  EXPECT_EQ(FileUtils::readChunkFromFile(thousand, 0, chunk, 512), 512);
  EXPECT_EQ(chunk, data.substr(0, 512));
  EXPECT_EQ(FileUtils::readChunkFromFile(thousand, 1, chunk, 512), 488);
  EXPECT_EQ(chunk, data.substr(512));
  const std::string path = Make("f", Pattern(100));
  const struct {
    std::string path;
    long long index, size;
  } kCases[] = {{path, 7, 100},   {path, -1, 10},          {path, 0, 0},
                {path, 0, -5},    {path, 1LL << 62, 1LL << 62},
                {Path("missing"), 0, 10}, {dir_.string(), 0, 10}};
  for (const auto& c : kCases) {
    std::string out = "previous";
    EXPECT_EQ(FileUtils::readChunkFromFile(c.path, c.index, out, c.size), 0) << c.path << c.index;
    EXPECT_TRUE(out.empty()) << c.path << " " << c.index << "/" << c.size;
  }
}

TEST_F(FileUtilsIo, WritesBytesUnchangedAndNothingCreatesOrTruncates) {
  const std::string data = std::string("line\r\nnul\0end\n", 14) + Pattern(3000);
  EXPECT_EQ(FileUtils::writeFile(data.data(), static_cast<long long>(data.size()), Path("w")), 0);
  EXPECT_EQ(Slurp(Path("w")), data);
  // Rewriting truncates.
  EXPECT_EQ(FileUtils::writeFile("ab", 2, Path("w")), 0);
  EXPECT_EQ(Slurp(Path("w")), "ab");
  EXPECT_EQ(FileUtils::writeFile("", 0, Path("new")), 0);
  EXPECT_TRUE(std::filesystem::is_regular_file(Path("new")));
  EXPECT_EQ(std::filesystem::file_size(Path("new")), 0u);
  const std::string old = Make("old", "content");
  EXPECT_EQ(FileUtils::writeFile("xyz", -3, old), 0);
  EXPECT_EQ(Slurp(old), "");
  EXPECT_EQ(FileUtils::writeFile(nullptr, 10, Make("old", "content")), 0);
  EXPECT_EQ(Slurp(old), "");
  EXPECT_EQ(FileUtils::writeFile("x", 1, Path("no/such/dir/file")), 0);
  EXPECT_FALSE(std::filesystem::exists(Path("no")));
}

}  // namespace
