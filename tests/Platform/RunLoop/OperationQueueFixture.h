// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {

inline Ref<NSOperation> operationWithBlock(std::function<void()> block = nullptr) {
  return std::make_shared<NSBlockOperation>(std::move(block));
}

/// The name of what the call raises.
template <class Call>
std::string raised(Call&& call) {
  try {
    call();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "nothing";
}

/// Serves the main thread until the main queue is empty.
inline void serveMainQueue() {
  const auto loop = NSRunLoop::mainRunLoop();
  while (!NSOperationQueue::mainQueue()->operations().empty())
    loop->runMode(NSDefaultRunLoopMode, NSRunLoop::Clock::now() + std::chrono::seconds(1));
}

/// A queue, and notes of what has run.
class OperationQueueFixture : public testing::Test {
 protected:
  std::function<void()> note(std::string text) {
    return [this, text] {
      const std::lock_guard lock(mutex);
      ran.push_back(text);
    };
  }

  Ref<NSOperationQueue> queue = std::make_shared<NSOperationQueue>();
  std::mutex mutex;
  std::vector<std::string> ran;
};

}  // namespace rvf
