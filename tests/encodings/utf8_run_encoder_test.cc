// The vector and portable forms of the BMP run encoder give the same runs and
// bytes, and the vector form writes nowhere but where its contract allows.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "platform/utf8_run_encoder.h"

namespace {

using tessel_platform::EncodeBmpRun;
using tessel_platform::EncodeBmpRunPortable;
using tessel_platform::RunEncoding;

TEST(Utf8RunEncoder, VectorFormAgreesWithPortableFormWithinItsBounds) {
  std::mt19937 random(3);
  std::vector<wchar_t> pool = {L'a', L'~', 0x7F, 0x80, 0x7FF, 0x800, 0x4E2D, 0xD7FF,
                               0xD800, 0xDFFF, 0xE000, 0xFFFF, L'\0'};
  if (sizeof(wchar_t) == 4) {
    pool.insert(pool.end(), {static_cast<wchar_t>(0x10000), static_cast<wchar_t>(-1)});
  }
  std::uniform_int_distribution<std::size_t> pick(0, pool.size() - 1);
  std::uniform_int_distribution<int> ascii(0x20, 0x7E);
  std::uniform_int_distribution<int> stretch(0, 40);
  for (int i = 0; i < 3000; ++i) {
    // Stretches of ASCII between single elements of the pool.
    std::wstring text;
    while (text.size() < 200) {
      for (int n = stretch(random); n > 0; --n) text += static_cast<wchar_t>(ascii(random));
      text += pool[pick(random)];
    }
    text.resize(static_cast<std::size_t>(i) % 200);
    for (std::size_t start = 0; start < text.size(); ++start) {
      const std::size_t length = text.size() - start;
      std::vector<char> expected(3 * length);
      const RunEncoding portable = EncodeBmpRunPortable(&text[start], length, expected.data());
      // Exactly the room the contract asks for, so that ASan sees any write
      // beyond it.
      std::vector<char> out(portable.written + (length - portable.consumed));
      const RunEncoding vector = EncodeBmpRun(&text[start], length, out.data());
      ASSERT_EQ(vector.consumed, portable.consumed) << "case " << i << " from " << start;
      ASSERT_EQ(vector.written, portable.written) << "case " << i << " from " << start;
      ASSERT_EQ(std::memcmp(out.data(), expected.data(), portable.written), 0)
          << "case " << i << " from " << start;
    }
  }
}

}  // namespace
