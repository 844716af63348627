// Decoding of HTML character references: named ones ("&amp;", "&eacute;") and
// numeric ones ("&#233;", "&#xE9;") become the UTF-8 bytes of their character;
// everything else is copied unchanged. Reentrant: any number of threads may
// decode at once on buffers of their own, and errno is left as it was found.
#ifndef TESSEL_COMMON_HTML_ENTITIES_H_
#define TESSEL_COMMON_HTML_ENTITIES_H_

#include <cstddef>

#include "common/tessel_export.h"

// Decodes the NUL-terminated `src` into `dest` and writes a terminating NUL;
// returns the number of bytes written before that NUL. Decoding never makes
// text longer, so strlen(src) + 1 bytes of `dest` always suffice; with `src`
// null, `dest` is decoded in place. A reference is the 253 names of HTML 4.01
// plus "apos", case-sensitive and ended by ";", or "&#" and a decimal number
// or "&#x"/"&#X" and a hexadecimal one, read as strtoul reads it, ended by
// ";" and below 0x110000 (surrogates included). Whatever is not a reference,
// such as "&AMP;", "&amp" or "&#x110000;", is copied as is. "&#0;" writes a
// NUL byte inside the result, which the count includes. Both buffers belong
// to the caller; `dest` and `src` may overlap only as the in-place form.
TESSEL_API size_t decode_html_entities_utf8(char* dest, const char* src);

#endif  // TESSEL_COMMON_HTML_ENTITIES_H_
