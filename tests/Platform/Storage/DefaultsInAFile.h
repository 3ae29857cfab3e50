// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {

/// User defaults in a file, and its folder, that nobody has made yet.
class DefaultsInAFile : public testing::Test {
 protected:
  Ref<NSUserDefaults> open() const { return NSUserDefaults::userDefaultsWithFile(path_); }
  id stored(std::string_view key) const { return open()->objectForKey(key); }

  TemporaryFolder folder_;
  const std::string path_ = folder_.file("till/defaults.plist");
  const Ref<NSUserDefaults> defaults_ = open();
};

/// Of the exception that the action raises, or "none".
inline std::string nameOfException(const std::function<void()>& action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "none";
}

}  // namespace rvf
