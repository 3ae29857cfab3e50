// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/ClockStepWatch.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <chrono>

namespace rvf {
namespace {

using namespace std::chrono_literals;

/// A wall clock that a test sets.
class ClockStepWatchTest : public testing::Test {
 protected:
  ClockStepWatch::Clocks clocks() {
    return {[this] { return timer_ = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC); },
            [this](int timer) {
              EXPECT_EQ(timer, timer_);
              ++armed_;
            },
            [this] { return offset_; }};
  }
  void setClock(std::chrono::nanoseconds step) {
    offset_ += step;
    ASSERT_EQ(::eventfd_write(timer_, 1), 0);
    loop_->turn();
  }

  const Ref<NSRunLoop> loop_ = NSRunLoop::currentRunLoop();
  int timer_ = -1;
  int armed_ = 0;
  int steps_ = 0;
  ClockStepWatch::Offset offset_ = 1000s;
  ClockStepWatch watch_{*loop_, [this] { ++steps_; }, clocks()};
};

TEST_F(ClockStepWatchTest, ReportsStepsOfHalfASecondAndMoreInEitherDirection) {
  setClock(500ms);
  EXPECT_EQ(steps_, 1);
  setClock(-2h);
  EXPECT_EQ(steps_, 2);
}

TEST_F(ClockStepWatchTest, PassesSmallerStepsOverAndNeverAddsThemUp) {
  for (int i = 0; i < 5; ++i)
    setClock(499ms);
  setClock(-499ms);
  EXPECT_EQ(steps_, 0);
}

TEST_F(ClockStepWatchTest, WaitsAnewAfterEveryStep) {
  EXPECT_EQ(armed_, 1);
  setClock(1h);
  EXPECT_EQ(armed_, 2);
  setClock(0s);  // the date was reached, the clock was not set
  EXPECT_EQ(armed_, 3);
  EXPECT_EQ(steps_, 1);
  EXPECT_FALSE(loop_->turn()) << "the timer is still ready";
}

TEST_F(ClockStepWatchTest, NoticesNothingWhereThereIsNoTimer) {
  auto without = clocks();
  without.openTimer = [] { return -1; };
  const ClockStepWatch watch(
      *loop_, [this] { ++steps_; }, without);
  offset_ += 1h;
  EXPECT_FALSE(loop_->turn());
  EXPECT_EQ(steps_, 0);
}

TEST(ClockStepWatchSystemClocks, ArmTheTimerForADateThatLiesAheadWhateverTheYear) {
  const auto clocks = ClockStepWatch::systemClocks();
  const Descriptor timer(clocks.openTimer());
  ASSERT_TRUE(timer);
  clocks.armTimer(timer.get());
  itimerspec left{};
  ASSERT_EQ(::timerfd_gettime(timer.get(), &left), 0);
  EXPECT_GT(std::chrono::seconds(left.it_value.tv_sec), 24h * 300);
  EXPECT_LT(std::chrono::seconds(left.it_value.tv_sec), 24h * 400);
}

}  // namespace
}  // namespace rvf
