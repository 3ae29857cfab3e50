// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSRunLoop.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

const RunLoopModes kDefault{std::string(NSDefaultRunLoopMode)};
const RunLoopModes kCommon{std::string(NSRunLoopCommonModes)};
const RunLoopModes kPanel{"panel"};
constexpr auto kForEver = NSRunLoop::Clock::time_point::max();

/// The loop of the test's thread, on a clock that stands still.
class NSRunLoopTest : public testing::Test {
 protected:
  void SetUp() override { loop->setClock(clock); }
  void TearDown() override { loop->setClock(nullptr); }

  NSRunLoop::Block note(std::string text) {
    return [this, text] { ran.push_back(text); };
  }

  const Ref<NSRunLoop> loop = NSRunLoop::currentRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock = std::make_shared<ManualRunLoopClock>();
  std::vector<std::string> ran;
};

struct Pipe {
  Pipe() { EXPECT_EQ(::pipe(ends.data()), 0); }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  int reading() const { return ends[0]; }
  int writing() const { return ends[1]; }
  void write() const { EXPECT_EQ(::write(ends[1], "x", 1), 1); }
  void read() const {
    char byte;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
  }
  void closeEnd(std::size_t index) {
    if (ends[index] >= 0) ::close(ends[index]);
    ends[index] = -1;
  }
  std::array<int, 2> ends{};
};

TEST_F(NSRunLoopTest, APostedBlockRunsInATurnAndNotBefore) {
  loop->performBlock(note("a"));
  EXPECT_THAT(ran, IsEmpty());
  EXPECT_TRUE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("a"));
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopTest, BlocksRunInTheOrderPosted) {
  for (const char* text : {"a", "b", "c"})
    loop->performInModes(kDefault, note(text));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("a", "b", "c"));
}

TEST_F(NSRunLoopTest, ABlockOfAnotherModeWaitsWithoutHoldingBackLaterOnes) {
  loop->performInModes(kPanel, note("panel 1"));
  loop->performInModes(kDefault, note("default"));
  loop->performInModes(kPanel, note("panel 2"));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("default"));
  loop->turn("panel");
  EXPECT_THAT(ran, ElementsAre("default", "panel 1", "panel 2"));
}

TEST_F(NSRunLoopTest, ABlockWithoutModesIsDropped) {
  loop->performInModes({}, note("never"));
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(NSRunLoopTest, ATimerFiresWhenItsTimeHasComeAndNotEarlier) {
  const auto timer = loop->scheduleTimer(0.010, kDefault, note("timer"));
  clock->advance(milliseconds(10) - std::chrono::nanoseconds(1));
  EXPECT_FALSE(loop->turn());
  clock->advance(std::chrono::nanoseconds(1));
  EXPECT_TRUE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("timer"));
}

TEST_F(NSRunLoopTest, TimersOfEqualTimeFireInTheOrderScheduled) {
  std::vector<std::unique_ptr<RunLoopSource>> timers;
  for (const char* text : {"a", "b", "c"}) {
    timers.push_back(loop->scheduleTimer(1, kDefault, note(text)));
  }
  timers.push_back(loop->scheduleTimer(0.5, kDefault, note("earlier")));
  clock->runLoopFor(*loop, std::chrono::seconds(1));
  EXPECT_THAT(ran, ElementsAre("earlier", "a", "b", "c"));
}

TEST_F(NSRunLoopTest, AnEndedTimerDoesNotFire) {
  auto timer = loop->scheduleTimer(0, kDefault, note("never"));
  timer.reset();
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(NSRunLoopTest, ADescriptorIsReportedWhileItIsReadable) {
  const Pipe pipe;
  const auto watch = loop->watchDescriptor(
      pipe.reading(), {.readable = true}, kDefault,
      [&](DescriptorEvents e) { ran.push_back(e.readable ? "readable" : "other"); });
  EXPECT_FALSE(loop->turn());
  pipe.write();
  loop->turn();
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable", "readable"));
  pipe.read();
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopTest, ADescriptorThatCannotBePolledRaises) {
  try {
    const auto watch = loop->watchDescriptor(-1, {.readable = true}, kDefault, [](auto) {});
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
  }
}

TEST_F(NSRunLoopTest, AnExceptionLeavesTheRunCallAndTheRestRunsLater) {
  loop->performBlock([] { throw std::runtime_error("callout"); });
  loop->performBlock(note("after"));
  EXPECT_THROW(loop->turn(), std::runtime_error);
  EXPECT_THAT(ran, IsEmpty());
  EXPECT_TRUE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("after"));
}

TEST_F(NSRunLoopTest, ABlockMayRunTheLoopAgain) {
  loop->performBlock([&] {
    ran.push_back("outer begins");
    loop->turn();
    ran.push_back("outer ends");
  });
  loop->performBlock(note("second"));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("outer begins", "second", "outer ends"));
}

TEST_F(NSRunLoopTest, APostFromAnotherThreadWakesAWaitingLoop) {
  std::thread poster([&] { loop->performBlock([&] { loop->stop(); }); });
  loop->runUntilDate(kForEver);
  poster.join();
  EXPECT_EQ(loop->currentMode(), std::nullopt);
}

TEST_F(NSRunLoopTest, RunningAModeWithNothingAttachedReturnsAtOnce) {
  EXPECT_FALSE(loop->runMode("empty", kForEver));
}

TEST_F(NSRunLoopTest, EveryThreadHasALoopOfItsOwn) {
  Ref<NSRunLoop> other;
  std::thread([&] { other = NSRunLoop::currentRunLoop(); }).join();
  EXPECT_NE(other, loop);
  EXPECT_EQ(NSRunLoop::mainRunLoop(), loop);
}

TEST_F(NSRunLoopTest, ADelayBlockOnTheRealClockIsNeverEarly) {
  loop->setClock(nullptr);
  const auto start = NSRunLoop::Clock::now();
  auto fired = start;
  const auto timer = loop->scheduleTimer(0.003, kDefault, [&] { fired = NSRunLoop::Clock::now(); });
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, kForEver));
  EXPECT_GE(fired - start, milliseconds(3));
}

}  // namespace
}  // namespace rvf
