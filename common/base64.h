// Base64 with the standard alphabet of RFC 4648 and the pad character "=".
// Both functions append to their output, never clear it; they keep no state
// and may run on any thread at once.
#ifndef TESSEL_COMMON_BASE64_H_
#define TESSEL_COMMON_BASE64_H_

#include <string>

#include "common/tessel_export.h"

namespace tessel {

// Appends the encoding of `in` to `out`, padded with "=" to a multiple of four
// characters, without line breaks. An empty `in` appends nothing.
TESSEL_API void Base64_Encode(std::string& out, const std::string& in);

// Appends the bytes decoded from `in` to `out`. The decoder does not validate:
// every byte of a group of four is mapped to a 6-bit value (bytes outside the
// alphabet, white space and line breaks included, map to fixed values and are
// decoded as data), and the three bytes are combined in 8-bit arithmetic. A
// group whose third character is "=" gives one byte, whatever its fourth; a
// group whose fourth character alone is "=" gives two. A final group of fewer
// than four characters is ignored.
TESSEL_API void Base64_Decode(std::string& out, const std::string& in);

}  // namespace tessel

#endif  // TESSEL_COMMON_BASE64_H_
