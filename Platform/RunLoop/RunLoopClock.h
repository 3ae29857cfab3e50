// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>

#include "Platform/Export.h"

namespace rvf {

/// Where a run loop reads the time that its delays and limits are measured on. Time never goes
/// back.
///
/// Thread: any; implementations are thread-safe. Lifetime: shared with the loops that read it.
class RVF_EXPORT RunLoopClock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  RunLoopClock() = default;
  RunLoopClock(const RunLoopClock&) = delete;
  RunLoopClock& operator=(const RunLoopClock&) = delete;
  virtual ~RunLoopClock();

  /// Called on any thread, and often: once or more a turn.
  virtual TimePoint now() const = 0;

  /// The system's monotonic clock, which every loop uses unless told otherwise.
  static std::shared_ptr<RunLoopClock> monotonicClock();
};

}  // namespace rvf
