#include <gtest/gtest.h>

#include <string>

#include "common/string_utils.h"

namespace {

using tessel::StringUtils;

// RFC 1321, appendix A.5, in upper case.
TEST(Md5, DigestsTheRfc1321Suite) {
  EXPECT_EQ(StringUtils::md5(""), "D41D8CD98F00B204E9800998ECF8427E");
  EXPECT_EQ(StringUtils::md5("a"), "0CC175B9C0F1B6A831C399E269772661");
  EXPECT_EQ(StringUtils::md5("abc"), "900150983CD24FB0D6963F7D28E17F72");
  EXPECT_EQ(StringUtils::md5("message digest"), "F96B697D7CB7938D525A2F31AAF161D0");
  EXPECT_EQ(StringUtils::md5("abcdefghijklmnopqrstuvwxyz"), "C3FCD3D76192E4007DFB496CCA67E13B");
  EXPECT_EQ(StringUtils::md5("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
            "D174AB98D277D9F5A5611C2C9F419D9F");
  EXPECT_EQ(StringUtils::md5("1234567890123456789012345678901234567890"
                             "1234567890123456789012345678901234567890"),
            "57EDF4A22BE3C955AC49DA2E2107B67A");
}

// Values obtained with: head -c N /dev/zero | tr '\0' x | md5sum. The lengths
// straddle the padding boundaries (56 bytes) and the block size (64).
TEST(Md5, DigestsAroundBlockBoundaries) {
  const struct {
    std::size_t length;
    const char* digest;
  } kCases[] = {
      {55, "04364420E25C512FD958A70738AA8F72"},   {56, "668A72D5BA17F08E62DABCAFAD6DB14B"},
      {63, "7DC2CA208106A2F703567BDFF99D8981"},   {64, "C1BB4F81D892B2D57947682AEB252456"},
      {65, "1BC932052302D074BDEC39795FE00CF6"},   {1024, "7265F4D211B56873A381D321F586E4A9"},
      {1025, "41B2B8CE59ECC0C64C9C7ECAAE3002C3"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(StringUtils::md5(std::string(c.length, 'x')), c.digest) << c.length;
  }
}

TEST(Md5, DigestsAMillionAs) {
  // The well-known digest of one million 'a' characters.
  EXPECT_EQ(StringUtils::md5(std::string(1000000, 'a')), "7707D6AE4E027C70EEA2A935C2296F21");
}

TEST(Md5, StopsAtTheFirstNul) {
  EXPECT_EQ(StringUtils::md5(std::string("ab\0c", 4)), StringUtils::md5("ab"));
  EXPECT_EQ(StringUtils::md5(std::string("\0abc", 4)), "D41D8CD98F00B204E9800998ECF8427E");
}

}  // namespace
