// Checks Base64 on arbitrary bytes: Decode(Encode(x)) == x; encoding appends
// exactly 4 * ceil(n / 3) alphabet characters; decoding any text appends at
// most 3 bytes per complete group of four (so never more than 3/4 of the
// input), and both functions leave what `out` held before untouched.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "common/base64.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::string kept = "kept:";

  std::string encoded = kept;
  tessel::Base64_Encode(encoded, input);
  if (encoded.compare(0, kept.size(), kept) != 0) abort();
  if (encoded.size() - kept.size() != 4 * ((size + 2) / 3)) abort();

  std::string round_trip = kept;
  tessel::Base64_Decode(round_trip, encoded.substr(kept.size()));
  if (round_trip != kept + input) abort();

  std::string decoded = kept;
  tessel::Base64_Decode(decoded, input);
  if (decoded.compare(0, kept.size(), kept) != 0) abort();
  if (decoded.size() - kept.size() > 3 * (size / 4)) abort();
  return 0;
}
