// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSOperation.h"

namespace rvf {

/// An operation that goes on after `start` until it is told to finish, on any thread.
class LaterOperation final : public NSOperation {
 public:
  explicit LaterOperation(std::function<void()> launch = nullptr) : launch_(std::move(launch)) {}

  void start() override {
    ++starts;
    if (isCancelled()) return finish();
    announceChange(*this, "isExecuting", [this] { state_ = 1; });
    if (launch_) launch_();
  }
  void finish() {
    announceChange(*this, "isFinished", [this] { state_ = 2; });
  }

  bool isConcurrent() const override { return true; }
  bool isExecuting() const override { return state_ == 1; }
  bool isFinished() const override { return state_ == 2; }

  std::atomic<int> starts{0};

 private:
  const std::function<void()> launch_;
  std::atomic<int> state_{0};
};

}  // namespace rvf
