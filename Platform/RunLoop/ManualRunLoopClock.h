// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/RunLoopClock.h"

namespace rvf {

/// A clock that stands still until it is told to move on, so that a test of ten seconds takes
/// none:
///
///     const auto clock = std::make_shared<ManualRunLoopClock>();
///     loop->setClock(clock);
///     clock->runLoopFor(*loop, std::chrono::seconds(10));
///
/// A loop that is waiting notices a change at its next turn; wake it if that must be at once.
///
/// Thread: the clock any; `runLoopFor` that of the loop. Lifetime: shared with the loops that read
/// it.
class RVF_EXPORT ManualRunLoopClock final : public RunLoopClock {
 public:
  /// Starts at an arbitrary time.
  ManualRunLoopClock();
  ~ManualRunLoopClock() override;

  TimePoint now() const override;

  /// Moves the time on. Fires nothing by itself. Thread-safe.
  void advance(std::chrono::nanoseconds duration);

  /// Moves the time on from one of the loop's timers to the next, taking turns at each until
  /// nothing is left to do there, and then by what remains of `duration`. Never sleeps. Called on
  /// the loop's thread; the loop must use this clock.
  void runLoopFor(NSRunLoop& loop, std::chrono::nanoseconds duration,
                  std::string_view mode = NSDefaultRunLoopMode);

 private:
  std::atomic<std::chrono::nanoseconds::rep> sinceStart_{0};
  const TimePoint start_;
};

}  // namespace rvf
