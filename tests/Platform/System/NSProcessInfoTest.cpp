// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/NSProcessInfo.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace rvf {
namespace {

TEST(NSProcessInfo, IsOneForTheProcess) {
  EXPECT_EQ(NSProcessInfo::processInfo(), NSProcessInfo::processInfo());
}

TEST(NSProcessInfo, KnowsTheMemoryThatTheKernelManages) {
  std::ifstream file("/proc/meminfo");
  std::string name;
  unsigned long long kilobytes = 0;
  file >> name >> kilobytes;
  ASSERT_EQ(name, "MemTotal:");
  EXPECT_EQ(NSProcessInfo::processInfo()->physicalMemory(), kilobytes * 1024);
}

}  // namespace
}  // namespace rvf
