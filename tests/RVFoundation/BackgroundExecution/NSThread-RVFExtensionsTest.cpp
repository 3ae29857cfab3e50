// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/NSThread-RVFExtensions.h"

#include <gmock/gmock.h>

#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "tests/Platform/RunLoop/ServingThread.h"

namespace rvf {
namespace {

using testing::ElementsAre;

class NSThreadExtensionsTest : public testing::Test {
 protected:
  std::function<void()> note(const std::string& text) {
    return [this, text] { ran.push_back(text); };
  }
  /// Returns once everything that was queued on the thread in common modes has run.
  void waitForQueued() {
    RVF_performBlock(
        serving.thread(), [] {}, true);
  }

  std::vector<std::string> ran;
  ServingThread serving;
};

TEST_F(NSThreadExtensionsTest, ABlockThatItsOwnerKeepsRunsEachTime) {
  const std::function<void()> kept = note("kept");
  RVF_performBlock(NSThread::currentThread(), kept);
  RVF_performBlock(NSThread::currentThread(), kept);
  EXPECT_THAT(ran, ElementsAre("kept", "kept"));
}

TEST_F(NSThreadExtensionsTest, OnTheCurrentThreadABlockRunsAtOnceWhateverTheArguments) {
  const auto current = NSThread::currentThread();
  RVF_performBlock(current, note("short"));
  RVF_performBlock(current, note("no wait"), false);
  RVF_performBlock(current, note("wait"), true);
  RVF_performBlock(current, note("no modes"), false, {});
  EXPECT_THAT(ran, ElementsAre("short", "no wait", "wait", "no modes"));
}

TEST_F(NSThreadExtensionsTest, WaitingReturnsWhenTheBlockHasRunThere) {
  RVF_performBlock(
      serving.thread(),
      [&] { ran.push_back(serving.thread()->isCurrentThread() ? "there" : "elsewhere"); }, true);
  EXPECT_THAT(ran, ElementsAre("there"));
}

TEST_F(NSThreadExtensionsTest, BlocksRunInTheOrderSent) {
  RVF_performBlock(serving.thread(), note("a"));
  RVF_performBlock(serving.thread(), note("b"), false);
  RVF_performBlock(serving.thread(), note("c"), true);
  EXPECT_THAT(ran, ElementsAre("a", "b", "c"));
}

TEST_F(NSThreadExtensionsTest, WithoutWaitingTheCallDoesNotDependOnTheThread) {
  std::promise<void> let;
  RVF_performBlock(serving.thread(), [&] { let.get_future().wait(); });
  RVF_performBlock(serving.thread(), note("a"));
  EXPECT_TRUE(ran.empty());
  let.set_value();
  waitForQueued();
  EXPECT_THAT(ran, ElementsAre("a"));
}

TEST_F(NSThreadExtensionsTest, ABlockWaitsForItsModes) {
  RVF_performBlock(serving.thread(), note("panel"), false, {"panel"});
  RVF_performBlock(serving.thread(), note("default"), false, {std::string(NSDefaultRunLoopMode)});
  waitForQueued();
  RVF_performBlock(
      serving.thread(), [] { NSRunLoop::currentRunLoop()->turn("panel"); }, true);
  EXPECT_THAT(ran, ElementsAre("default", "panel"));
}

TEST_F(NSThreadExtensionsTest, WaitingInAModeOfItsOwnLastsUntilTheThreadRunsThatMode) {
  RVF_performBlock(serving.thread(), [this] {
    ran.push_back("before");
    while (ran.size() < 2)
      NSRunLoop::currentRunLoop()->runMode("panel", NSRunLoop::Clock::time_point::max());
    ran.push_back("after");
  });
  // Posted into a mode that the thread may reach before or after this.
  RVF_performBlock(serving.thread(), note("panel"), true, {"panel"});
  waitForQueued();
  EXPECT_THAT(ran, ElementsAre("before", "panel", "after"));
}

TEST_F(NSThreadExtensionsTest, ABlockMayPerformOnItsOwnAndOnOtherThreads) {
  ServingThread other;
  RVF_performBlock(
      serving.thread(),
      [&] {
        RVF_performBlock(serving.thread(), note("own, at once"), true);
        RVF_performBlock(
            other.thread(),
            [&] {
              ran.push_back("other");
              RVF_performBlock(serving.thread(), note("back, later"));
            },
            true);
        ran.push_back("own, after the other");
      },
      true);
  waitForQueued();
  EXPECT_THAT(ran, ElementsAre("own, at once", "other", "own, after the other", "back, later"));
}

TEST_F(NSThreadExtensionsTest, WithoutModesABlockIsDropped) {
  const auto witness = std::make_shared<int>();
  RVF_performBlock(serving.thread(), [witness] {}, false, {});
  RVF_performBlock(serving.thread(), [witness] {}, true, {});
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSThreadExtensionsTest, WhatAnAwaitedBlockRaisesIsRaisedInTheCaller) {
  EXPECT_THROW(RVF_performBlock(
                   serving.thread(), [] { throw std::runtime_error("refused"); }, true),
               std::runtime_error);
  waitForQueued();
}

TEST_F(NSThreadExtensionsTest, AFinishedThreadRaisesInACallerThatWaits) {
  serving.finish();
  try {
    RVF_performBlock(serving.thread(), note("never"), true);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSDestinationInvalidException);
  }
  EXPECT_TRUE(ran.empty());
}

TEST_F(NSThreadExtensionsTest, AFinishedThreadDropsWhatNobodyWaitsFor) {
  serving.finish();
  RVF_performBlock(serving.thread(), note("never"), false);
  RVF_performBlock(serving.thread(), note("never"));
  EXPECT_TRUE(ran.empty());
}

TEST_F(NSThreadExtensionsTest, AnAbsentThreadRunsNothing) {
  RVF_performBlock(nullptr, note("never"));
  RVF_performBlock(nullptr, note("never"), true);
  EXPECT_TRUE(ran.empty());
}

TEST_F(NSThreadExtensionsTest, RunBlockOpensNoReleaseScope) {
  const auto witness = std::make_shared<int>();
  {
    const NSAutoreleasePool pool;
    NSThread_RVFExtensions::RVF_runBlock([&] { NSAutoreleasePool::addObject(witness); });
    EXPECT_EQ(witness.use_count(), 2);
  }
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSThreadExtensionsTest, InTheBackgroundABlockRunsOnAThreadOfItsOwn) {
  std::promise<Ref<NSThread>> found;
  NSThread_RVFExtensions::RVF_performBlockInBackground(
      [&] { found.set_value(NSThread::currentThread()); });
  const auto thread = found.get_future().get();
  EXPECT_NE(thread, NSThread::currentThread());
  EXPECT_NE(thread, serving.thread());
}

TEST_F(NSThreadExtensionsTest, InTheBackgroundNoReleaseScopeIsOpen) {
  struct AnswersWhenReleased {
    std::shared_ptr<int> witness = std::make_shared<int>();
    std::promise<long> answer;
    ~AnswersWhenReleased() { answer.set_value(witness.use_count()); }
  };
  auto block = std::make_shared<AnswersWhenReleased>();
  auto countAfterBlock = block->answer.get_future();
  // Released together with the block, before the thread ends: what it handed over still lives.
  NSThread_RVFExtensions::RVF_performBlockInBackground(
      [block = std::move(block)] { NSAutoreleasePool::addObject(block->witness); });
  EXPECT_EQ(countAfterBlock.get(), 2);
}

}  // namespace
}  // namespace rvf
