// Feeds one huge input to one entry point, so that a script can measure the
// process's peak memory with /usr/bin/time -v. Usage:
//   huge_inputs json-string <MB>    parse a JSON document holding one string of MB megabytes
//   huge_inputs base64 <MB>         encode MB megabytes, decode them back, compare
//   huge_inputs sparse-chunks <dir> read chunks of a 1 GB sparse file in <dir>
// Exits 0 when the entry point gave the expected answer, 1 otherwise.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "common/base64.h"
#include "common/file_utils.h"
#include "json11/json11.h"

namespace {

int JsonString(size_t megabytes) {
  std::string text;
  text.reserve(megabytes * 1000000 + 2);
  text.push_back('"');
  text.append(megabytes * 1000000, 'a');
  text.push_back('"');
  std::string err;
  json11::Json value = json11::Json::parse(text, err);
  return value.string_value().size() == megabytes * 1000000 ? 0 : 1;
}

int Base64(size_t megabytes) {
  std::string input(megabytes * 1000000, '\0');
  std::mt19937 random(42);
  for (char& c : input) c = static_cast<char>(random());
  std::string encoded;
  tessel::Base64_Encode(encoded, input);
  std::string decoded;
  tessel::Base64_Decode(decoded, encoded);
  return decoded == input ? 0 : 1;
}

int SparseChunks(const std::string& dir) {
  constexpr long long kSize = 1LL << 30, kChunk = 524288;
  const std::string path = dir + "/sparse-1g.bin";
  int fd = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
  if (fd < 0 || ftruncate(fd, kSize) != 0) return 1;
  close(fd);
  std::string chunk;
  long long total = 0;
  // Every 64th chunk across the whole file, then the last one.
  for (long long index = 0; index * kChunk < kSize; index += 64) {
    total += tessel::FileUtils::readChunkFromFile(path, index, chunk, kChunk);
  }
  long long last = tessel::FileUtils::readChunkFromFile(path, kSize / kChunk - 1, chunk, kChunk);
  long long beyond = tessel::FileUtils::readChunkFromFile(path, kSize / kChunk, chunk, kChunk);
  unlink(path.c_str());
  return total == (kSize / kChunk / 64) * kChunk && last == kChunk && beyond == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s json-string|base64 <MB> | sparse-chunks <dir>\n", argv[0]);
    return 2;
  }
  const std::string mode = argv[1];
  if (mode == "json-string") return JsonString(std::strtoul(argv[2], nullptr, 10));
  if (mode == "base64") return Base64(std::strtoul(argv[2], nullptr, 10));
  if (mode == "sparse-chunks") return SparseChunks(argv[2]);
  return 2;
}
