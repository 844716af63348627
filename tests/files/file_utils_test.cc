#include "common/file_utils.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "temp_dir.h"

namespace {

namespace FileUtils = tessel::FileUtils;

std::string Formalized(std::string path, bool append_slash) {
  FileUtils::formalizePath(path, append_slash);
  return path;
}

TEST(FileUtilsPath, FormalizesSeparators) {
  EXPECT_EQ(Formalized("C:\\dir\\sub", true), "C:/dir/sub/");
  EXPECT_EQ(Formalized("C:\\dir\\sub", false), "C:/dir/sub");
  EXPECT_EQ(Formalized("a/", true), "a/");
  EXPECT_EQ(Formalized("", true), "");
}

TEST(FileUtilsPath, SplitsTheFinalComponent) {
  EXPECT_EQ(FileUtils::lastPathComponent("dir/name.txt"), "name.txt");
  EXPECT_EQ(FileUtils::lastPathComponent("a/b/"), "b");
  EXPECT_EQ(FileUtils::lastPathComponent("a\\b\\"), "b\\");
  EXPECT_EQ(FileUtils::lastPathComponent("name"), "name");
  EXPECT_EQ(FileUtils::lastPathComponent("C:name"), "name");
  EXPECT_EQ(FileUtils::lastPathComponent("a//b"), "b");
  EXPECT_EQ(FileUtils::lastPathComponent(""), "");

  EXPECT_EQ(FileUtils::fileNameFromfilePath("C:\\dir\\name.txt"), "name.txt");
  EXPECT_EQ(FileUtils::fileNameFromfilePath("a/b/"), "");
  EXPECT_EQ(FileUtils::fileNameFromfilePath("a\\b\\"), "b\\");
  EXPECT_EQ(FileUtils::fileNameFromfilePath(""), "");

  EXPECT_EQ(FileUtils::fileDirFromFilePath("dir/sub/name.txt"), "dir/sub/");
  EXPECT_EQ(FileUtils::fileDirFromFilePath("name.txt"), "");
  EXPECT_EQ(FileUtils::fileDirFromFilePath("a/b/"), "a/b");
  EXPECT_EQ(FileUtils::fileDirFromFilePath("C:\\dir\\x.eml"), "C:\\dir\\");
}

TEST(FileUtilsPath, FindsTheExtension) {
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("a/b.txt"), ".txt");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("a/b"), "");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("a/.profile"), ".profile");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("name.tar.gz"), ".gz");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("dir.d\\name"), "");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("my file.a b"), "");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath("name."), ".");
  EXPECT_EQ(FileUtils::fileExtensionFromFilePath(""), "");
}

// Expected types from Debian's media-types (/etc/mime.types) and, for msg,
// the type Outlook registers.
TEST(FileUtilsMime, KnowsTheTypesAMailClientMeets) {
  const struct {
    const char* extension;
    const char* type;
  } kCases[] = {
      {"eml", "message/rfc822"},  {"ics", "text/calendar"},
      {"vcf", "text/vcard"},      {"msg", "application/vnd.ms-outlook"},
      {"html", "text/html"},      {"htm", "text/html"},
      {"txt", "text/plain"},      {"pdf", "application/pdf"},
      {"png", "image/png"},       {"jpg", "image/jpeg"},
      {"jpeg", "image/jpeg"},     {"gif", "image/gif"},
      {"zip", "application/zip"}, {"mp4", "video/mp4"},
      {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
      {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
      {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(FileUtils::mimeTypeFromFileExtension(c.extension), c.type) << c.extension;
  }
}

TEST(FileUtilsMime, IgnoresCaseAndALeadingDot) {
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension(".PDF"), "application/pdf");
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension("Eml"), "message/rfc822");
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension("..pdf"), "application/octet-stream");
}

TEST(FileUtilsMime, FallsBackToOctetStream) {
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension("nosuchext"), "application/octet-stream");
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension(""), "application/octet-stream");
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension("."), "application/octet-stream");
  EXPECT_EQ(FileUtils::mimeTypeFromFileExtension(std::string("pdf\0x", 5)),
            "application/octet-stream");
}

TEST(FileUtilsTmp, NamesTheTemporaryDirectoryWithATrailingSlash) {
  const std::string path = FileUtils::tmpPath("a", "b");
  EXPECT_EQ(path, FileUtils::tmpPath("", "other"));
  ASSERT_FALSE(path.empty());
  EXPECT_EQ(path.back(), '/');
  EXPECT_EQ(path.find('\\'), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_directory(path));
}

using FileUtilsIo = TempDirTest;

TEST_F(FileUtilsIo, ReadsAWholeFile) {
  const std::string data = Pattern(1000);
  char* buffer = nullptr;
  ASSERT_EQ(FileUtils::readFile(Make("f", data), &buffer), 1000);
  std::unique_ptr<char[]> owned(buffer);
  EXPECT_EQ(std::string(buffer, 1000), data);
}

TEST_F(FileUtilsIo, ReadsAnEmptyFileAsAnEmptyBuffer) {
  char* buffer = nullptr;
  EXPECT_EQ(FileUtils::readFile(Make("empty", ""), &buffer), 0);
  EXPECT_NE(buffer, nullptr);
  delete[] buffer;
}

TEST_F(FileUtilsIo, ReadFileOfWhatCannotBeReadGivesNothing) {
  char* buffer = reinterpret_cast<char*>(this);
  EXPECT_EQ(FileUtils::readFile(Path("missing"), &buffer), 0);
  EXPECT_EQ(buffer, nullptr);
  buffer = reinterpret_cast<char*>(this);
  EXPECT_EQ(FileUtils::readFile(dir_.string(), &buffer), 0);
  EXPECT_EQ(buffer, nullptr);
  EXPECT_EQ(FileUtils::readFile(Make("f", "data"), nullptr), 0);
}

TEST_F(FileUtilsIo, ReadsChunksByIndex) {
  const std::string data = Pattern(1000);
  const std::string path = Make("f", data);
  std::string out = "previous";
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 0, out, 512), 512);
  EXPECT_EQ(out, data.substr(0, 512));
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 1, out, 512), 488);
  EXPECT_EQ(out, data.substr(512));
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 2, out, 500), 0);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 3, out, 250), 250);
  EXPECT_EQ(out, data.substr(750));
}

TEST_F(FileUtilsIo, ReadChunkRefusesBadArgumentsWithAnEmptyResult) {
  const std::string path = Make("f", Pattern(100));
  std::string out = "previous";
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 7, out, 100), 0);
  EXPECT_TRUE(out.empty());
  out = "previous";
  EXPECT_EQ(FileUtils::readChunkFromFile(path, -1, out, 10), 0);
  EXPECT_TRUE(out.empty());
  out = "previous";
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 0, out, 0), 0);
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 0, out, -5), 0);
  EXPECT_EQ(FileUtils::readChunkFromFile(path, 1LL << 62, out, 1LL << 62), 0);
  EXPECT_EQ(FileUtils::readChunkFromFile(Path("missing"), 0, out, 10), 0);
  EXPECT_EQ(FileUtils::readChunkFromFile(dir_.string(), 0, out, 10), 0);
  EXPECT_TRUE(out.empty());
}

TEST_F(FileUtilsIo, WritesBytesUnchanged) {
  const std::string data = std::string("line\r\nnul\0end\n", 14) + Pattern(3000);
  EXPECT_EQ(FileUtils::writeFile(data.data(), static_cast<long long>(data.size()), Path("w")), 0);
  EXPECT_EQ(Slurp(Path("w")), data);
  // Rewriting truncates.
  EXPECT_EQ(FileUtils::writeFile("ab", 2, Path("w")), 0);
  EXPECT_EQ(Slurp(Path("w")), "ab");
}

TEST_F(FileUtilsIo, WriteOfNothingCreatesOrTruncates) {
  EXPECT_EQ(FileUtils::writeFile("", 0, Path("new")), 0);
  EXPECT_TRUE(std::filesystem::is_regular_file(Path("new")));
  EXPECT_EQ(std::filesystem::file_size(Path("new")), 0u);
  const std::string old = Make("old", "content");
  EXPECT_EQ(FileUtils::writeFile("xyz", -3, old), 0);
  EXPECT_EQ(Slurp(old), "");
  EXPECT_EQ(FileUtils::writeFile(nullptr, 10, old), 0);
  EXPECT_EQ(Slurp(old), "");
  EXPECT_EQ(FileUtils::writeFile("x", 1, Path("no/such/dir/file")), 0);
  EXPECT_FALSE(std::filesystem::exists(Path("no")));
}

}  // namespace
