// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/ClockStepWatch.h"

#include <sys/timerfd.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace rvf {
namespace {

constexpr std::chrono::milliseconds kSmallestStep{500};

}  // namespace

ClockStepWatch::ClockStepWatch(NSRunLoop& loop, std::function<void()> stepped)
    : stepped_(std::move(stepped)),
      offset_(wallClockOffset()),
      timer_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (!timer_) return;
  arm();
  DescriptorEvents wanted;
  wanted.readable = true;
  source_ = loop.watchDescriptor(timer_.get(), wanted, {std::string(NSRunLoopCommonModes)},
                                 [this](DescriptorEvents) { cancelled(); });
}

/// How far the wall clock is ahead of the monotonic one.
ClockStepWatch::Offset ClockStepWatch::wallClockOffset() {
  return std::chrono::system_clock::now().time_since_epoch() -
         std::chrono::steady_clock::now().time_since_epoch();
}

void ClockStepWatch::arm() {
  itimerspec never{};
  never.it_value.tv_sec = std::numeric_limits<std::int32_t>::max();  // fits every clock
  ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

void ClockStepWatch::cancelled() {
  std::uint64_t expirations = 0;
  const auto length = ::read(timer_.get(), &expirations, sizeof expirations);
  if (length < 0) arm();  // ECANCELED
  const Offset before = std::exchange(offset_, wallClockOffset());
  if (std::chrono::abs(offset_ - before) < kSmallestStep) return;
  const auto stepped = stepped_;
  stepped();
}

}  // namespace rvf
