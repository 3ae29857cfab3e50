// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NSLog.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

TEST(NSLog, WritesTheFilledFormatAsOneLineToStandardError) {
  testing::internal::CaptureStderr();
  NSLog("Unexpected URL format: %@", "http://h/%20?a#b#c");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unexpected URL format: http://h/%20?a#b#c\n");
}

TEST(NSLog, RaisesForTooFewArguments) {
  EXPECT_THROW(NSLog("%@"), NSException);
}

}  // namespace
}  // namespace rvf
