// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/RVFRunLoopOperation.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSNumber.h"
#include "tests/Platform/RunLoop/OperationRecorder.h"
#include "tests/RVFoundation/BackgroundExecution/AnnouncedKeys.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Notes what is reported, and raises only on request.
class Noting final : public NSAssertionHandler {
 public:
  explicit Noting(bool raises) : raises_(raises) {}
  void handleFailureInMethod(SEL selector, const NSObject* object, std::string_view file, int line,
                             std::string_view description) override {
    reports.push_back("-[" + std::string(class_getName(object->isa())) + " " +
                      std::string(selector.name()) + "] " + std::string(file) + ":" +
                      std::to_string(line) + ":" + std::string(description));
    if (raises_) NSException::raise(NSInternalInconsistencyException, description);
  }
  std::vector<std::string> reports;

 private:
  const bool raises_;
};

/// What this thread's assertion handler is told while the call is made.
template <class Call>
std::vector<std::string> reportsOf(Call&& call, bool raises = true) {
  const auto handler = std::make_shared<Noting>(raises);
  NSAssertionHandler::setCurrentHandler(handler);
  try {
    call();
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
  }
  NSAssertionHandler::setCurrentHandler(nullptr);
  return handler->reports;
}

constexpr const char* kNotMain =
    "-[RVFRunLoopOperation start] RVFoundation/RVFRunLoopOperation:29:";
constexpr const char* kStartedTwice =
    "-[RVFRunLoopOperation start] RVFoundation/RVFRunLoopOperation:30:";
constexpr const char* kNoBlock =
    "-[RVFRunLoopOperation start] RVFoundation/RVFRunLoopOperation:31:";
constexpr const char* kNotForward =
    "-[RVFRunLoopOperation setState:] RVFoundation/RVFRunLoopOperation:66:";

class RVFRunLoopOperationTest : public testing::Test {
 protected:
  void turn() {
    while (loop->turn()) {
    }
  }
  /// An operation that counts its launches and goes on.
  Ref<RVFRunLoopOperation> launching() {
    const auto made = std::make_shared<RVFRunLoopOperation>();
    made->setExecutionBlock([this] { ++launches; });
    return made;
  }

  const Ref<NSRunLoop> loop = NSRunLoop::mainRunLoop();
  const Ref<NSOperationQueue> mainQueue = NSOperationQueue::mainQueue();
  const Ref<NSError> failure = NSError::errorWithDomain("RVFErrorDomain", 310);
  int launches = 0;
  const Ref<RVFRunLoopOperation> operation = launching();
};

TEST_F(RVFRunLoopOperationTest, ANewOneIsNotStarted) {
  const auto made = std::make_shared<RVFRunLoopOperation>();
  EXPECT_EQ(made->state(), 0);
  EXPECT_FALSE(made->executionBlock());
  EXPECT_EQ(made->error(), nullptr);
  EXPECT_FALSE(made->isExecuting());
  EXPECT_FALSE(made->isFinished());
  EXPECT_TRUE(made->isReady());
}

// The transitions, each with all that observers are told

TEST_F(RVFRunLoopOperationTest, StartedItExecutesUntilItIsToldToFinish) {
  const auto recorder = OperationRecorder::of(operation);
  operation->start();
  EXPECT_EQ(launches, 1);
  EXPECT_EQ(operation->state(), 1);
  EXPECT_TRUE(operation->isExecuting());
  EXPECT_FALSE(operation->isFinished());
  EXPECT_THAT(recorder->told, ElementsAre("will isExecuting 0", "did isExecuting 1"));
}

TEST_F(RVFRunLoopOperationTest, TheBlockRunsWhenItIsExecuting) {
  std::vector<std::string> toldBefore;
  const auto recorder = OperationRecorder::of(operation);
  operation->setExecutionBlock([&] { toldBefore = recorder->take(); });
  operation->start();
  EXPECT_THAT(toldBefore, ElementsAre("will isExecuting 0", "did isExecuting 1"));
}

TEST_F(RVFRunLoopOperationTest, FinishingTellsOfBeingFinishedWithinNoLongerExecuting) {
  operation->start();
  const auto recorder = OperationRecorder::of(operation);
  operation->finishWithError(nullptr);
  EXPECT_EQ(operation->state(), 2);
  EXPECT_FALSE(operation->isExecuting());
  EXPECT_TRUE(operation->isFinished());
  EXPECT_THAT(recorder->told, ElementsAre("will isExecuting 1", "will isFinished 0",
                                          "did isFinished 1", "did isExecuting 0"));
}

TEST_F(RVFRunLoopOperationTest, CancelledBeforeItIsStartedItTellsOnlyOfBeingFinished) {
  operation->setError(failure);
  operation->cancel();
  EXPECT_EQ(operation->state(), 0);
  const auto recorder = OperationRecorder::of(operation);
  operation->start();
  EXPECT_EQ(launches, 0);
  EXPECT_EQ(operation->state(), 2);
  EXPECT_EQ(operation->error(), nullptr);
  EXPECT_FALSE(operation->executionBlock());
  EXPECT_THAT(recorder->told, ElementsAre("will isFinished 0", "did isFinished 1"));
}

TEST_F(RVFRunLoopOperationTest, CancelledWhileItExecutesItGoesOn) {
  operation->start();
  operation->cancel();
  EXPECT_EQ(operation->state(), 1);
  operation->finishWithError(failure);
  EXPECT_EQ(operation->error(), failure);
  EXPECT_TRUE(operation->isCancelled());
}

TEST_F(RVFRunLoopOperationTest, FinishedWithoutHavingBeenStartedItTellsOnlyOfThat) {
  const auto recorder = OperationRecorder::of(operation);
  operation->finishWithError(failure);
  EXPECT_EQ(operation->state(), 2);
  EXPECT_THAT(recorder->told, ElementsAre("will isFinished 0", "did isFinished 1"));
}

TEST_F(RVFRunLoopOperationTest, AFinishedOneNeverChangesItsStateAgain) {
  operation->start();
  operation->finishWithError(nullptr);
  const auto recorder = OperationRecorder::of(operation);
  for (const std::int64_t state : {-1, 0, 1, 2, 3, 100})
    EXPECT_THAT(reportsOf([&] { operation->setState(state); }), ElementsAre(kNotForward)) << state;
  EXPECT_EQ(operation->state(), 2);
  EXPECT_THAT(recorder->told, IsEmpty());
}

TEST_F(RVFRunLoopOperationTest, AMoveThatIsRefusedIsNotAnnounced) {
  const auto announced = AnnouncedKeys::of(operation, {"state"});
  for (const std::int64_t state : {0, -1})
    EXPECT_THAT(reportsOf([&] { operation->setState(state); }), ElementsAre(kNotForward)) << state;
  EXPECT_THAT(announced->told, IsEmpty());
  operation->setState(1);
  EXPECT_THAT(announced->told, ElementsAre("state"));
}

TEST_F(RVFRunLoopOperationTest, FromNotStartedItMayMoveToFinished) {
  const auto recorder = OperationRecorder::of(operation);
  operation->setState(2);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_TRUE(operation->executionBlock());
  EXPECT_THAT(recorder->told, ElementsAre("will isFinished 0", "did isFinished 1"));
}

TEST_F(RVFRunLoopOperationTest, FromExecutingItMayMoveBeyondTheKnownStates) {
  operation->start();
  const auto recorder = OperationRecorder::of(operation);
  operation->setState(3);
  EXPECT_EQ(operation->state(), 3);
  EXPECT_FALSE(operation->isExecuting() || operation->isFinished());
  EXPECT_THAT(recorder->told, ElementsAre("will isExecuting 1", "did isExecuting 0"));
  EXPECT_THAT(reportsOf([&] { operation->finishWithError(nullptr); }), ElementsAre(kNotForward));
}

TEST_F(RVFRunLoopOperationTest, AStateBeyondTheKnownOnesIsOneForward) {
  const auto recorder = OperationRecorder::of(operation);
  operation->setState(3);
  EXPECT_EQ(operation->state(), 3);
  EXPECT_FALSE(operation->isExecuting() || operation->isFinished());
  EXPECT_THAT(recorder->told, IsEmpty());
}

// The work

TEST_F(RVFRunLoopOperationTest, ItKeepsTheErrorAndDropsTheBlock) {
  operation->start();
  operation->finishWithError(failure);
  EXPECT_EQ(operation->error(), failure);
  EXPECT_FALSE(operation->executionBlock());
}

TEST_F(RVFRunLoopOperationTest, TheErrorIsThereWhenObserversAreTold) {
  std::vector<Ref<NSError>> seen;
  const auto dependent =
      std::make_shared<NSBlockOperation>([&] { seen.push_back(operation->error()); });
  dependent->addDependency(operation);
  mainQueue->addOperation(dependent);
  operation->start();
  operation->finishWithError(failure);
  turn();
  EXPECT_THAT(seen, ElementsAre(failure));
}

TEST_F(RVFRunLoopOperationTest, ABlockMayFinishFromWithinAndIsNotDestroyedWhileItRuns) {
  auto token = std::make_shared<int>(7);
  const std::weak_ptr<int> isAlive = token;
  int seen = 0;
  {
    const NSAutoreleasePool pool;
    operation->setExecutionBlock([this, held = std::move(token), &seen] {
      operation->finishWithError(nullptr);
      seen = *held;
    });
    operation->start();
    EXPECT_EQ(operation->state(), 2);
    EXPECT_FALSE(operation->executionBlock());
    EXPECT_FALSE(isAlive.expired());  // until the scope ends
  }
  EXPECT_EQ(seen, 7);
  EXPECT_TRUE(isAlive.expired());
}

TEST_F(RVFRunLoopOperationTest, ABlockMayReplaceItself) {
  operation->setExecutionBlock([this] {
    operation->setExecutionBlock([this] { launches += 100; });
    ++launches;
  });
  operation->start();
  EXPECT_EQ(launches, 1);
}

TEST_F(RVFRunLoopOperationTest, ABlockMayDropTheLastReference) {
  auto only = std::make_shared<RVFRunLoopOperation>();
  const std::weak_ptr<RVFRunLoopOperation> isAlive = only;
  {
    const NSAutoreleasePool pool;
    only->setExecutionBlock([&only] {
      const auto finishing = only;
      only = nullptr;
      finishing->finishWithError(nullptr);
    });
    only->start();
  }
  EXPECT_TRUE(isAlive.expired());
}

TEST_F(RVFRunLoopOperationTest, IsNotConcurrentAlthoughItsWorkGoesOn) {
  EXPECT_FALSE(operation->isConcurrent());
  operation->start();
  EXPECT_FALSE(operation->isConcurrent());
}

// Misuse

TEST_F(RVFRunLoopOperationTest, OffTheMainThreadLine29IsReported) {
  std::vector<std::string> reports;
  std::thread([&] { reports = reportsOf([&] { operation->start(); }); }).join();
  EXPECT_THAT(reports, ElementsAre(kNotMain));
  EXPECT_EQ(operation->state(), 0);
  EXPECT_EQ(launches, 0);
}

TEST_F(RVFRunLoopOperationTest, StartedAgainLine30IsReported) {
  operation->start();
  EXPECT_THAT(reportsOf([&] { operation->start(); }), ElementsAre(kStartedTwice));
  operation->finishWithError(nullptr);
  EXPECT_THAT(reportsOf([&] { operation->start(); }), ElementsAre(kStartedTwice));
  EXPECT_EQ(launches, 1);
}

TEST_F(RVFRunLoopOperationTest, WithoutABlockLine31IsReported) {
  operation->setExecutionBlock(nullptr);
  EXPECT_THAT(reportsOf([&] { operation->start(); }), ElementsAre(kNoBlock));
  operation->cancel();
  EXPECT_THAT(reportsOf([&] { operation->start(); }), ElementsAre(kNoBlock));
  EXPECT_EQ(operation->state(), 0);
}

TEST_F(RVFRunLoopOperationTest, FinishedTwiceLine66IsReported) {
  operation->start();
  operation->finishWithError(nullptr);
  EXPECT_THAT(reportsOf([&] { operation->finishWithError(failure); }), ElementsAre(kNotForward));
  EXPECT_EQ(operation->error(), failure);  // stored before the state is moved
  EXPECT_EQ(operation->state(), 2);
}

TEST_F(RVFRunLoopOperationTest, TheSameStateTwiceIsReported) {
  EXPECT_THAT(reportsOf([&] { operation->setState(0); }), ElementsAre(kNotForward));
  operation->setState(1);
  EXPECT_THAT(reportsOf([&] { operation->setState(1); }), ElementsAre(kNotForward));
  EXPECT_EQ(operation->state(), 1);
}

TEST_F(RVFRunLoopOperationTest, TheDefaultHandlerRaisesWithAnEmptyReason) {
  testing::internal::CaptureStderr();
  try {
    operation->setState(0);
    ADD_FAILURE() << "nothing raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
    EXPECT_EQ(exception.reason(), "");
  }
  const std::string line = testing::internal::GetCapturedStderr();
  EXPECT_THAT(line, testing::HasSubstr("RVFoundation/RVFRunLoopOperation"));
  EXPECT_THAT(line, testing::HasSubstr("66"));
}

TEST_F(RVFRunLoopOperationTest, SeveralMisusesAtOnceAreReportedInTheOrderOfTheirLines) {
  const auto wrong = std::make_shared<RVFRunLoopOperation>();
  wrong->setState(1);
  std::vector<std::string> reports;
  std::thread([&] { reports = reportsOf([&] { wrong->start(); }, false); }).join();
  EXPECT_THAT(reports, ElementsAre(kNotMain, kStartedTwice, kNoBlock, kNotForward));
  std::thread([&] { reports = reportsOf([&] { wrong->start(); }); }).join();
  EXPECT_THAT(reports, ElementsAre(kNotMain));
}

TEST_F(RVFRunLoopOperationTest, AHandlerThatReturnsLetsTheMisuseGoOn) {
  std::vector<std::string> reports;
  std::thread([&] { reports = reportsOf([&] { operation->start(); }, false); }).join();
  EXPECT_THAT(reports, ElementsAre(kNotMain));
  EXPECT_EQ(launches, 1);
  const auto recorder = OperationRecorder::of(operation);
  reports = reportsOf([&] { operation->start(); }, false);
  EXPECT_THAT(reports, ElementsAre(kStartedTwice, kNotForward));
  EXPECT_EQ(launches, 2);
  EXPECT_THAT(recorder->take(), ElementsAre("will isExecuting 1", "did isExecuting 1"));
  const auto empty = std::make_shared<RVFRunLoopOperation>();
  EXPECT_THAT(reportsOf([&] { empty->start(); }, false), ElementsAre(kNoBlock));
  EXPECT_EQ(empty->state(), 1);
}

// In queues

TEST_F(RVFRunLoopOperationTest, TheMainQueueStartsItAndGoesOnWhenItIsFinished) {
  const auto next = launching();
  mainQueue->addOperation(operation);
  mainQueue->addOperation(next);
  EXPECT_EQ(launches, 0);
  turn();
  EXPECT_EQ(launches, 1);
  operation->finishWithError(nullptr);
  EXPECT_EQ(next->state(), 0);
  turn();
  EXPECT_EQ(next->state(), 1);
  next->finishWithError(failure);
  EXPECT_THAT(mainQueue->operations(), IsEmpty());
}

TEST_F(RVFRunLoopOperationTest, OneWithoutABlockDoesNotHoldUpTheMainQueue) {
  mainQueue->addOperation(std::make_shared<RVFRunLoopOperation>());
  mainQueue->addOperation(operation);
  EXPECT_THAT(reportsOf([&] { turn(); }), ElementsAre(kNoBlock));
  turn();
  EXPECT_EQ(launches, 1);
  EXPECT_THAT(mainQueue->operations(), ElementsAre(operation));
  operation->finishWithError(nullptr);
}

TEST_F(RVFRunLoopOperationTest, TheMainQueueFinishesACancelledOne) {
  operation->cancel();
  mainQueue->addOperation(operation);
  turn();
  EXPECT_EQ(operation->state(), 2);
  EXPECT_EQ(launches, 0);
  EXPECT_THAT(mainQueue->operations(), IsEmpty());
}

TEST_F(RVFRunLoopOperationTest, OperationsOfAnOrdinaryQueueMayDependOnIt) {
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto dependent = std::make_shared<NSBlockOperation>([] {});
  dependent->addDependency(operation);
  queue->addOperation(dependent);
  mainQueue->addOperation(operation);
  turn();
  EXPECT_FALSE(dependent->isFinished());
  operation->finishWithError(nullptr);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(dependent->isFinished());
}

/// A thousand operations that finish from later callbacks, each after some of those before it.
TEST_F(RVFRunLoopOperationTest, AGraphOfAThousandRunsInItsOrder) {
  std::minstd_rand random(1);
  std::vector<Ref<RVFRunLoopOperation>> all;
  int finishedTooEarly = 0;
  for (std::size_t i = 0; i < 1000; ++i) {
    const auto made = std::make_shared<RVFRunLoopOperation>();
    made->setExecutionBlock([this, &finishedTooEarly, weak = std::weak_ptr(made)] {
      for (const auto& dependency : weak.lock()->dependencies())
        if (!dependency->isFinished()) ++finishedTooEarly;
      loop->performBlock([this, weak] {
        ++launches;
        weak.lock()->finishWithError(nullptr);
      });
    });
    for (auto k = random() % 5; i > 0 && k > 0; --k)
      made->addDependency(all[random() % i]);
    all.push_back(made);
  }
  std::vector<Ref<RVFRunLoopOperation>> shuffled = all;
  std::shuffle(shuffled.begin(), shuffled.end(), random);
  for (const auto& made : shuffled)
    mainQueue->addOperation(made);
  turn();
  EXPECT_EQ(launches, 1000);
  EXPECT_EQ(finishedTooEarly, 0);
}

// The runtime

TEST_F(RVFRunLoopOperationTest, ItsPropertiesCanBeObserved) {
  const auto announced = AnnouncedKeys::of(operation, {"state", "executionBlock", "error"});
  operation->start();
  EXPECT_THAT(announced->told, ElementsAre("state"));
  operation->finishWithError(nullptr);
  EXPECT_THAT(announced->told, ElementsAre("state", "error", "state", "executionBlock"));
}

TEST_F(RVFRunLoopOperationTest, IsKnownToTheRuntime) {
  std::vector<std::string> attributes;
  for (const auto& property : class_copyPropertyList(objc_getClass("RVFRunLoopOperation")))
    attributes.push_back(property.name + " " + property.attributes);
  EXPECT_THAT(attributes,
              ElementsAre("state Tq,N,V_state", "executionBlock T@?,C,N,V_executionBlock",
                          "error T@\"NSError\",&,N,V_error"));
  EXPECT_TRUE(operation->isKindOfClass(objc_getClass("NSOperation")));
  send(operation, SEL("start"));
  EXPECT_TRUE(send<bool>(operation, SEL("isExecuting")));
  send(operation, SEL("finishWithError:"), failure);
  EXPECT_EQ(send<Ref<NSError>>(operation, SEL("error")), failure);
  EXPECT_TRUE(valueForKey(*operation, "state")->isEqual(box(2).get()));
  EXPECT_TRUE(valueForKey(*operation, "isFinished")->isEqual(box(true).get()));
}

}  // namespace
}  // namespace rvf
