// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/SpinLock.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

namespace rvf {
namespace {

TEST(SpinLockTest, OneThreadAtATimeHoldsIt) {
  SpinLock lock;
  int sum = 0;
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 10'000; ++round) {
        const std::lock_guard guard(lock);
        ++sum;
      }
    });
  }
  threads.clear();
  EXPECT_EQ(sum, 40'000);
}

TEST(SpinLockTest, AWaiterSurvivesALongHolder) {
  SpinLock lock;
  bool isDone = false;
  lock.lock();
  std::jthread waiter([&] {
    const std::lock_guard guard(lock);
    isDone = true;
  });
  for (int i = 0; i < 10'000; ++i)
    std::this_thread::yield();  // longer than the waiter yields
  lock.unlock();
  waiter.join();
  EXPECT_TRUE(isDone);
}

}  // namespace
}  // namespace rvf
