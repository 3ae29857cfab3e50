// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

inline const RunLoopModes kDefault{std::string(NSDefaultRunLoopMode)};
inline const RunLoopModes kCommon{std::string(NSRunLoopCommonModes)};
inline const RunLoopModes kPanel{"panel"};
inline constexpr auto kForEver = NSRunLoop::Clock::time_point::max();

/// The loop of the test's thread, on a clock that stands still.
class RunLoopFixture : public testing::Test {
 protected:
  void SetUp() override { loop->setClock(clock); }
  void TearDown() override { loop->setClock(nullptr); }

  NSRunLoop::Block note(std::string text) {
    return [this, text] { ran.push_back(text); };
  }
  /// Notes the mode that runs as well.
  NSRunLoop::Block noteMode(std::string text) {
    return [this, text] { ran.push_back(text + " in " + loop->currentMode().value_or("none")); };
  }

  /// A mode that no test has used. What is made a common mode stays one.
  static std::string newMode() {
    static int count = 0;
    return "new mode " + std::to_string(++count);
  }

  const Ref<NSRunLoop> loop = NSRunLoop::currentRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock = std::make_shared<ManualRunLoopClock>();
  std::vector<std::string> ran;
};

}  // namespace rvf
