// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSOperation.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "tests/Platform/RunLoop/LaterOperation.h"
#include "tests/Platform/RunLoop/OperationRecorder.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Ref<NSOperation> operationWithBlock(std::function<void()> block = nullptr) {
  return std::make_shared<NSBlockOperation>(std::move(block));
}

/// The name of what the call raises.
template <class Call>
std::string raised(Call&& call) {
  try {
    call();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "nothing";
}

/// Drops a reference when it is told of a change.
class Dropping final : public NSObject {
 public:
  explicit Dropping(Ref<NSOperation>& dropped) : dropped_(dropped) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Dropping>("DroppingOperation", NSObject::classObject())
            .method<&Dropping::observeValue>("observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void observeValue(std::string_view, const id&, const Ref<NSDictionary>&, void*) {
    dropped_ = nullptr;
  }

 private:
  Ref<NSOperation>& dropped_;
};

TEST(NSOperation, IsReadyAndNothingElseAtFirst) {
  const auto operation = operationWithBlock();
  EXPECT_TRUE(operation->isReady());
  EXPECT_FALSE(operation->isExecuting());
  EXPECT_FALSE(operation->isFinished());
  EXPECT_FALSE(operation->isCancelled());
  EXPECT_FALSE(operation->isConcurrent());
  EXPECT_THAT(operation->dependencies(), IsEmpty());
}

TEST(NSOperation, StartCallsMainAndTellsObserversInOrder) {
  Ref<OperationRecorder> recorder;
  const auto operation = operationWithBlock([&] { recorder->told.push_back("main"); });
  recorder = OperationRecorder::of(operation);
  operation->start();
  EXPECT_THAT(recorder->told,
              ElementsAre("will isExecuting 0", "did isExecuting 1", "main", "will isExecuting 1",
                          "will isFinished 0", "did isFinished 1", "did isExecuting 0"));
}

TEST(NSOperation, AFinishedOneIsNotStartedAgain) {
  int runs = 0;
  const auto operation = operationWithBlock([&runs] { ++runs; });
  operation->start();
  operation->start();
  EXPECT_EQ(runs, 1);
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, AnExecutingOneCannotBeStarted) {
  Ref<NSOperation> operation;
  std::string again;
  operation = operationWithBlock([&] { again = raised([&] { operation->start(); }); });
  operation->start();
  EXPECT_EQ(again, "NSInvalidArgumentException");
}

TEST(NSOperation, CancelledBeforeItIsStartedItFinishesWithoutMain) {
  int runs = 0;
  const auto operation = operationWithBlock([&runs] { ++runs; });
  const auto recorder = OperationRecorder::of(operation);
  operation->cancel();
  EXPECT_THAT(recorder->take(), ElementsAre("will isCancelled 0", "did isCancelled 1"));
  EXPECT_FALSE(operation->isFinished());
  operation->start();
  EXPECT_THAT(recorder->take(), ElementsAre("will isFinished 0", "did isFinished 1"));
  EXPECT_EQ(runs, 0);
}

TEST(NSOperation, CancellingAgainOrAfterTheEndDoesNothing) {
  const auto cancelled = operationWithBlock();
  cancelled->cancel();
  const auto finished = operationWithBlock();
  finished->start();
  for (const auto& operation : {cancelled, finished}) {
    const auto recorder = OperationRecorder::of(operation);
    operation->cancel();
    EXPECT_THAT(recorder->told, IsEmpty());
  }
  EXPECT_FALSE(finished->isCancelled());
}

TEST(NSOperation, MainSeesThatItIsCancelledMeanwhile) {
  Ref<NSOperation> operation;
  bool seen = false;
  operation = operationWithBlock([&] {
    operation->cancel();
    seen = operation->isCancelled() && operation->isExecuting();
  });
  operation->start();
  EXPECT_TRUE(seen);
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, AnExceptionOfMainComesOutOfStartAndEndsTheOperation) {
  const auto operation = operationWithBlock([] { throw std::runtime_error("refused"); });
  const auto dependent = operationWithBlock();
  dependent->addDependency(operation);
  EXPECT_THROW(operation->start(), std::runtime_error);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_FALSE(operation->isExecuting());
  EXPECT_TRUE(dependent->isReady());
}

TEST(NSOperation, IsReadyWhenTheLastDependencyIsFinished) {
  const auto first = operationWithBlock();
  const auto second = operationWithBlock();
  const auto operation = operationWithBlock();
  const auto recorder = OperationRecorder::of(operation);
  operation->addDependency(first);
  EXPECT_THAT(recorder->take(), ElementsAre("will isReady 1", "did isReady 0"));
  operation->addDependency(second);
  recorder->take();
  second->start();
  EXPECT_FALSE(operation->isReady());
  EXPECT_THAT(recorder->take(), IsEmpty());
  first->start();
  EXPECT_TRUE(operation->isReady());
  EXPECT_THAT(recorder->take(), ElementsAre("will isReady 0", "did isReady 1"));
}

TEST(NSOperation, OneThatIsNotReadyCannotBeStarted) {
  const auto dependency = operationWithBlock();
  const auto operation = operationWithBlock();
  operation->addDependency(dependency);
  EXPECT_EQ(raised([&] { operation->start(); }), "NSInvalidArgumentException");
  dependency->start();
  operation->start();
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, OneThatIsCancelledIsReadyWhateverItDependsOn) {
  const auto dependency = operationWithBlock();
  const auto operation = operationWithBlock();
  operation->addDependency(dependency);
  const auto recorder = OperationRecorder::of(operation);
  operation->cancel();
  EXPECT_TRUE(operation->isReady());
  EXPECT_THAT(recorder->told, ElementsAre("will isReady 0", "will isCancelled 0",
                                          "did isCancelled 1", "did isReady 1"));
  operation->start();
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSOperation, ACancelledDependencyCountsOnceItIsFinished) {
  const auto dependency = operationWithBlock();
  const auto operation = operationWithBlock();
  operation->addDependency(dependency);
  dependency->cancel();
  EXPECT_FALSE(operation->isReady());
  dependency->start();
  EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, AFinishedDependencyIsNotWaitedFor) {
  const auto dependency = operationWithBlock();
  dependency->start();
  const auto operation = operationWithBlock();
  const auto recorder = OperationRecorder::of(operation);
  operation->addDependency(dependency);
  EXPECT_TRUE(operation->isReady());
  EXPECT_THAT(recorder->told, IsEmpty());
  EXPECT_THAT(operation->dependencies(), ElementsAre(dependency));
}

TEST(NSOperation, DependenciesAreListedInTheOrderAddedAlsoFinishedOnes) {
  const auto first = operationWithBlock();
  const auto second = operationWithBlock();
  const auto operation = operationWithBlock();
  operation->addDependency(first);
  operation->addDependency(second);
  operation->addDependency(first);
  first->start();
  EXPECT_THAT(operation->dependencies(), ElementsAre(first, second));
}

TEST(NSOperation, ADependencyCanBeRemoved) {
  const auto first = operationWithBlock();
  const auto second = operationWithBlock();
  const auto operation = operationWithBlock();
  operation->addDependency(first);
  operation->addDependency(second);
  const auto recorder = OperationRecorder::of(operation);
  operation->removeDependency(first);
  EXPECT_FALSE(operation->isReady());
  operation->removeDependency(first);
  operation->removeDependency(nullptr);
  operation->removeDependency(second);
  EXPECT_TRUE(operation->isReady());
  EXPECT_THAT(recorder->told, ElementsAre("will isReady 0", "did isReady 1"));
  EXPECT_THAT(operation->dependencies(), IsEmpty());
  first->start();
  EXPECT_EQ(recorder->told.size(), 2U);
}

TEST(NSOperation, NoOperationAndTheOperationItselfAreNoDependencies) {
  const auto operation = operationWithBlock();
  EXPECT_EQ(raised([&] { operation->addDependency(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { operation->addDependency(operation); }), "NSInvalidArgumentException");
  EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, ADependencyMayFinishOnAnotherThread) {
  const auto dependency = operationWithBlock();
  const auto operation = operationWithBlock();
  operation->addDependency(dependency);
  std::thread([&] { dependency->start(); }).join();
  EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, DependenciesMayFinishOnSeveralThreadsAtOnce) {
  for (int round = 0; round < 50; ++round) {
    const auto operation = operationWithBlock();
    std::vector<std::thread> threads;
    std::vector<Ref<NSOperation>> dependencies;
    for (int i = 0; i < 4; ++i) {
      dependencies.push_back(operationWithBlock());
      operation->addDependency(dependencies.back());
    }
    for (const auto& dependency : dependencies)
      threads.emplace_back([&dependency] { dependency->start(); });
    for (std::thread& thread : threads)
      thread.join();
    ASSERT_TRUE(operation->isReady()) << round;
  }
}

TEST(NSOperation, DependenciesMayComeAndGoWhileTheyFinishOnOtherThreads) {
  for (int round = 0; round < 100; ++round) {
    const auto operation = operationWithBlock();
    std::vector<Ref<NSOperation>> dependencies;
    for (int i = 0; i < 8; ++i)
      dependencies.push_back(i % 2 == 0 ? operationWithBlock() : std::make_shared<NSOperation>());
    const auto each = [&](const auto& call) {
      return std::thread([&dependencies, call] { std::ranges::for_each(dependencies, call); });
    };
    std::thread adding = each([&](const auto& one) { operation->addDependency(one); });
    std::thread removing = each([&](const auto& one) { operation->removeDependency(one); });
    std::thread finishing = each([](const auto& one) { one->start(); });
    for (std::thread* const thread : {&adding, &removing, &finishing})
      thread->join();
    ASSERT_TRUE(operation->isReady()) << round;
  }
}

TEST(NSOperation, ADependencyThatIsRemovedWhileOthersComeIsNotWaitedFor) {
  for (int round = 0; round < 100; ++round) {
    const auto operation = operationWithBlock();
    const auto neverDone = operationWithBlock();
    std::thread adding([&] { operation->addDependency(neverDone); });
    std::thread removing([&] { operation->removeDependency(neverDone); });
    adding.join();
    removing.join();
    ASSERT_EQ(operation->isReady(), operation->dependencies().empty()) << round;
  }
}

TEST(NSOperation, AnObserverMayDropTheOperationThatIsCancelled) {
  Ref<NSOperation> operation = std::make_shared<NSOperation>();
  const std::weak_ptr<NSOperation> isAlive = operation;
  const auto dropping = std::make_shared<Dropping>(operation);
  addObserverForKeyPath(*operation, dropping, "isCancelled");
  testing::internal::CaptureStderr();  // it goes with its observer
  operation->cancel();
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(isAlive.expired());
}

TEST(NSOperation, DependentsGoByTheAnnouncementOfASubclass) {
  const auto dependency = std::make_shared<LaterOperation>();
  const auto operation = operationWithBlock();
  operation->addDependency(dependency);
  dependency->start();
  EXPECT_FALSE(operation->isReady());
  announceChange(*dependency, "isFinished", [] {});
  EXPECT_FALSE(operation->isReady());
  dependency->finish();
  EXPECT_TRUE(operation->isReady());
}

TEST(NSOperation, ADependentMayGoBeforeItsDependency) {
  const auto dependency = operationWithBlock();
  {
    const auto operation = operationWithBlock();
    operation->addDependency(dependency);
  }
  dependency->start();
  EXPECT_TRUE(dependency->isFinished());
}

TEST(NSOperation, ADependencyThatIsNeverStartedGoesQuietly) {
  testing::internal::CaptureStderr();
  std::weak_ptr<NSOperation> dependency;
  {
    const auto operation = operationWithBlock();
    const auto neverStarted = operationWithBlock();
    dependency = neverStarted;
    operation->addDependency(neverStarted);
  }
  EXPECT_TRUE(dependency.expired());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(NSOperation, AnObserverMayDropTheLastReferenceOfAnOperation) {
  Ref<NSOperation> operation = operationWithBlock([&operation] { operation = nullptr; });
  const std::weak_ptr<NSOperation> isAlive = operation;
  operation->start();
  EXPECT_TRUE(isAlive.expired());
}

TEST(NSOperation, AVeryLongChainGoesWithoutAsMuchStack) {
  auto last = operationWithBlock();
  const std::weak_ptr<NSOperation> first = last;
  for (int i = 0; i < 100'000; ++i) {
    auto next = operationWithBlock();
    next->addDependency(last);
    last = std::move(next);
  }
  last = nullptr;
  EXPECT_TRUE(first.expired());
}

TEST(NSOperation, ItsFlagsAreReachedByKey) {
  const auto operation = operationWithBlock();
  operation->start();
  for (const std::string_view key : {"isFinished", "finished", "isReady", "ready"})
    EXPECT_TRUE(valueForKey(*operation, key)->isEqual(box(true).get())) << key;
  for (const std::string_view key :
       {"isExecuting", "executing", "isCancelled", "cancelled", "isConcurrent", "concurrent"})
    EXPECT_TRUE(valueForKey(*operation, key)->isEqual(box(false).get())) << key;
}

TEST(NSBlockOperation, CallsItsBlockOnceAndDropsIt) {
  const auto token = std::make_shared<int>();
  int runs = 0;
  const auto operation =
      NSBlockOperation::blockOperationWithBlock([&runs, held = token] { ++runs; });
  operation->start();
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(token.use_count(), 1);
}

TEST(NSBlockOperation, WithoutABlockItFinishes) {
  const auto operation = NSBlockOperation::blockOperationWithBlock(nullptr);
  operation->start();
  EXPECT_TRUE(operation->isFinished());
}

TEST(NSBlockOperation, LivesUntilTheScopeEnds) {
  std::weak_ptr<NSOperation> isAlive;
  {
    const NSAutoreleasePool pool;
    isAlive = NSBlockOperation::blockOperationWithBlock([] {});
    EXPECT_FALSE(isAlive.expired());
  }
  EXPECT_TRUE(isAlive.expired());
}

}  // namespace
}  // namespace rvf
