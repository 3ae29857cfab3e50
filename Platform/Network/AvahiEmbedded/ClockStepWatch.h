// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "Platform/Export.h"
#include "Platform/Network/AvahiEmbedded/Descriptor.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// Notices that the wall clock was set, also by a resume from suspension, through a timer that the
/// kernel cancels then (timerfd_create(2), `TFD_TIMER_CANCEL_ON_SET`). Steps of less than half a
/// second are passed over. Where the kernel offers no such timer, nothing is noticed.
class RVF_EXPORT ClockStepWatch final {
 public:
  using Offset = std::chrono::nanoseconds;

  /// The clocks of the machine, unless a test has others.
  struct Clocks {
    /// A descriptor that becomes readable when the wall clock is set; -1 if there is none.
    std::function<int()> openTimer;
    /// Makes it wait for the next time.
    std::function<void(int timer)> armTimer;
    /// How far the wall clock is ahead of the monotonic one.
    std::function<Offset()> offset;
  };
  static Clocks systemClocks();

  ClockStepWatch(NSRunLoop& loop, std::function<void()> stepped, Clocks clocks = systemClocks());

 private:
  void cancelled();

  std::function<void()> stepped_;
  Clocks clocks_;
  Offset offset_;
  Descriptor timer_;
  std::unique_ptr<RunLoopSource> source_;
};

}  // namespace rvf
