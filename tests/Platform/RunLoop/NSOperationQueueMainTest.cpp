// SPDX-License-Identifier: Apache-2.0
// The queue of the main thread.
#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "tests/Platform/RunLoop/LaterOperation.h"
#include "tests/Platform/RunLoop/OperationQueueFixture.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NSOperationQueueMainTest : public OperationQueueFixture {
 protected:
  void turn() {
    while (loop->turn()) {
    }
  }

  const Ref<NSRunLoop> loop = NSRunLoop::mainRunLoop();
  const Ref<NSOperationQueue> mainQueue = NSOperationQueue::mainQueue();
};

TEST_F(NSOperationQueueMainTest, ThereIsOne) {
  EXPECT_EQ(NSOperationQueue::mainQueue(), mainQueue);
}

TEST_F(NSOperationQueueMainTest, OperationsRunOnTheMainThreadInOrderAndNotWithinTheCall) {
  std::thread([&] {
    mainQueue->addOperationWithBlock(
        [&] { ran.push_back(NSThread::isMainThread() ? "main" : "other"); });
  }).join();
  mainQueue->addOperationWithBlock(note("second"));
  EXPECT_THAT(ran, IsEmpty());
  turn();
  EXPECT_THAT(ran, ElementsAre("main", "second"));
}

TEST_F(NSOperationQueueMainTest, TheNextWaitsUntilTheOneBeforeIsFinished) {
  const auto later = std::make_shared<LaterOperation>(note("later"));
  mainQueue->addOperation(later);
  mainQueue->addOperationWithBlock(note("next"));
  turn();
  EXPECT_THAT(ran, ElementsAre("later"));
  later->finish();
  EXPECT_THAT(ran, ElementsAre("later"));  // never within the announcement
  turn();
  EXPECT_THAT(ran, ElementsAre("later", "next"));
}

TEST_F(NSOperationQueueMainTest, AnOperationMayBeFinishedByAnotherThread) {
  const auto later = std::make_shared<LaterOperation>();
  mainQueue->addOperation(later);
  mainQueue->addOperationWithBlock(note("next"));
  turn();
  std::thread([&] { later->finish(); }).join();
  turn();
  EXPECT_THAT(ran, ElementsAre("next"));
}

TEST_F(NSOperationQueueMainTest, ACancelledOperationIsStartedAndMakesRoomForTheNext) {
  const auto cancelled = std::make_shared<LaterOperation>(note("cancelled"));
  cancelled->cancel();
  mainQueue->addOperation(cancelled);
  mainQueue->addOperationWithBlock(note("next"));
  turn();
  EXPECT_EQ(cancelled->starts, 1);
  EXPECT_THAT(ran, ElementsAre("next"));
}

TEST_F(NSOperationQueueMainTest, OperationsNeedACommonMode) {
  mainQueue->addOperationWithBlock(note("a"));
  while (loop->turn("private mode of the operation queue's test")) {
  }
  EXPECT_THAT(ran, IsEmpty());
  turn();
  EXPECT_THAT(ran, ElementsAre("a"));
}

TEST_F(NSOperationQueueMainTest, ItsLimitIsOneForGood) {
  mainQueue->setMaxConcurrentOperationCount(5);
  EXPECT_EQ(mainQueue->maxConcurrentOperationCount(), 1);
}

TEST_F(NSOperationQueueMainTest, WaitingForItOnTheMainThreadRaises) {
  mainQueue->addOperationWithBlock(note("a"));
  EXPECT_EQ(raised([&] { mainQueue->waitUntilAllOperationsAreFinished(); }),
            "NSInternalInconsistencyException");
  turn();
  mainQueue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("a"));
}

TEST_F(NSOperationQueueMainTest, AnotherThreadMayWaitForIt) {
  mainQueue->addOperationWithBlock(note("a"));
  std::thread waiting([&] {
    mainQueue->waitUntilAllOperationsAreFinished();
    note("waited")();
  });
  serveMainQueue();
  waiting.join();
  EXPECT_THAT(ran, ElementsAre("a", "waited"));
}

TEST_F(NSOperationQueueMainTest, AnExceptionLeavesTheRunCallAndTheNextOperationRuns) {
  mainQueue->addOperationWithBlock([] { throw std::runtime_error("refused"); });
  mainQueue->addOperationWithBlock(note("next"));
  mainQueue->addOperationWithBlock(note("and the one after"));
  EXPECT_THROW(turn(), std::runtime_error);
  turn();
  EXPECT_THAT(ran, ElementsAre("next", "and the one after"));
  mainQueue->addOperationWithBlock(note("later"));
  turn();
  EXPECT_EQ(ran.size(), 3U);
}

/// Throws out of `start` before it executes.
class Refusing final : public NSOperation {
 public:
  void start() override { throw std::runtime_error("refused"); }
};

TEST_F(NSOperationQueueMainTest, OneThatThrowsInsteadOfExecutingIsDropped) {
  const auto refusing = std::make_shared<Refusing>();
  const auto dependent = operationWithBlock(note("dependent"));
  dependent->addDependency(refusing);
  for (const auto& operation :
       {Ref<NSOperation>(refusing), dependent, operationWithBlock(note("next"))})
    mainQueue->addOperation(operation);
  EXPECT_THROW(turn(), std::runtime_error);
  turn();
  EXPECT_THAT(ran, ElementsAre("next"));
  EXPECT_THAT(mainQueue->operations(), ElementsAre(dependent));
  dependent->cancel();
  turn();
  EXPECT_THAT(mainQueue->operations(), IsEmpty());
}

TEST_F(NSOperationQueueMainTest, OneThatThrowsWhileItExecutesIsWaitedFor) {
  const auto later = std::make_shared<LaterOperation>([] { throw std::runtime_error("refused"); });
  mainQueue->addOperation(later);
  mainQueue->addOperationWithBlock(note("next"));
  EXPECT_THROW(turn(), std::runtime_error);
  turn();
  EXPECT_THAT(ran, IsEmpty());
  later->finish();
  turn();
  EXPECT_THAT(ran, ElementsAre("next"));
}

TEST_F(NSOperationQueueMainTest, OperationsThatAddOthersLetTheLoopTurn) {
  int left = 3;
  std::function<void()> again = [&] {
    if (--left > 0) mainQueue->addOperationWithBlock(again);
  };
  mainQueue->addOperationWithBlock(again);
  loop->turn();
  EXPECT_EQ(left, 2);
  turn();
  EXPECT_EQ(left, 0);
}

TEST_F(NSOperationQueueMainTest, EachOperationHasAReleaseScopeOfItsOwn) {
  const auto token = std::make_shared<int>();
  long usesInSecond = 0;
  mainQueue->addOperationWithBlock([&token] { NSAutoreleasePool::addObject(token); });
  mainQueue->addOperationWithBlock([&] { usesInSecond = token.use_count(); });
  turn();
  EXPECT_EQ(usesInSecond, 1);
}

TEST_F(NSOperationQueueMainTest, AnOperationThatRunsTheLoopIsNotOvertaken) {
  mainQueue->addOperationWithBlock([&] {
    note("begins")();
    turn();
    note("ends")();
  });
  mainQueue->addOperationWithBlock(note("next"));
  turn();
  EXPECT_THAT(ran, ElementsAre("begins", "ends", "next"));
}

TEST_F(NSOperationQueueMainTest, OperationsOfOtherQueuesMayDependOnItsOperations) {
  const auto first = operationWithBlock(note("main"));
  const auto second = operationWithBlock(note("worker"));
  second->addDependency(first);
  queue->addOperation(second);
  mainQueue->addOperation(first);
  turn();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("main", "worker"));
}

}  // namespace
}  // namespace rvf
