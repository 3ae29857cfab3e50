// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/RVFBlockQueue.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Done = RVFBlockQueue::Done;
using QueueRef = Ref<RVFBlockQueue>;

class RVFBlockQueueTest : public testing::Test {
 protected:
  /// A step that notes its name and is done at once, with `error`.
  RVFBlockQueue::Step step(std::string name, Ref<NSError> error = nullptr) {
    return [this, name, error](const QueueRef&, const Done& done) {
      events.push_back(name);
      done(error);
    };
  }
  /// A step that notes its name and keeps its done callback.
  RVFBlockQueue::Step pendingStep(std::string name) {
    return [this, name](const QueueRef&, const Done& done) {
      events.push_back(name);
      kept = done;
    };
  }
  RVFBlockQueue::Completion completion() {
    return [this](const Ref<NSError>& error) {
      events.push_back(error ? "failed " + error->domain() : "succeeded");
    };
  }

  const NSAutoreleasePool pool;
  const Ref<NSError> refused = NSError::errorWithDomain("Refused", 1);
  QueueRef queue = RVFBlockQueue::queue();
  std::vector<std::string> events;
  Done kept;
};

TEST_F(RVFBlockQueueTest, AnEmptyQueueCompletesWithinTheCall) {
  EXPECT_TRUE(queue->empty());
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("succeeded"));
}

TEST_F(RVFBlockQueueTest, StepsRunInTheOrderAddedAndThenTheCompletionOnce) {
  for (const char* name : {"a", "b", "c"})
    queue->addBlock(step(name));
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("a", "b", "c", "succeeded"));
  EXPECT_TRUE(queue->empty());
}

TEST_F(RVFBlockQueueTest, WithoutACompletionTheStepsRunAllTheSame) {
  queue->addBlock(step("a"));
  queue->executeQueue();
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(RVFBlockQueueTest, AnErrorEndsTheRunAndLeavesTheStepsBehindIt) {
  queue->addBlock(step("a"));
  queue->addBlock(step("b", refused));
  queue->addBlock(step("c"));
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("a", "b", "failed Refused"));
  EXPECT_FALSE(queue->empty());
}

TEST_F(RVFBlockQueueTest, TheCompletionGetsTheVeryErrorOfTheStep) {
  Ref<NSError> found;
  queue->addBlock(step("a", refused));
  queue->executeQueueUsingCompletion([&](const Ref<NSError>& error) { found = error; });
  EXPECT_EQ(found, refused);
}

TEST_F(RVFBlockQueueTest, AfterAnErrorALaterRunResumesWithTheNextStep) {
  queue->addBlock(step("a", refused));
  queue->addBlock(step("b"));
  queue->executeQueue();
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("a", "b", "succeeded"));
}

TEST_F(RVFBlockQueueTest, TheNextStepWaitsForTheDoneCallback) {
  queue->addBlock(pendingStep("a"));
  queue->addBlock(step("b"));
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("a"));
  kept(nullptr);
  EXPECT_THAT(events, ElementsAre("a", "b", "succeeded"));
}

TEST_F(RVFBlockQueueTest, TheRunningStepDoesNotCountAsWaiting) {
  queue->addBlock(pendingStep("a"));
  queue->executeQueue();
  EXPECT_TRUE(queue->empty());
  kept(nullptr);
}

TEST_F(RVFBlockQueueTest, AStepIsHandedItsQueue) {
  QueueRef found;
  queue->addBlock([&](const QueueRef& running, const Done& done) {
    found = running;
    done(nullptr);
  });
  queue->executeQueue();
  EXPECT_EQ(found, queue);
}

TEST_F(RVFBlockQueueTest, StepsThatAreDoneAtOnceNest) {
  queue->addBlock([&](const QueueRef&, const Done& done) {
    events.push_back("a begins");
    done(nullptr);
    events.push_back("a ends");
  });
  queue->addBlock(step("b"));
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("a begins", "b", "succeeded", "a ends"));
}

TEST_F(RVFBlockQueueTest, StepsAddedWhileRunningRunInTheSameRun) {
  queue->addBlock([&](const QueueRef& running, const Done& done) {
    running->addBlock(step("added by a"));
    done(nullptr);
  });
  queue->addBlock(step("b"));
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("b", "added by a", "succeeded"));
}

TEST_F(RVFBlockQueueTest, AStepAddedByTheCompletionWaitsForTheNextRun) {
  queue->executeQueueUsingCompletion([&](const Ref<NSError>&) { queue->addBlock(step("late")); });
  EXPECT_THAT(events, IsEmpty());
  queue->executeQueue();
  EXPECT_THAT(events, ElementsAre("late"));
}

TEST_F(RVFBlockQueueTest, TheCompletionIsClearedAfterTheCall) {
  queue->executeQueueUsingCompletion([&](const Ref<NSError>&) {
    events.push_back(queue->completion() ? "still set" : "cleared");
  });
  EXPECT_FALSE(queue->completion());
  queue->executeQueue();
  EXPECT_THAT(events, ElementsAre("still set"));
}

TEST_F(RVFBlockQueueTest, ACompletionThatIsSetByTheCompletionIsLost) {
  queue->executeQueueUsingCompletion(
      [&](const Ref<NSError>&) { queue->setCompletion(completion()); });
  EXPECT_FALSE(queue->completion());
  queue->executeQueue();
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(RVFBlockQueueTest, ARunStartedByTheCompletionKeepsItsStepsAndLosesItsCompletion) {
  queue->addBlock(step("a"));
  queue->executeQueueUsingCompletion([&](const Ref<NSError>&) {
    queue->addBlock(pendingStep("restarted"));
    queue->executeQueueUsingCompletion(completion());
  });
  EXPECT_FALSE(queue->completion());
  kept(nullptr);
  EXPECT_THAT(events, ElementsAre("a", "restarted"));
}

TEST_F(RVFBlockQueueTest, ACompletionReplacedByAStepIsTheOneThatIsCalled) {
  queue->addBlock([&](const QueueRef& running, const Done& done) {
    running->setCompletion(completion());
    done(nullptr);
  });
  queue->executeQueueUsingCompletion([](const Ref<NSError>&) { FAIL() << "was replaced"; });
  EXPECT_THAT(events, ElementsAre("succeeded"));
}

TEST_F(RVFBlockQueueTest, ACompletionMayClearItselfWhileItRuns) {
  const auto witness = std::make_shared<int>(7);
  queue->executeQueueUsingCompletion([&, witness](const Ref<NSError>&) {
    queue->setCompletion(nullptr);
    events.push_back(std::to_string(*witness));
  });
  EXPECT_THAT(events, ElementsAre("7"));
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(RVFBlockQueueTest, ACompletionThatThrowsIsClearedAllTheSame) {
  const auto refuse = [](const Ref<NSError>&) { throw std::runtime_error("refused"); };
  EXPECT_THROW(queue->executeQueueUsingCompletion(refuse), std::runtime_error);
  EXPECT_FALSE(queue->completion());
  queue->executeQueue();
}

TEST_F(RVFBlockQueueTest, AStepIsDestroyedOnceItHasRun) {
  const auto witness = std::make_shared<int>();
  queue->addBlock([witness](const QueueRef&, const Done& done) { done(nullptr); });
  queue->executeQueue();
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(RVFBlockQueueTest, StepsThatRunTheQueueAgainShareItsSteps) {
  queue->addBlock([&](const QueueRef& running, const Done& done) {
    running->executeQueue();
    events.push_back("inner run returned");
    done(nullptr);
  });
  queue->addBlock(step("b"));
  queue->executeQueueUsingCompletion(completion());
  EXPECT_THAT(events, ElementsAre("b", "succeeded", "inner run returned"));
}

TEST_F(RVFBlockQueueTest, TheContinuationIsPublicAndAdvancesTheRun) {
  queue->addBlock(pendingStep("a"));
  queue->addBlock(step("b"));
  queue->executeQueueUsingCompletion(completion());
  queue->blockCompletedWithError(refused);
  EXPECT_THAT(events, ElementsAre("a", "failed Refused"));
  EXPECT_FALSE(queue->empty());
}

TEST_F(RVFBlockQueueTest, IsReachedByItsSelectors) {
  queue->addBlock(step("a"));
  send(queue, SEL("executeQueueUsingCompletion:"), completion());
  EXPECT_THAT(events, ElementsAre("a", "succeeded"));
  EXPECT_TRUE(send<bool>(queue, SEL("empty")));
  const Property* property = class_getProperty(RVFBlockQueue::classObject(), "completion");
  ASSERT_TRUE(property);
  EXPECT_EQ(property->attributes, "T@?,C,N,V_completion");
}

/// How long a queue lives.
class RVFBlockQueueLifetimeTest : public testing::Test {
 protected:
  /// Leaves the fixture without a reference of its own.
  std::weak_ptr<RVFBlockQueue> started(RVFBlockQueue::Completion completion = nullptr) {
    const NSAutoreleasePool pool;
    const auto queue = RVFBlockQueue::queue();
    queue->addBlock([this](const QueueRef&, const Done& done) { kept = done; });
    queue->executeQueueUsingCompletion(std::move(completion));
    return queue;
  }

  Done kept;
};

TEST_F(RVFBlockQueueLifetimeTest, ANewQueueLivesUntilTheScopeEnds) {
  std::weak_ptr<RVFBlockQueue> queue;
  {
    const NSAutoreleasePool pool;
    queue = RVFBlockQueue::queue();
    EXPECT_FALSE(queue.expired());
  }
  EXPECT_TRUE(queue.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, ARunningQueueOutlivesTheReferencesOfOthers) {
  const auto queue = started();
  EXPECT_FALSE(queue.expired());
  kept(nullptr);
}

TEST_F(RVFBlockQueueLifetimeTest, TheReferenceIsGivenUpWhenTheScopeEnds) {
  const auto queue = started();
  {
    const NSAutoreleasePool pool;
    std::exchange(kept, nullptr)(nullptr);
    EXPECT_FALSE(queue.expired());
  }
  EXPECT_TRUE(queue.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, AKeptDoneCallbackKeepsTheQueue) {
  const auto queue = started();
  {
    const NSAutoreleasePool pool;
    const Done done = kept;
    done(nullptr);
  }
  EXPECT_FALSE(queue.expired());
  kept = nullptr;
  EXPECT_TRUE(queue.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, AnErrorGivesUpTheReferenceToo) {
  const auto queue = started();
  {
    const NSAutoreleasePool pool;
    std::exchange(kept, nullptr)(NSError::errorWithDomain("Refused", 1));
  }
  EXPECT_TRUE(queue.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, ACompletionThatThrowsGivesUpTheReferenceToo) {
  std::weak_ptr<RVFBlockQueue> ended;
  {
    const NSAutoreleasePool scope;
    const auto queue = RVFBlockQueue::queue();
    ended = queue;
    EXPECT_THROW(queue->executeQueueUsingCompletion(
                     [](const Ref<NSError>&) { throw std::runtime_error("refused"); }),
                 std::runtime_error);
  }
  EXPECT_TRUE(ended.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, TheCompletionMayDropTheLastReferences) {
  auto owner = std::make_shared<QueueRef>();
  const auto queue = started([&owner](const Ref<NSError>&) { owner->reset(); });
  *owner = queue.lock();
  {
    const NSAutoreleasePool pool;
    std::exchange(kept, nullptr)(nullptr);
  }
  EXPECT_TRUE(queue.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, ADoneCallbackThatIsCalledTwiceDoesNoHarm) {
  const auto queue = started();
  {
    const NSAutoreleasePool pool;
    kept(nullptr);
    std::exchange(kept, nullptr)(nullptr);
  }
  EXPECT_TRUE(queue.expired());
}

TEST_F(RVFBlockQueueLifetimeTest, AStepMayBeDoneFromATimerOfTheRunLoop) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop->setClock(clock);
  int completed = 0;
  const auto queue = started([&](const Ref<NSError>&) { ++completed; });
  loop->performAfterDelay(5, {std::string(NSDefaultRunLoopMode)},
                          [this] { std::exchange(kept, nullptr)(nullptr); });
  clock->runLoopFor(*loop, std::chrono::seconds(5));
  EXPECT_EQ(completed, 1);
  EXPECT_TRUE(queue.expired());
  loop->setClock(nullptr);
}

}  // namespace
}  // namespace rvf
