// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFDigests.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

using namespace std::string_view_literals;

// RFC 1321, A.5.
TEST(NSString_RVFDigests, AnswersTheMD5DigestInHexadecimal) {
  const std::pair<std::string_view, const char*> rows[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(RVF_md5(text), expected) << text;
}

TEST(NSString_RVFDigests, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(RVF_md5("abc\0def"sv), RVF_md5("abc"));
  EXPECT_EQ(RVF_md5("\0"sv), RVF_md5(""));
}

TEST(NSString_RVFDigests, IllFormedTextCountsByItsBytes) {
  EXPECT_EQ(RVF_md5("a\xFF\xC3"), "926e67f3038357ee5e37d63b85c381d4");
}

TEST(NSString_RVFDigests, TakesTenMegabytes) {
  EXPECT_EQ(RVF_md5(std::string(10'000'000, 'a')), "7095bae098259e0dda4b7acc624de4e2");
}

}  // namespace
}  // namespace rvf
