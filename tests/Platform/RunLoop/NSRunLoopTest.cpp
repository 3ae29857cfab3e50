// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSRunLoop.h"

#include <gmock/gmock.h>
#include <rapidcheck.h>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "Platform/Runtime/NSAutoreleasePool.h"
#include "tests/Platform/RunLoop/OpenDescriptors.h"
#include "tests/Platform/RunLoop/RunLoopFixture.h"

namespace rvf {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class NSRunLoopTest : public RunLoopFixture {};

// Posted blocks

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

TEST_F(NSRunLoopTest, ABlockThatWaitedKeepsItsPlaceBeforeLaterOnes) {
  loop->performInModes(kPanel, note("first"));
  loop->turn();
  loop->performInModes(kPanel, note("second"));
  loop->performInModes({"other", "panel"}, note("third"));
  loop->turn();
  loop->turn("panel");
  EXPECT_THAT(ran, ElementsAre("first", "second", "third"));
}

TEST_F(NSRunLoopTest, ABlockWithoutModesIsDropped) {
  const auto witness = std::make_shared<int>();
  loop->performInModes({}, [witness] {});
  EXPECT_EQ(witness.use_count(), 1);
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopTest, ABlockPostedByABlockWaitsForTheNextTurn) {
  loop->performBlock([&] { loop->performBlock(note("later")); });
  loop->turn();
  EXPECT_THAT(ran, IsEmpty());
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("later"));
}

TEST_F(NSRunLoopTest, ABlockIsDestroyedOnceItHasRun) {
  const auto witness = std::make_shared<int>();
  loop->performBlock([witness] {});
  loop->turn();
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSRunLoopTest, EveryCalloutHasAReleaseScopeOfItsOwn) {
  const auto witness = std::make_shared<int>();
  std::vector<long> counts;
  for (int i = 0; i < 2; ++i) {
    loop->performBlock([&] {
      counts.push_back(witness.use_count());
      NSAutoreleasePool::addObject(witness);
    });
  }
  loop->turn();
  EXPECT_THAT(counts, ElementsAre(1, 1));
}

TEST_F(NSRunLoopTest, BlocksOfManyThreadsKeepTheOrderOfEach) {
  constexpr int kThreads = 4;
  constexpr int kBlocks = 500;
  std::vector<int> next(kThreads, 0);
  int outOfOrder = 0;
  int left = kThreads * kBlocks;
  std::vector<std::thread> posters;
  for (std::size_t t = 0; t < kThreads; ++t) {
    posters.emplace_back([&, t] {
      for (int i = 0; i < kBlocks; ++i) {
        loop->performBlock([&, t, i] {
          if (next[t]++ != i) ++outOfOrder;
          if (--left == 0) loop->stop();
        });
      }
    });
  }
  loop->run();
  for (std::thread& poster : posters)
    poster.join();
  EXPECT_EQ(outOfOrder, 0);
  EXPECT_EQ(left, 0);
}

TEST_F(NSRunLoopTest, WhateverTheModesEveryModeSeesItsBlocksInOrder) {
  EXPECT_TRUE(rc::check(
      [&](const std::vector<std::pair<bool, bool>>& inModes, const std::vector<bool>& turns) {
        const std::vector<std::string> names{"even", "odd"};
        std::vector<std::size_t> order;
        std::size_t expected = 0;
        for (std::size_t i = 0; i < inModes.size(); ++i) {
          RunLoopModes modes;
          if (inModes[i].first) modes.push_back("even");
          if (inModes[i].second) modes.push_back("odd");
          if (!modes.empty()) ++expected;
          loop->performInModes(modes, [&order, i] { order.push_back(i); });
          if (i < turns.size()) loop->turn(names[turns[i]]);
        }
        // What was left over by the turns above runs now, first what is in both modes or even only.
        order.clear();
        loop->turn("even");
        RC_ASSERT(std::is_sorted(order.begin(), order.end()));
        order.clear();
        loop->turn("odd");
        RC_ASSERT(std::is_sorted(order.begin(), order.end()));
        RC_ASSERT(!loop->turn("even") && !loop->turn("odd"));
        RC_ASSERT(expected <= inModes.size());
      }));
}

// Modes

TEST_F(NSRunLoopTest, CommonModesAreTheDefaultModeAndThoseAdded) {
  loop->addCommonMode("run loop test common");
  for (const std::string mode : {"kCFRunLoopDefaultMode", "run loop test common"}) {
    loop->performInModes(kCommon, noteMode("block"));
    loop->turn(mode);
  }
  EXPECT_THAT(ran, ElementsAre("block in kCFRunLoopDefaultMode", "block in run loop test common"));
}

TEST_F(NSRunLoopTest, AModeThatBecomesCommonRunsWhatWasQueuedBefore) {
  const std::string mode = newMode();
  loop->performBlock(note("block"));
  EXPECT_FALSE(loop->turn(mode));
  loop->addCommonMode(mode);
  EXPECT_TRUE(loop->turn(mode));
}

TEST_F(NSRunLoopTest, TheCommonModesNameIsNoModeToRun) {
  loop->performInModes(kCommon, note("block"));
  EXPECT_FALSE(loop->runMode(NSRunLoopCommonModes, kForEver));
  EXPECT_TRUE(loop->turn());
}

TEST_F(NSRunLoopTest, TheCurrentModeIsTheInnermost) {
  loop->performBlock([&] {
    loop->performInModes(kPanel, noteMode("inner"));
    loop->turn("panel");
    noteMode("outer")();
  });
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("inner in panel", "outer in kCFRunLoopDefaultMode"));
  EXPECT_EQ(loop->currentMode(), std::nullopt);
}

// Running

TEST_F(NSRunLoopTest, RunningAModeWithNothingAttachedReturnsAtOnce) {
  loop->performInModes(kPanel, note("elsewhere"));
  EXPECT_FALSE(loop->runMode("run loop test empty", kForEver));
  loop->turn("panel");
}

TEST_F(NSRunLoopTest, RunningAModeReturnsAfterOneBatch) {
  loop->performBlock([&] { loop->performBlock(note("next batch")); });
  loop->performBlock(note("same batch"));
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, kForEver));
  EXPECT_THAT(ran, ElementsAre("same batch"));
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, kForEver));
}

TEST_F(NSRunLoopTest, RunningAModeReturnsAtTheDate) {
  const auto timer = loop->scheduleTimer(10, kDefault, note("too late"));
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, clock->now()));
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(NSRunLoopTest, RunningUntilAPastDateTakesOneTurn) {
  loop->performBlock(note("a"));
  loop->runUntilDate(clock->now() - seconds(1));
  EXPECT_THAT(ran, ElementsAre("a"));
}

TEST_F(NSRunLoopTest, RunningUntilADateWaitsForItWithNothingAttached) {
  const auto limit = clock->now() + seconds(5);
  std::thread other([&] {
    clock->advance(seconds(5));
    loop->wakeUp();
  });
  loop->runUntilDate(limit);
  other.join();
}

TEST_F(NSRunLoopTest, APostFromAnotherThreadWakesAWaitingLoop) {
  std::thread poster([&] { loop->performBlock([&] { loop->stop(); }); });
  loop->run();
  poster.join();
}

TEST_F(NSRunLoopTest, StoppingFromAnotherThreadEndsTheRun) {
  std::thread other;
  loop->performBlock([&] { other = std::thread([&] { loop->stop(); }); });
  loop->run();
  other.join();
}

TEST_F(NSRunLoopTest, StoppingEndsTheRunAfterTheCalloutAndLeavesTheRest) {
  loop->performBlock([&] {
    loop->stop();
    ran.push_back("stopping");
  });
  loop->performBlock(note("left"));
  loop->run();
  EXPECT_THAT(ran, ElementsAre("stopping"));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("stopping", "left"));
}

TEST_F(NSRunLoopTest, StoppingEndsOnlyTheInnermostRun) {
  loop->performBlock([&] {
    loop->performBlock([&] { loop->stop(); });
    loop->run();
    ran.push_back("inner ended");
  });
  loop->performBlock(note("outer goes on"));
  loop->turn();
  loop->turn();
  EXPECT_THAT(ran, testing::UnorderedElementsAre("inner ended", "outer goes on"));
}

TEST_F(NSRunLoopTest, StoppingALoopThatDoesNotRunHasNoEffect) {
  loop->stop();
  loop->performBlock(note("a"));
  EXPECT_TRUE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("a"));
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

TEST_F(NSRunLoopTest, AnExceptionLeavesTheRunCallAndTheRestRunsLater) {
  loop->performBlock([] { throw std::runtime_error("callout"); });
  loop->performBlock(note("after"));
  EXPECT_THROW(loop->run(), std::runtime_error);
  EXPECT_THAT(ran, IsEmpty());
  EXPECT_EQ(loop->currentMode(), std::nullopt);
  EXPECT_TRUE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("after"));
}

TEST_F(NSRunLoopTest, AnExceptionOfAnInnerRunPassesThroughTheOuter) {
  loop->performBlock([&] {
    loop->performBlock([] { throw std::runtime_error("inner"); });
    loop->turn();
  });
  loop->performBlock(note("after"));
  EXPECT_THROW(loop->turn(), std::runtime_error);
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("after"));
}

// Threads

TEST_F(NSRunLoopTest, EveryThreadHasALoopOfItsOwn) {
  Ref<NSRunLoop> other;
  std::thread([&] { other = NSRunLoop::currentRunLoop(); }).join();
  EXPECT_NE(other, loop);
  EXPECT_EQ(NSRunLoop::mainRunLoop(), loop);
}

TEST_F(NSRunLoopTest, TheMainLoopIsTheInitialThreadsFromAnyThread) {
  Ref<NSRunLoop> main;
  std::thread([&] { main = NSRunLoop::mainRunLoop(); }).join();
  EXPECT_EQ(main, loop);
}

TEST_F(NSRunLoopTest, SourcesMayOutliveTheirLoop) {
  std::unique_ptr<RunLoopSource> timer;
  std::thread([&] {
    timer = NSRunLoop::currentRunLoop()->scheduleTimer(0, kDefault, [] {});
  }).join();
  timer.reset();
}

/// What making a run loop on a new thread throws that may open so many descriptors more.
std::exception_ptr raisedWithDescriptors(rlim_t more) {
  std::exception_ptr raised;
  std::thread([&] {
    const DescriptorLimit limit(more);
    try {
      NSRunLoop::currentRunLoop();
    } catch (...) {
      raised = std::current_exception();
    }
  }).join();
  return raised;
}

TEST_F(NSRunLoopTest, ThatCannotBeMadeThrowsAndLeavesNoDescriptorOpen) {
  // UndefinedBehaviorSanitizer needs a descriptor for its first look at the category's class.
  ASSERT_FALSE(std::make_error_code(std::errc::too_many_files_open).message().empty());
  const std::size_t before = openDescriptors();
  for (const rlim_t more : {rlim_t{0}, rlim_t{1}}) {
    const std::exception_ptr raised = raisedWithDescriptors(more);
    ASSERT_NE(raised, nullptr) << more;
    EXPECT_THROW(std::rethrow_exception(raised), std::system_error) << more;
    EXPECT_EQ(openDescriptors(), before) << more;
  }
}

}  // namespace
}  // namespace rvf
