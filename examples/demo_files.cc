// Encodings and files: a Base64 round trip and an MD5 digest; then a file
// written, examined through File (size, times, digest) and read back in
// chunks, with the file manager and timer a host would inject.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void RunEncodings() {
  const std::string text = "Hello, \xE4\xB8\x96\xE7\x95\x8C";  // "Hello, 世界"
  std::string encoded;
  tessel::Base64_Encode(encoded, text);
  std::string decoded;
  tessel::Base64_Decode(decoded, encoded);
  demo::Show("base64", encoded);
  demo::Show("decoded", decoded + (decoded == text ? " (round trip ok)" : " (MISMATCH)"));
  demo::Show("md5(\"abc\")", tessel::StringUtils::md5("abc"));
  std::wstring wide;
  tessel::StringUtilsWin::utf8ToUnicode("\xF0\x9F\x98\x80", wide);
  char units[32];
  std::snprintf(units, sizeof units, "%zu units: %04X %04X", wide.size(),
                static_cast<unsigned>(wide[0]), static_cast<unsigned>(wide[1]));
  demo::Show("utf16(U+1F600)", units);
}

void RunFiles() {
  const std::string dir = tessel::FileUtils::tmpPath("", "") + "tessel-demo-files/";
  tessel::GenericFileManager().MakeDir(dir);
  tessel::File file(dir + "report.eml");
  std::string data = "Subject: demo\r\n\r\n";
  while (data.size() < 600000) data += "The quick brown fox jumps over the lazy dog.\r\n";
  file.write(data.data(), static_cast<long long>(data.size()));

  demo::Show("file", file.fileName() + " (" +
                         tessel::FileUtils::mimeTypeFromFileExtension(
                             tessel::FileUtils::fileExtensionFromFilePath(file.fullPath())) +
                         ")");
  demo::Show("exists", file.exist() ? "yes" : "no");
  demo::Show("size", std::to_string(file.fileSize()));
  demo::Show("created / modified", std::to_string(file.createTime()) + " / " +
                                       std::to_string(file.modifyTime()));
  demo::Show("md5", file.md5() + (file.md5() == tessel::StringUtils::md5(data) ? " (matches)" : ""));
  std::string back;
  long long length = 0;
  for (long long index = 0; !(back += file.readChunk(index, &length)).empty() && length > 0;
       ++index) {
    demo::Show("chunk " + std::to_string(index), std::to_string(length) + " bytes");
  }
  demo::Show("read back", back == data ? "identical" : "DIFFERENT");
  tessel::GenericFileManager().DeleteDirectory(dir);
}

const bool kEncodings = demo::Register(60, "Encodings: Base64, MD5, UTF-16", RunEncodings);
const bool kFiles = demo::Register(70, "Files: write, examine, read in chunks", RunFiles);

}  // namespace
