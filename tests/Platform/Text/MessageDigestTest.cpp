// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/MessageDigest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace rvf {
namespace {

// RFC 1321, A.5.
TEST(MessageDigest, AnswersTheSixteenBytesOfMD5) {
  EXPECT_THAT(md5Digest("abc"),
              testing::ElementsAre(0x90, 0x01, 0x50, 0x98, 0x3C, 0xD2, 0x4F, 0xB0, 0xD6, 0x96, 0x3F,
                                   0x7D, 0x28, 0xE1, 0x7F, 0x72));
}

TEST(MessageDigest, CountsZeroBytes) {
  EXPECT_NE(md5Digest(std::string_view("abc\0", 4)), md5Digest("abc"));
}

}  // namespace
}  // namespace rvf
