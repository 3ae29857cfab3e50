// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/RunLoopClock.h"

namespace rvf {
namespace {

class MonotonicClock final : public RunLoopClock {
 public:
  TimePoint now() const override { return std::chrono::steady_clock::now(); }
};

}  // namespace

RunLoopClock::~RunLoopClock() = default;

std::shared_ptr<RunLoopClock> RunLoopClock::monotonicClock() {
  static const std::shared_ptr<RunLoopClock> kClock = std::make_shared<MonotonicClock>();
  return kClock;
}

}  // namespace rvf
