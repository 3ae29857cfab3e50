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

TEST(NSString_RVFPaths, ReducesSeparatorsOfBothSides) {
  EXPECT_EQ(relativePathWithFormat("/tmp//a", "/%@//c", "b"), "/tmp/a/b/c");
  EXPECT_EQ(relativePathWithFormat("/tmp//", "//%@", "b"), "/tmp/b");
}

TEST(NSString_RVFPaths, KeepsBytesThatBelongToNoCharacter) {
  EXPECT_EQ(relativePathWithFormat("/\xFF", "%@\xC3", "\xE2\x82"), "/\xFF/\xE2\x82\xC3");
}

TEST(NSString_RVFPaths, TakesTenMegabytesOnBothSides) {
  const std::string name(10'000'000, 'a');
  EXPECT_EQ(relativePathWithFormat(name, "%@.txt", name), name + '/' + name + ".txt");
  const std::string separators(10'000'000, '/');
  EXPECT_EQ(relativePathWithFormat(separators, "%@b", separators), "/b");
}

}  // namespace
}  // namespace rvf
