// "%.17g" without printf. For magnitudes from 1e-16 to 1e17 (nearly every
// number found in practice) the seventeen digits come from one exact integer
// product: a double is m * 2^e, and its value times 10^s is
// m * 5^s * 2^(e + s), which fits 128 bits for s up to 32, so rounding that
// product to an integer (ties to even, as printf rounds) gives the digits.
// Every other value goes through std::to_chars, which is exact but slower.
#include "json11/double_text.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace json11 {

namespace {

// A 128-bit unsigned integer in two words, for compilers without one.
struct U128 {
  std::uint64_t hi;
  std::uint64_t lo;
};

constexpr U128 Multiply64(std::uint64_t a, std::uint64_t b) {
  const std::uint64_t a_lo = a & 0xFFFFFFFFu, a_hi = a >> 32;
  const std::uint64_t b_lo = b & 0xFFFFFFFFu, b_hi = b >> 32;
  const std::uint64_t low = a_lo * b_lo, cross1 = a_lo * b_hi, cross2 = a_hi * b_lo;
  const std::uint64_t middle = (low >> 32) + (cross1 & 0xFFFFFFFFu) + (cross2 & 0xFFFFFFFFu);
  return {a_hi * b_hi + (cross1 >> 32) + (cross2 >> 32) + (middle >> 32),
          (middle << 32) | (low & 0xFFFFFFFFu)};
}

// a * b where the product is known to fit 128 bits.
constexpr U128 Multiply(std::uint64_t a, U128 b) {
  U128 product = Multiply64(a, b.lo);
  product.hi += a * b.hi;
  return product;
}

// x >> n for n in 0..127.
U128 ShiftRight(U128 x, int n) {
  if (n == 0) return x;
  if (n >= 64) return {0, x.hi >> (n - 64)};
  return {x.hi >> n, (x.lo >> n) | (x.hi << (64 - n))};
}

// Whether any of the n lowest bits of x (n in 0..127) is set.
bool LowBitsSet(U128 x, int n) {
  if (n == 0) return false;
  if (n < 64) return (x.lo & ((std::uint64_t{1} << n) - 1)) != 0;
  return x.lo != 0 || (n > 64 && (x.hi & ((std::uint64_t{1} << (n - 64)) - 1)) != 0);
}

constexpr int kMaxScale = 32;  // 5^32 < 2^75, times a 53-bit m < 2^128

constexpr std::array<U128, kMaxScale + 1> PowersOfFive() {
  std::array<U128, kMaxScale + 1> powers{};
  powers[0] = {0, 1};
  for (int s = 1; s <= kMaxScale; ++s) powers[s] = Multiply(5, powers[s - 1]);
  return powers;
}
constexpr std::array<U128, kMaxScale + 1> kPowersOfFive = PowersOfFive();

constexpr std::uint64_t kTen16 = 10000000000000000u;
constexpr std::uint64_t kTen17 = 100000000000000000u;

constexpr int kFirstPowerOfTen = -16;
constexpr std::array<double, 34> kPowersOfTen = {
    1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5,
    1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,  1e4,  1e5,  1e6,  1e7,
    1e8,   1e9,   1e10,  1e11,  1e12,  1e13,  1e14,  1e15, 1e16, 1e17};

// floor(log10(2^b)) for |b| <= 1650: 78913 / 2^18 approximates log10(2).
int FloorLog10Pow2(int b) {
  const long long scaled = static_cast<long long>(b) * 78913;
  return static_cast<int>(scaled >= 0 ? scaled / (1 << 18) : -((-scaled + (1 << 18) - 1) / (1 << 18)));
}

// The value m * 2^e scaled by 10^(16 - k) and truncated, with the bits that
// decide its rounding. False when the scaled value does not fit the fast path.
struct Scaled {
  std::uint64_t truncated;
  bool half;    // the first dropped bit
  bool sticky;  // any later dropped bit
};

bool Scale(std::uint64_t m, int e, int k, Scaled& result) {
  const int s = 16 - k;
  if (s < 0 || s > kMaxScale) return false;
  const U128 product = Multiply(m, kPowersOfFive[s]);
  const int shift = e + s;
  if (shift >= 0) {
    if (product.hi != 0 || shift > 63 || (product.lo >> (63 - shift)) != 0) return false;
    result = {product.lo << shift, false, false};
    return true;
  }
  const U128 with_half = ShiftRight(product, -shift - 1);
  if (with_half.hi != 0) return false;
  result = {with_half.lo >> 1, (with_half.lo & 1) != 0, LowBitsSet(product, -shift - 1)};
  return true;
}

// Seventeen significant digits of a positive normal value, with the decimal
// exponent of the first; false outside the fast path.
bool SeventeenDigits(double magnitude, std::uint64_t m, int e, std::uint64_t& digits,
                     int& exponent) {
  int k = FloorLog10Pow2(e + 52);  // the true exponent is k or k + 1
  // Settles most cases without a second product; a rounded negative power
  // that misleads it is caught below.
  if (k + 1 >= kFirstPowerOfTen && k + 1 < kFirstPowerOfTen + static_cast<int>(kPowersOfTen.size()) &&
      magnitude >= kPowersOfTen[k + 1 - kFirstPowerOfTen]) {
    ++k;
  }
  Scaled scaled;
  if (!Scale(m, e, k, scaled)) return false;
  if (scaled.truncated >= kTen17) {
    ++k;
    if (!Scale(m, e, k, scaled)) return false;
  }
  if (scaled.truncated < kTen16 || scaled.truncated >= kTen17) return false;
  digits = scaled.truncated;
  if (scaled.half && (scaled.sticky || (digits & 1) != 0)) ++digits;
  if (digits == kTen17) {
    digits = kTen16;
    ++k;
  }
  exponent = k;
  return true;
}

constexpr std::array<char, 200> DigitPairs() {
  std::array<char, 200> pairs{};
  for (int i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}
constexpr std::array<char, 200> kDigitPairs = DigitPairs();

// Writes the `count` (even) last decimal digits of value at out, zero-filled.
// Two independent 32-bit halves keep the division chains short.
void WriteDigitPairs(std::uint32_t value, char* out, int count) {
  for (int i = count - 2; i >= 0; i -= 2, value /= 100) {
    std::memcpy(out + i, &kDigitPairs[2 * (value % 100)], 2);
  }
}

// Copies count (at most 17) bytes with one fixed-size copy, which needs no
// branches; from and out must have 17 bytes of room.
char* Copy(const char* from, int count, char* out) {
  std::memcpy(out, from, 17);
  return out + count;
}

// Lays out seventeen digits the way "%g" does with precision 17: plain
// notation for exponents from -4 to 16, else d.ddde+XX; trailing zeros of
// the fraction and a bare decimal point dropped.
char* Layout(bool negative, std::uint64_t value, int exponent, char* out) {
  // A leading zero, the seventeen digits, then room for Copy's reads.
  char buffer[40] = {};
  WriteDigitPairs(static_cast<std::uint32_t>(value / 100000000), buffer, 10);
  WriteDigitPairs(static_cast<std::uint32_t>(value % 100000000), buffer + 10, 8);
  const char* const digits = buffer + 1;
  int length = 17;
  while (length > 1 && digits[length - 1] == '0') --length;
  if (negative) *out++ = '-';
  if (exponent < -4 || exponent >= 17) {
    *out++ = digits[0];
    if (length > 1) {
      *out++ = '.';
      out = Copy(digits + 1, length - 1, out);
    }
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    const int magnitude = exponent < 0 ? -exponent : exponent;
    if (magnitude >= 100) *out++ = static_cast<char>('0' + magnitude / 100);
    *out++ = static_cast<char>('0' + magnitude / 10 % 10);
    *out++ = static_cast<char>('0' + magnitude % 10);
    return out;
  }
  if (exponent >= 0) {
    out = Copy(digits, exponent + 1, out);
    if (length > exponent + 1) {
      *out++ = '.';
      out = Copy(digits + exponent + 1, length - exponent - 1, out);
    }
    return out;
  }
  std::memcpy(out, "0.0000", 6);
  return Copy(digits, length, out + 1 - exponent);
}

}  // namespace

char* WriteDouble17(double value, char* out) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  const bool negative = (bits >> 63) != 0;
  const int biased_exponent = static_cast<int>((bits >> 52) & 0x7FF);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
  if (biased_exponent == 0 && fraction == 0) {
    if (negative) *out++ = '-';
    *out++ = '0';
    return out;
  }
  std::uint64_t digits;
  int exponent;
  if (biased_exponent != 0 &&
      SeventeenDigits(negative ? -value : value, fraction | (std::uint64_t{1} << 52),
                      biased_exponent - 1075, digits, exponent)) {
    return Layout(negative, digits, exponent, out);
  }
  return std::to_chars(out, out + kDoubleTextCapacity, value, std::chars_format::general, 17).ptr;
}

}  // namespace json11
