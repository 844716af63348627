// Text of a double as printf's "%.17g" gives it in the "C" locale, without
// the C library: locale-free and much faster than snprintf. Internal to the
// library; thread-safe (no state).
#ifndef TESSEL_JSON11_DOUBLE_TEXT_H_
#define TESSEL_JSON11_DOUBLE_TEXT_H_

namespace json11 {

// Room for the text of every finite double (at most 24 bytes, as in
// "-2.2250738585072014e-308") and the writer's fixed-size copies.
constexpr int kDoubleTextCapacity = 48;

// Writes the text of a finite value at out (kDoubleTextCapacity bytes) and
// returns the end of the text. Non-finite values are the caller's business.
char* WriteDouble17(double value, char* out);

}  // namespace json11

#endif  // TESSEL_JSON11_DOUBLE_TEXT_H_
