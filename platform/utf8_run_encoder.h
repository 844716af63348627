// UTF-8 encoding of runs of wide elements in the Basic Multilingual Plane: the
// inner loop shared by the wide-to-UTF-8 conversions, which handle the other
// elements (surrogates, values above U+FFFF) by their own rules. Four
// elements at a time with SSSE3 where the processor has it, one at a time
// elsewhere, with the same results. Pure functions; safe on any thread.
#ifndef TESSEL_PLATFORM_UTF8_RUN_ENCODER_H_
#define TESSEL_PLATFORM_UTF8_RUN_ENCODER_H_

#include <cstddef>

namespace tessel_platform {

struct RunEncoding {
  std::size_t consumed;  // elements, from the start of the text
  std::size_t written;   // bytes, from the start of out
};

// Encodes text[0, length) up to its first element that is a surrogate
// (0xD800-0xDFFF) or lies outside 0-0xFFFF, or to its end: `consumed` is that
// element's index (or `length`), `written` the bytes of the run's UTF-8 form.
// Besides those bytes it may overwrite out[written, written + length -
// consumed), which the rest of the conversion overwrites in turn: a buffer
// with room for the UTF-8 form of the whole text (at least one byte per
// element) is enough.
RunEncoding EncodeBmpRun(const wchar_t* text, std::size_t length, char* out);

// The one-element-at-a-time form of EncodeBmpRun, which it uses where the
// processor lacks SSSE3: same results, and it writes only the run's bytes.
RunEncoding EncodeBmpRunPortable(const wchar_t* text, std::size_t length, char* out);

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_UTF8_RUN_ENCODER_H_
