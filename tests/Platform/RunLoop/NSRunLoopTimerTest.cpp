// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <rapidcheck.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/Platform/RunLoop/RunLoopFixture.h"

namespace rvf {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class NSRunLoopTimerTest : public RunLoopFixture {
 protected:
  void keep(double delay, NSRunLoop::Block block) {
    timers.push_back(loop->scheduleTimer(delay, kDefault, std::move(block)));
  }
  std::vector<std::unique_ptr<RunLoopSource>> timers;
};

TEST_F(NSRunLoopTimerTest, ATimerFiresWhenItsTimeHasComeAndNotEarlier) {
  keep(0.010, note("timer"));
  clock->advance(milliseconds(10) - nanoseconds(1));
  EXPECT_FALSE(loop->turn());
  clock->advance(nanoseconds(1));
  EXPECT_TRUE(loop->turn());
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("timer"));
}

TEST_F(NSRunLoopTimerTest, ADelayOfNothingFiresOnALaterTurn) {
  for (const double delay : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN()}) {
    keep(delay, note("timer"));
  }
  EXPECT_THAT(ran, IsEmpty());
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("timer", "timer", "timer"));
}

TEST_F(NSRunLoopTimerTest, AnEndlessDelayDoesNotFire) {
  keep(std::numeric_limits<double>::infinity(), note("timer"));
  clock->runLoopFor(*loop, std::chrono::hours(24 * 365));
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(NSRunLoopTimerTest, TimersOfEqualTimeFireInTheOrderScheduled) {
  for (const char* text : {"a", "b", "c"})
    keep(1, note(text));
  keep(0.5, note("earlier"));
  clock->runLoopFor(*loop, seconds(1));
  EXPECT_THAT(ran, ElementsAre("earlier", "a", "b", "c"));
}

TEST_F(NSRunLoopTimerTest, AnyTimersFireByTimeAndThenInTheOrderScheduled) {
  EXPECT_TRUE(rc::check([&](const std::vector<std::uint8_t>& delays) {
    std::vector<std::pair<int, std::size_t>> fired;
    for (std::size_t i = 0; i < delays.size(); ++i) {
      loop->performAfterDelay(delays[i], kDefault,
                              [&fired, i, delay = delays[i]] { fired.emplace_back(delay, i); });
    }
    clock->runLoopFor(*loop, seconds(256));
    RC_ASSERT(fired.size() == delays.size());
    RC_ASSERT(std::is_sorted(fired.begin(), fired.end()));
  }));
}

TEST_F(NSRunLoopTimerTest, ATimerScheduledByATimerFiresOnALaterTurn) {
  keep(0, [&] { keep(0, note("second")); });
  loop->turn();
  EXPECT_THAT(ran, IsEmpty());
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("second"));
}

TEST_F(NSRunLoopTimerTest, ATimerOfAnotherModeWaitsForItsMode) {
  const auto panel = loop->scheduleTimer(1, kPanel, note("panel"));
  keep(2, note("default"));
  clock->runLoopFor(*loop, seconds(3));
  EXPECT_THAT(ran, ElementsAre("default"));
  loop->turn("panel");
  EXPECT_THAT(ran, ElementsAre("default", "panel"));
}

TEST_F(NSRunLoopTimerTest, AnEndedTimerDoesNotFireAndLetsItsBlockGo) {
  const auto witness = std::make_shared<int>();
  auto timer = loop->scheduleTimer(0, kDefault, [witness] { FAIL() << "was ended"; });
  timer.reset();
  EXPECT_EQ(witness.use_count(), 1);
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopTimerTest, ATimerMayEndItselfWhileItRuns) {
  const auto witness = std::make_shared<int>(7);
  std::unique_ptr<RunLoopSource> timer;
  timer = loop->scheduleTimer(0, kDefault, [&, witness] {
    timer.reset();
    ran.push_back(std::to_string(*witness));
  });
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("7"));
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSRunLoopTimerTest, ATimerEndedInTheSameBatchDoesNotFire) {
  std::unique_ptr<RunLoopSource> second;
  keep(0, [&] { second.reset(); });
  second = loop->scheduleTimer(0, kDefault, note("second"));
  loop->turn();
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(NSRunLoopTimerTest, ATimerMayRunTheLoopAgain) {
  keep(0, [&] {
    loop->turn();
    ran.push_back("first");
  });
  keep(0, note("second"));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("second", "first"));
}

TEST_F(NSRunLoopTimerTest, AnExceptionOfATimerLeavesTheOthers) {
  keep(0, [] { throw std::runtime_error("timer"); });
  keep(0, note("after"));
  EXPECT_THROW(loop->turn(), std::runtime_error);
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("after"));
}

TEST_F(NSRunLoopTimerTest, ReplacingTheClockKeepsWhatIsLeftOfADelay) {
  keep(10, note("timer"));
  clock->advance(seconds(4));
  const auto other = std::make_shared<ManualRunLoopClock>();
  other->advance(std::chrono::hours(1));
  loop->setClock(other);
  other->runLoopFor(*loop, seconds(6) - nanoseconds(1));
  EXPECT_THAT(ran, IsEmpty());
  other->runLoopFor(*loop, nanoseconds(1));
  EXPECT_THAT(ran, ElementsAre("timer"));
}

TEST_F(NSRunLoopTimerTest, TheManualClockStopsAtEveryTimer) {
  const auto start = clock->now();
  std::vector<seconds> times;
  NSRunLoop::Block again = [&] {
    times.push_back(std::chrono::duration_cast<seconds>(clock->now() - start));
    if (times.size() < 3) loop->performAfterDelay(2, kDefault, again);
  };
  loop->performAfterDelay(2, kDefault, again);
  clock->runLoopFor(*loop, seconds(7));
  EXPECT_THAT(times, ElementsAre(seconds(2), seconds(4), seconds(6)));
  EXPECT_EQ(clock->now() - start, seconds(7));
}

TEST_F(NSRunLoopTimerTest, OnTheMonotonicClockATimerIsNeverEarly) {
  loop->setClock(nullptr);
  for (const double delay : {0.0001, 0.0009, 0.0011, 0.0030}) {
    const auto due = NSRunLoop::Clock::now() + std::chrono::duration<double>(delay);
    keep(delay, [&] { EXPECT_GE(NSRunLoop::Clock::now(), due) << delay; });
    EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, kForEver));
  }
}

}  // namespace
}  // namespace rvf
