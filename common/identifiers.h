// Random identifiers as text: version-4 UUIDs and 32-digit nonces. Each call
// opens its own std::random_device (the platform's non-deterministic source),
// so there is no seed and no shared state; every function may be called from
// any thread at once.
#ifndef TESSEL_COMMON_IDENTIFIERS_H_
#define TESSEL_COMMON_IDENTIFIERS_H_

#include <string>

#include "common/tessel_export.h"

namespace tessel {

// A random (version 4, RFC 4122 variant) UUID: 36 characters, lower-case
// hexadecimal in groups of 8-4-4-4-12 joined by "-"; the third group begins
// with "4", the fourth with one of "89ab". A failure of the random source
// propagates as the exception std::random_device throws (std::runtime_error).
TESSEL_API std::string random_uuid();

// random_uuid() without its hyphens: 32 lower-case hexadecimal digits, the
// 13th always "4", the 17th one of "89ab". Throws as random_uuid().
TESSEL_API std::string nonce();

}  // namespace tessel

#endif  // TESSEL_COMMON_IDENTIFIERS_H_
