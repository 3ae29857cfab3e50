// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/ManualRunLoopClock.h"

#include <optional>

namespace rvf {

ManualRunLoopClock::ManualRunLoopClock() : start_(std::chrono::steady_clock::now()) {}

ManualRunLoopClock::~ManualRunLoopClock() = default;

RunLoopClock::TimePoint ManualRunLoopClock::now() const {
  return start_ + std::chrono::nanoseconds(sinceStart_.load());
}

void ManualRunLoopClock::advance(std::chrono::nanoseconds duration) {
  sinceStart_ += duration.count();
}

void ManualRunLoopClock::runLoopFor(NSRunLoop& loop, std::chrono::nanoseconds duration,
                                    std::string_view mode) {
  const TimePoint end = now() + duration;
  for (;;) {
    while (loop.turn(mode)) {
    }
    const std::optional<TimePoint> next = loop.nextDeadline(mode);
    if (!next || *next > end) break;
    if (*next > now()) advance(*next - now());
  }
  if (now() < end) advance(end - now());
}

}  // namespace rvf
