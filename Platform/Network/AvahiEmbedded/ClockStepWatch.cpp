// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/ClockStepWatch.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <utility>

namespace rvf {
namespace {

constexpr std::chrono::milliseconds kSmallestStep{500};
/// No date to wait for, only one that lies ahead: the timer is armed anew when it is reached.
constexpr time_t kFarAheadSeconds = time_t{365} * 24 * 60 * 60;

int openTimer() {
  return ::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
}

void armTimer(int timer) {
  itimerspec date{};
  date.it_value.tv_sec = ::time(nullptr) + kFarAheadSeconds;
  ::timerfd_settime(timer, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &date, nullptr);
}

ClockStepWatch::Offset wallClockOffset() {
  return std::chrono::system_clock::now().time_since_epoch() -
         std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace

ClockStepWatch::Clocks ClockStepWatch::systemClocks() {
  return {&openTimer, &armTimer, &wallClockOffset};
}

ClockStepWatch::ClockStepWatch(NSRunLoop& loop, std::function<void()> stepped, Clocks clocks)
    : stepped_(std::move(stepped)),
      clocks_(std::move(clocks)),
      offset_(clocks_.offset()),
      timer_(clocks_.openTimer()) {
  if (!timer_) return;
  clocks_.armTimer(timer_.get());
  DescriptorEvents wanted;
  wanted.readable = true;
  source_ = loop.watchDescriptor(timer_.get(), wanted, {std::string(NSRunLoopCommonModes)},
                                 [this](DescriptorEvents) { cancelled(); });
}

void ClockStepWatch::cancelled() {
  std::uint64_t expirations = 0;
  // Fails with ECANCELED when the clock was set, and reads when the date was reached.
  [[maybe_unused]] const auto length = ::read(timer_.get(), &expirations, sizeof expirations);
  clocks_.armTimer(timer_.get());
  const Offset before = std::exchange(offset_, clocks_.offset());
  if (std::chrono::abs(offset_ - before) < kSmallestStep) return;
  const auto stepped = stepped_;
  stepped();
}

}  // namespace rvf
