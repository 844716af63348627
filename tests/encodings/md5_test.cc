#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "common/string_utils.h"

namespace {

using tessel::StringUtils;

// RFC 1321 appendix A.5 (in upper case); then runs of 'x' straddling the
// padding boundary (56) and the block size (64), from
// `head -c N /dev/zero | tr '\0' x | md5sum`; then the well-known digest of a
// million 'a'.
TEST(Md5, DigestsKnownVectors) {
  const std::string digits = "1234567890";
  const std::pair<std::string, const char*> kCases[] = {
      {"", "D41D8CD98F00B204E9800998ECF8427E"},
      {"a", "0CC175B9C0F1B6A831C399E269772661"},
      {"abc", "900150983CD24FB0D6963F7D28E17F72"},
      {"message digest", "F96B697D7CB7938D525A2F31AAF161D0"},
      {"abcdefghijklmnopqrstuvwxyz", "C3FCD3D76192E4007DFB496CCA67E13B"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       "D174AB98D277D9F5A5611C2C9F419D9F"},
      {digits + digits + digits + digits + digits + digits + digits + digits,
       "57EDF4A22BE3C955AC49DA2E2107B67A"},
      {std::string(55, 'x'), "04364420E25C512FD958A70738AA8F72"},
      {std::string(56, 'x'), "668A72D5BA17F08E62DABCAFAD6DB14B"},
      {std::string(63, 'x'), "7DC2CA208106A2F703567BDFF99D8981"},
      {std::string(64, 'x'), "C1BB4F81D892B2D57947682AEB252456"},
      {std::string(65, 'x'), "1BC932052302D074BDEC39795FE00CF6"},
      {std::string(1000000, 'a'), "7707D6AE4E027C70EEA2A935C2296F21"},
  };
  for (const auto& [input, digest] : kCases) {
    EXPECT_EQ(StringUtils::md5(input), digest) << input.substr(0, 64) << " " << input.size();
  }
}

}  // namespace
