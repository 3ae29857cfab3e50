// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFPaths.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

TEST(NSString_RVFPaths, AppendsAFilledFormatToAPath) {
  EXPECT_EQ(relativePathWithFormat("/tmp", "%@-%d.txt", "till", 7), "/tmp/till-7.txt");
  EXPECT_EQ(relativePathWithFormat("/tmp/", "x"), "/tmp/x");
  EXPECT_EQ(relativePathWithFormat("", "%@/%@", "a", "b"), "a/b");
  EXPECT_THROW(relativePathWithFormat("/tmp", "%@"), NSException);
}

}  // namespace
}  // namespace rvf
