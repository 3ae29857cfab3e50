// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sched.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace rvf {

/// A lock for a few instructions that call nothing foreign. Releasing it is a plain store, so it
/// costs half of a `std::mutex`, which must look for waiters then.
///
/// Who finds it held yields the processor, and after some attempts sleeps between them, so that a
/// holder of lower priority gets its turn.
class SpinLock final {
 public:
  void lock() noexcept {
    if (isHeld_.test_and_set(std::memory_order_acquire)) wait();
  }
  void unlock() noexcept { isHeld_.clear(std::memory_order_release); }

 private:
  void wait() noexcept {
    constexpr int kYields = 100;
    constexpr std::chrono::microseconds kPause{50};
    for (int attempts = 1; isHeld_.test_and_set(std::memory_order_acquire); ++attempts) {
      if (attempts < kYields) {
        ::sched_yield();
      } else {
        std::this_thread::sleep_for(kPause);
      }
    }
  }

  std::atomic_flag isHeld_;
};

}  // namespace rvf
