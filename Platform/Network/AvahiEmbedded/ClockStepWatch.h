// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "Platform/Network/AvahiEmbedded/Descriptor.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// Notices that the wall clock was set, also by a resume from suspension, through a timer that the
/// kernel cancels then (timerfd_create(2), `TFD_TIMER_CANCEL_ON_SET`). Steps of less than half a
/// second are passed over. Where the kernel offers no such timer, nothing is noticed.
class ClockStepWatch final {
 public:
  ClockStepWatch(NSRunLoop& loop, std::function<void()> stepped);

 private:
  using Offset = std::chrono::nanoseconds;
  static Offset wallClockOffset();
  void arm();
  void cancelled();

  std::function<void()> stepped_;
  Offset offset_;
  Descriptor timer_;
  std::unique_ptr<RunLoopSource> source_;
};

}  // namespace rvf
