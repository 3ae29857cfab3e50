// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSOperationQueue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Values/NSDictionary.h"
#include "tests/Platform/RunLoop/LaterOperation.h"
#include "tests/Platform/RunLoop/OperationQueueFixture.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NSOperationQueueTest : public OperationQueueFixture {};

std::ptrdiff_t threadCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

TEST_F(NSOperationQueueTest, RunsOperationsOnOtherThreads) {
  Ref<NSThread> thread;
  queue->addOperationWithBlock([&] { thread = NSThread::currentThread(); });
  queue->waitUntilAllOperationsAreFinished();
  ASSERT_NE(thread, nullptr);
  EXPECT_NE(thread, NSThread::currentThread());
}

TEST_F(NSOperationQueueTest, KeepsOperationsUntilTheyAreFinished) {
  std::promise<void> let;
  const auto operation = operationWithBlock([&] { let.get_future().wait(); });
  queue->addOperation(operation);
  EXPECT_THAT(queue->operations(), ElementsAre(operation));
  let.set_value();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(queue->operations(), IsEmpty());
  EXPECT_TRUE(operation->isFinished());
}

TEST_F(NSOperationQueueTest, AnOperationIsAddedOnceAndToOneQueue) {
  queue->setMaxConcurrentOperationCount(0);
  const auto other = std::make_shared<NSOperationQueue>();
  const auto operation = operationWithBlock();
  queue->addOperation(operation);
  EXPECT_EQ(raised([&] { queue->addOperation(operation); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { other->addOperation(operation); }), "NSInvalidArgumentException");
  EXPECT_THAT(queue->operations(), ElementsAre(operation));
  EXPECT_THAT(other->operations(), IsEmpty());
  queue->setMaxConcurrentOperationCount(1);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(raised([&] { queue->addOperation(operation); }), "NSInvalidArgumentException");
}

TEST_F(NSOperationQueueTest, FinishedExecutingAndAbsentOperationsAreRefused) {
  const auto finished = operationWithBlock();
  finished->start();
  const auto executing = std::make_shared<LaterOperation>();
  executing->start();
  for (const Ref<NSOperation>& operation :
       {finished, Ref<NSOperation>(executing), Ref<NSOperation>()})
    EXPECT_EQ(raised([&] { queue->addOperation(operation); }), "NSInvalidArgumentException");
  EXPECT_THAT(queue->operations(), IsEmpty());
}

TEST_F(NSOperationQueueTest, OneAtATimeTheyRunInTheOrderAdded) {
  queue->setMaxConcurrentOperationCount(1);
  std::vector<int> order;  // unguarded: only one runs at a time
  std::vector<int> expected;
  for (int i = 0; i < 200; ++i) {
    queue->addOperationWithBlock([&order, i] { order.push_back(i); });
    expected.push_back(i);
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, expected);
}

TEST_F(NSOperationQueueTest, AsManyRunAtOnceAsTheLimitLetsAndNoMore) {
  queue->setMaxConcurrentOperationCount(3);
  std::atomic<int> running{0};
  std::atomic<int> most{0};
  for (int i = 0; i < 30; ++i) {
    queue->addOperationWithBlock([&, i] {
      const int now = ++running;
      for (int before = most; before < now && !most.compare_exchange_weak(before, now);) {
      }
      // The first three wait for each other, so they must run at once.
      while (i < 3 && most < 3)
        std::this_thread::yield();
      --running;
    });
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(most, 3);
}

TEST_F(NSOperationQueueTest, ALimitOfNothingHoldsAllBackUntilItIsRaised) {
  EXPECT_EQ(queue->maxConcurrentOperationCount(), -1);
  queue->setMaxConcurrentOperationCount(0);
  const std::ptrdiff_t threads = threadCount();
  for (const char* text : {"a", "b", "c"})
    queue->addOperationWithBlock(note(text));
  EXPECT_LE(threadCount(), threads);
  EXPECT_EQ(queue->operations().size(), 3U);
  queue->setMaxConcurrentOperationCount(1);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("a", "b", "c"));
}

TEST_F(NSOperationQueueTest, ANegativeLimitIsTheDefaultOrRefused) {
  queue->setMaxConcurrentOperationCount(2);
  EXPECT_EQ(raised([&] { queue->setMaxConcurrentOperationCount(-2); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 2);
  queue->setMaxConcurrentOperationCount(NSOperationQueueDefaultMaxConcurrentOperationCount);
  EXPECT_EQ(queue->maxConcurrentOperationCount(), -1);
}

TEST_F(NSOperationQueueTest, WaitingForNothingReturns) {
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(queue->operations(), IsEmpty());
}

TEST_F(NSOperationQueueTest, DependenciesRunFirstWhateverTheOrderAdded) {
  const auto first = operationWithBlock(note("first"));
  const auto second = operationWithBlock(note("second"));
  const auto third = operationWithBlock(note("third"));
  second->addDependency(first);
  third->addDependency(second);
  for (const auto& operation : {third, second, first})
    queue->addOperation(operation);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("first", "second", "third"));
}

TEST_F(NSOperationQueueTest, OneThatWaitsDoesNotHoldBackOthers) {
  queue->setMaxConcurrentOperationCount(1);
  const auto dependency = operationWithBlock();
  const auto waiting = operationWithBlock(note("waiting"));
  waiting->addDependency(dependency);
  queue->addOperation(waiting);
  std::promise<void> ranOther;
  queue->addOperationWithBlock([&] {
    note("other")();
    ranOther.set_value();
  });
  ranOther.get_future().wait();
  dependency->start();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("other", "waiting"));
}

TEST_F(NSOperationQueueTest, ACancelledOneIsStartedAndItsDependentsRun) {
  const auto cancelled = std::make_shared<LaterOperation>();
  const auto neverDone = operationWithBlock();
  cancelled->addDependency(neverDone);
  const auto dependent = operationWithBlock(note("dependent"));
  dependent->addDependency(cancelled);
  queue->addOperation(dependent);
  queue->addOperation(cancelled);
  EXPECT_EQ(cancelled->starts, 0);
  cancelled->cancel();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(cancelled->starts, 1);
  EXPECT_THAT(ran, ElementsAre("dependent"));
}

TEST_F(NSOperationQueueTest, OneThatGoesOnAfterStartCountsUntilItIsFinished) {
  queue->setMaxConcurrentOperationCount(1);
  std::promise<void> started;
  const auto later = std::make_shared<LaterOperation>([&] { started.set_value(); });
  queue->addOperation(later);
  queue->addOperationWithBlock(note("next"));
  started.get_future().wait();
  EXPECT_EQ(queue->operations().size(), 2U);
  std::thread([&] {
    note("finishing")();
    later->finish();
  }).join();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(later->starts, 1);
  EXPECT_THAT(ran, ElementsAre("finishing", "next"));
}

TEST_F(NSOperationQueueTest, OneWhoseStartGoesOnAfterItIsFinishedDoesNotHoldBackTheNext) {
  queue->setMaxConcurrentOperationCount(1);
  std::promise<void> nextRan;
  std::promise<void> startReturns;
  Ref<LaterOperation> early;
  early = std::make_shared<LaterOperation>([&] {
    early->finish();
    nextRan.get_future().wait();
    note("start returns")();
    startReturns.set_value();
  });
  queue->addOperation(early);
  queue->addOperationWithBlock([&] {
    note("next")();
    nextRan.set_value();
  });
  startReturns.get_future().wait();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("next", "start returns"));
}

TEST_F(NSOperationQueueTest, OperationsThatFinishOnOtherThreadsLeaveTheWorkersFree) {
  std::vector<Ref<LaterOperation>> all;
  for (int i = 0; i < 100; ++i) {
    all.push_back(std::make_shared<LaterOperation>());
    if (i > 0)
      all[static_cast<std::size_t>(i)]->addDependency(all[static_cast<std::size_t>(i - 1)]);
    queue->addOperation(all.back());
  }
  std::thread finishing([&] {
    for (const auto& operation : all) {
      while (!operation->isExecuting())
        std::this_thread::yield();
      operation->finish();
    }
  });
  queue->waitUntilAllOperationsAreFinished();
  finishing.join();
  for (const auto& operation : all)
    EXPECT_EQ(operation->starts, 1);
}

TEST_F(NSOperationQueueTest, OneThatItsClientStartsIsLetGoUnstarted) {
  queue->setMaxConcurrentOperationCount(0);
  const auto operation = std::make_shared<LaterOperation>();
  queue->addOperation(operation);
  operation->start();
  operation->finish();
  EXPECT_THAT(queue->operations(), IsEmpty());
  queue->setMaxConcurrentOperationCount(1);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(operation->starts, 1);
}

/// Ready when it says so.
class Gated final : public NSOperation {
 public:
  bool isReady() const override { return isOpen_; }
  void open() {
    announceChange(*this, "isReady", [this] { isOpen_ = true; });
  }

 private:
  std::atomic<bool> isOpen_{false};
};

/// Calls a block once, before a key of an operation changes.
class BeforeChange final : public NSObject {
 public:
  static Ref<BeforeChange> of(const Ref<NSOperation>& operation, std::string_view key,
                              std::function<void()> call) {
    const auto before = std::make_shared<BeforeChange>(std::move(call));
    addObserverForKeyPath(*operation, before, key, NSKeyValueObservingOptionPrior);
    return before;
  }
  explicit BeforeChange(std::function<void()> call) : call_(std::move(call)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<BeforeChange>("BeforeChange", NSObject::classObject())
            .method<&BeforeChange::observeValue>("observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void observeValue(std::string_view, const id&, const Ref<NSDictionary>&, void*) {
    if (const auto call = std::exchange(call_, nullptr)) call();
  }

 private:
  std::function<void()> call_;
};

/// Leaves everything to the base class, which takes it for one that may override anything.
class Plain final : public NSOperation {};

TEST_F(NSOperationQueueTest, OneThatIsAddedWhileItsLastDependencyFinishesIsStarted) {
  for (const Ref<NSOperation>& added :
       {operationWithBlock(), Ref<NSOperation>(std::make_shared<Plain>())}) {
    const auto dependency = operationWithBlock();
    added->addDependency(dependency);
    const auto before = BeforeChange::of(
        added, "isReady", [&] { std::thread([&] { queue->addOperation(added); }).join(); });
    dependency->start();
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(added->isFinished());
    removeObserverForKeyPath(*added, before, "isReady");
  }
}

TEST_F(NSOperationQueueTest, OneThatIsAddedWhileItIsCancelledIsStarted) {
  for (const Ref<NSOperation>& added :
       {operationWithBlock(), Ref<NSOperation>(std::make_shared<Plain>())}) {
    const auto neverDone = operationWithBlock();
    added->addDependency(neverDone);
    const auto before = BeforeChange::of(
        added, "isCancelled", [&] { std::thread([&] { queue->addOperation(added); }).join(); });
    added->cancel();
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(added->isFinished());
    removeObserverForKeyPath(*added, before, "isCancelled");
  }
}

TEST_F(NSOperationQueueTest, OneThatGetsADependencyWhileItIsCancelledIsStarted) {
  const auto added = operationWithBlock();
  const auto neverDone = operationWithBlock();
  const auto before = BeforeChange::of(added, "isCancelled", [&] {
    std::thread([&] {
      added->addDependency(neverDone);
      queue->addOperation(added);
    }).join();
  });
  added->cancel();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(added->isFinished());
  removeObserverForKeyPath(*added, before, "isCancelled");
}

TEST_F(NSOperationQueueTest, OperationsMayBeAddedWhileOtherThreadsMakeThemReady) {
  for (int round = 0; round < 200; ++round) {
    const auto dependency = operationWithBlock();
    const auto operation =
        round % 2 == 0 ? operationWithBlock() : Ref<NSOperation>(std::make_shared<Plain>());
    operation->addDependency(dependency);
    std::thread other([&] { round % 3 == 0 ? operation->cancel() : dependency->start(); });
    queue->addOperation(operation);
    other.join();
    queue->waitUntilAllOperationsAreFinished();
    ASSERT_TRUE(operation->isFinished()) << round;
  }
}

TEST_F(NSOperationQueueTest, ASubclassMaySayWhenItIsReady) {
  const auto gated = std::make_shared<Gated>();
  queue->addOperation(gated);
  announceChange(*gated, "isReady", [] {});
  EXPECT_THAT(queue->operations(), ElementsAre(gated));
  gated->open();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(gated->isFinished());
}

TEST_F(NSOperationQueueTest, AnOperationMayAddOthers) {
  queue->setMaxConcurrentOperationCount(1);
  queue->addOperationWithBlock([this] {
    queue->addOperationWithBlock(note("inner"));
    note("outer")();
  });
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(ran, ElementsAre("outer", "inner"));
}

TEST_F(NSOperationQueueTest, SeveralThreadsMayAddAtOnce) {
  std::atomic<int> count{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 250; ++k)
        queue->addOperationWithBlock([&count] { ++count; });
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 1000);
}

TEST_F(NSOperationQueueTest, EachOperationHasAReleaseScopeOfItsOwn) {
  queue->setMaxConcurrentOperationCount(1);
  const auto token = std::make_shared<int>();
  long usesInSecond = 0;
  queue->addOperationWithBlock([&token] { NSAutoreleasePool::addObject(token); });
  queue->addOperationWithBlock([&] { usesInSecond = token.use_count(); });
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(usesInSecond, 1);
}

TEST_F(NSOperationQueueTest, ThereAreThreadsOnlyWhileThereIsWork) {
  std::thread([] {}).join();  // ThreadSanitizer keeps a thread of its own from the first one on
  const std::ptrdiff_t before = threadCount();
  const auto idle = std::make_shared<NSOperationQueue>();
  const auto waiting = operationWithBlock();
  const auto dependency = operationWithBlock();
  waiting->addDependency(dependency);
  idle->addOperation(waiting);
  EXPECT_LE(threadCount(), before);
  dependency->start();
  for (int i = 0; i < 100; ++i)
    queue->addOperationWithBlock([] {});
  idle->waitUntilAllOperationsAreFinished();
  queue->waitUntilAllOperationsAreFinished();
  while (threadCount() > before)
    std::this_thread::yield();
}

TEST_F(NSOperationQueueTest, AQueueMayGoBeforeItsOperations) {
  std::promise<void> let;
  std::promise<void> lastRan;
  const auto running = operationWithBlock([&] { let.get_future().wait(); });
  const auto dependent = operationWithBlock([&] { lastRan.set_value(); });
  dependent->addDependency(running);
  queue->addOperation(running);
  queue->addOperation(dependent);
  queue = nullptr;
  let.set_value();
  lastRan.get_future().wait();
  EXPECT_TRUE(running->isFinished());
}

TEST_F(NSOperationQueueTest, AQueueMayBeLetGoByItsOwnOperation) {
  std::promise<void> ranLast;
  queue->setMaxConcurrentOperationCount(1);
  auto held = std::make_shared<Ref<NSOperationQueue>>(queue);
  queue->addOperationWithBlock([held] { *held = nullptr; });
  queue->addOperationWithBlock([&] { ranLast.set_value(); });
  held = nullptr;
  queue = nullptr;
  ranLast.get_future().wait();
}

TEST(NSOperationQueueDeathTest, AnExceptionOnAWorkerEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        const auto queue = std::make_shared<NSOperationQueue>();
        queue->addOperationWithBlock([] { throw std::runtime_error("refused"); });
        queue->waitUntilAllOperationsAreFinished();
        while (true)
          std::this_thread::yield();
      },
      "refused");
}

/// Operations of which each depends on some of those before it, and that check it.
class OperationGraph final {
 public:
  OperationGraph(int size, unsigned seed) {
    std::minstd_rand random(seed);
    for (int i = 0; i < size; ++i) {
      all.push_back(operationWithBlock([this, i] { check(i); }));
      for (auto k = random() % 5; i > 0 && k > 0; --k)
        all.back()->addDependency(all[random() % static_cast<std::size_t>(i)]);
    }
    std::shuffle(order.begin(), order.end(), random);
  }

  std::vector<Ref<NSOperation>> all;
  std::vector<std::size_t> order = [] {
    std::vector<std::size_t> indexes(1000);
    std::iota(indexes.begin(), indexes.end(), 0U);
    return indexes;
  }();
  std::atomic<int> runs{0};
  std::atomic<int> tooEarly{0};

 private:
  void check(int index) {
    ++runs;
    for (const auto& dependency : all[static_cast<std::size_t>(index)]->dependencies())
      if (!dependency->isFinished()) ++tooEarly;
  }
};

TEST_F(NSOperationQueueTest, AGraphOfAThousandRunsEachOnceAndInItsOrder) {
  OperationGraph graph(1000, 1);
  for (const std::size_t index : graph.order)
    queue->addOperation(graph.all[index]);
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(graph.runs, 1000);
  EXPECT_EQ(graph.tooEarly, 0);
}

TEST_F(NSOperationQueueTest, OnTheMainQueueAGraphOfAThousandRunsEachOnceAndInItsOrder) {
  OperationGraph graph(1000, 2);
  for (const std::size_t index : graph.order)
    NSOperationQueue::mainQueue()->addOperation(graph.all[index]);
  serveMainQueue();
  EXPECT_EQ(graph.runs, 1000);
  EXPECT_EQ(graph.tooEarly, 0);
}

TEST_F(NSOperationQueueTest, AGraphOfAThousandMaySpreadOverBothKindsOfQueue) {
  OperationGraph graph(1000, 3);
  for (const std::size_t index : graph.order)
    (index % 2 == 0 ? queue : NSOperationQueue::mainQueue())->addOperation(graph.all[index]);
  serveMainQueue();
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(graph.runs, 1000);
  EXPECT_EQ(graph.tooEarly, 0);
}

}  // namespace
}  // namespace rvf
