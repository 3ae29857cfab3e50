// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSNull.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(NSNull, IsOneObject) {
  EXPECT_NE(NSNull::null(), nullptr);
  EXPECT_EQ(NSNull::null(), NSNull::null());
}

TEST(NSNull, DescribesItself) {
  EXPECT_EQ(NSNull::null()->description(), "<null>");
}

}  // namespace
}  // namespace rvf
