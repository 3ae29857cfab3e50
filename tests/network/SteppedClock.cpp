// SPDX-License-Identifier: Apache-2.0
#include "tests/network/SteppedClock.h"

#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <ctime>
#include <vector>

namespace {

std::atomic<std::int64_t> steppedSeconds{0};

/// Descriptors that stand for timers on the wall clock. The program has one thread that makes any.
std::vector<int>& wallClockTimers() {
  static std::vector<int> timers;
  return timers;
}

bool isWallClockTimer(int descriptor) {
  return std::ranges::count(wallClockTimers(), descriptor) != 0;
}

}  // namespace

// The programs and libraries that this program consists of find these before the C library's.
extern "C" {

[[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
  if (result == 0 && clock == CLOCK_REALTIME) time->tv_sec += steppedSeconds;
  return result;
}

[[gnu::visibility("default")]] int gettimeofday(timeval* time, void*) noexcept {
  timespec now{};
  const int result = clock_gettime(CLOCK_REALTIME, &now);
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return result;
}

/// Timers on the wall clock only ever tell that it was set.
[[gnu::visibility("default")]] int timerfd_create(clockid_t clock, int flags) noexcept {
  if (clock != CLOCK_REALTIME) {
    return static_cast<int>(::syscall(SYS_timerfd_create, clock, flags));
  }
  const int descriptor = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  if (descriptor >= 0) wallClockTimers().push_back(descriptor);
  return descriptor;
}

[[gnu::visibility("default")]] int timerfd_settime(int descriptor, int flags,
                                                   const itimerspec* value,
                                                   itimerspec* old) noexcept {
  if (isWallClockTimer(descriptor)) return 0;
  return static_cast<int>(::syscall(SYS_timerfd_settime, descriptor, flags, value, old));
}

}  // extern "C"

namespace rvf::network {

void stepWallClock(std::chrono::seconds step) {
  steppedSeconds += step.count();
  for (const int timer : wallClockTimers())
    ::eventfd_write(timer, 1);
}

}  // namespace rvf::network
