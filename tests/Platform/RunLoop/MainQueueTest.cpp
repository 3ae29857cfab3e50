// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/MainQueue.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"

namespace rvf {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class MainQueueTest : public testing::Test {
 protected:
  void SetUp() override { loop->setClock(clock); }
  void TearDown() override { loop->setClock(nullptr); }

  MainQueue::Block note(std::string text) {
    return [this, text] { ran.push_back(text); };
  }
  void runFor(nanoseconds duration) { clock->runLoopFor(*loop, duration); }

  const Ref<NSRunLoop> loop = NSRunLoop::mainRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock = std::make_shared<ManualRunLoopClock>();
  std::vector<std::string> ran;
};

TEST_F(MainQueueTest, BlocksRunInOrderAndNotWithinTheCall) {
  MainQueue::dispatch_async(note("a"));
  MainQueue::dispatch_async(note("b"));
  EXPECT_THAT(ran, IsEmpty());
  runFor(nanoseconds(0));
  EXPECT_THAT(ran, ElementsAre("a", "b"));
}

TEST_F(MainQueueTest, ADelayedBlockIsNeverEarly) {
  MainQueue::dispatch_after(milliseconds(5), note("late"));
  runFor(milliseconds(5) - nanoseconds(1));
  EXPECT_THAT(ran, IsEmpty());
  runFor(nanoseconds(1));
  EXPECT_THAT(ran, ElementsAre("late"));
}

TEST_F(MainQueueTest, ADelayThatIsOverRunsAsSoonAsPossibleButNotWithinTheCall) {
  MainQueue::dispatch_after(nanoseconds(0), note("zero"));
  MainQueue::dispatch_after(milliseconds(-5), note("negative"));
  EXPECT_THAT(ran, IsEmpty());
  runFor(nanoseconds(0));
  EXPECT_THAT(ran, ElementsAre("zero", "negative"));
}

TEST_F(MainQueueTest, AnEndlessDelayDoesNotOverflow) {
  MainQueue::dispatch_after(nanoseconds::max(), note("never"));
  runFor(std::chrono::hours(1));
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(MainQueueTest, TheDelayCountsFromTheCallOnAnyThread) {
  std::thread([&] { MainQueue::dispatch_after(milliseconds(5), note("late")); }).join();
  clock->advance(milliseconds(5));
  runFor(nanoseconds(0));
  EXPECT_THAT(ran, ElementsAre("late"));
}

TEST_F(MainQueueTest, BlocksRunInEveryCommonModeAndInNoOther) {
  MainQueue::dispatch_async(note("async"));
  MainQueue::dispatch_after(nanoseconds(0), note("after"));
  while (loop->turn("main queue private mode")) {
  }
  EXPECT_THAT(ran, IsEmpty());
  loop->addCommonMode("main queue common mode");
  while (loop->turn("main queue common mode")) {
  }
  EXPECT_THAT(ran, ElementsAre("async", "after"));
}

TEST_F(MainQueueTest, ABlockThatRunsTheLoopIsNotOvertaken) {
  MainQueue::dispatch_async([&] {
    ran.push_back("first begins");
    MainQueue::dispatch_async(note("added by first"));
    MainQueue::dispatch_after(nanoseconds(0), note("delayed by first"));
    while (loop->turn()) {
    }
    ran.push_back("first ends");
  });
  MainQueue::dispatch_async(note("second"));
  runFor(nanoseconds(0));
  EXPECT_THAT(ran, ElementsAre("first begins", "first ends", "second", "added by first",
                               "delayed by first"));
}

TEST_F(MainQueueTest, ABlockThatThrowsDoesNotLoseTheNext) {
  MainQueue::dispatch_async([] { throw std::runtime_error("refused"); });
  MainQueue::dispatch_async(note("next"));
  EXPECT_THROW(loop->turn(), std::runtime_error);
  runFor(nanoseconds(0));
  EXPECT_THAT(ran, ElementsAre("next"));
}

TEST_F(MainQueueTest, ABlockThatQueuesItselfLetsTheLoopTurn) {
  int left = 3;
  MainQueue::Block again = [&] {
    if (--left > 0) MainQueue::dispatch_async(again);
  };
  MainQueue::dispatch_async(again);
  loop->turn();
  EXPECT_EQ(left, 2);
  runFor(nanoseconds(0));
  EXPECT_EQ(left, 0);
}

TEST_F(MainQueueTest, BlocksOfOtherThreadsRunOnTheMainThread) {
  std::thread other([&] {
    MainQueue::dispatch_async([&] {
      ran.push_back(NSThread::isMainThread() ? "main" : "other");
      loop->stop();
    });
  });
  loop->run();
  other.join();
  EXPECT_THAT(ran, ElementsAre("main"));
}

}  // namespace
}  // namespace rvf
