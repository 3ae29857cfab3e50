// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSTemporaryDirectory.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <optional>

namespace rvf {
namespace {

class NSTemporaryDirectoryTest : public testing::Test {
 protected:
  NSTemporaryDirectoryTest() {
    if (const char* folder = getenv("TMPDIR")) before_ = folder;
  }
  ~NSTemporaryDirectoryTest() override {
    unsetenv("TMPDIR");
    if (before_) setenv("TMPDIR", before_->c_str(), 1);
  }

 private:
  std::optional<std::string> before_;
};

TEST_F(NSTemporaryDirectoryTest, IsTheOneThatTheEnvironmentNames) {
  setenv("TMPDIR", "/var/tmp/x", 1);
  EXPECT_EQ(NSTemporaryDirectory(), "/var/tmp/x");
}

TEST_F(NSTemporaryDirectoryTest, OrTheSystems) {
  unsetenv("TMPDIR");
  EXPECT_EQ(NSTemporaryDirectory(), "/tmp");
  setenv("TMPDIR", "", 1);
  EXPECT_EQ(NSTemporaryDirectory(), "/tmp");
}

}  // namespace
}  // namespace rvf
