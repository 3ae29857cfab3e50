// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/RVFRetryingBlockExecutor.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/Runtime.h"
#include "tests/RVFoundation/BackgroundExecution/AnnouncedKeys.h"

namespace rvf {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using testing::ElementsAre;

using Report = RVFRetryingBlockExecutor::Report;

class RVFRetryingBlockExecutorTest : public testing::Test {
 protected:
  void SetUp() override { loop->setClock(clock); }
  void TearDown() override {
    runFor(std::chrono::minutes(1));  // leaves no timer behind
    loop->setClock(nullptr);
  }

  void runFor(nanoseconds duration) { clock->runLoopFor(*loop, duration); }
  /// Of the near future: nothing takes an endless one back.
  bool hasTimer() const {
    const auto next = loop->nextDeadline();
    return next && *next < clock->now() + std::chrono::hours(1);
  }

  /// Work that notes its attempts and keeps the report for later.
  RVFRetryingBlockExecutor::Execution later() {
    return [this](const Report& reportBlock) {
      ++attempts;
      report = reportBlock;
    };
  }
  /// Work that reports within the attempt.
  RVFRetryingBlockExecutor::Execution atOnce(bool succeeds) {
    return [this, succeeds](const Report& reportBlock) {
      ++attempts;
      reportBlock(succeeds);
    };
  }
  RVFRetryingBlockExecutor::Block countSuccess() {
    return [this] { ++successes; };
  }

  const Ref<NSRunLoop> loop = NSRunLoop::mainRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock = std::make_shared<ManualRunLoopClock>();
  Ref<RVFRetryingBlockExecutor> executor = std::make_shared<RVFRetryingBlockExecutor>();
  Report report;
  int attempts = 0;
  int successes = 0;
};

TEST_F(RVFRetryingBlockExecutorTest, ANewExecutorPausesASecondAndHasNothingPending) {
  EXPECT_EQ(executor->retryInterval(), 1.0);
  EXPECT_FALSE(executor->hasPendingRetry());
  EXPECT_FALSE(executor->delayedRetryBlock());
}

TEST_F(RVFRetryingBlockExecutorTest, TheFirstAttemptIsMadeWithinTheCall) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  EXPECT_EQ(attempts, 1);
  EXPECT_EQ(successes, 0);
  EXPECT_FALSE(executor->hasPendingRetry());
}

TEST_F(RVFRetryingBlockExecutorTest, SuccessAtFirstCallsTheHandlerOnceAndSchedulesNothing) {
  executor->executeBlockUntilSuccess(atOnce(true), countSuccess());
  EXPECT_EQ(successes, 1);
  EXPECT_FALSE(hasTimer());
  runFor(seconds(10));
  EXPECT_EQ(attempts, 1);
  EXPECT_EQ(successes, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, ThreeFailuresReportedLaterMakeThreePauses) {
  executor->setRetryInterval(2.5);
  executor->executeBlockUntilSuccess(later(), countSuccess());
  for (int failures = 1; failures <= 3; ++failures) {
    report(false);
    EXPECT_TRUE(executor->hasPendingRetry());
    runFor(milliseconds(2500) - nanoseconds(1));
    EXPECT_EQ(attempts, failures);
    runFor(nanoseconds(1));
    EXPECT_EQ(attempts, failures + 1);
    EXPECT_FALSE(executor->hasPendingRetry());
  }
  report(true);
  EXPECT_EQ(successes, 1);
  EXPECT_FALSE(hasTimer());
  runFor(seconds(10));
  EXPECT_EQ(attempts, 4);
  EXPECT_EQ(successes, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, AFailureReportedWithinTheAttemptIsRetriedOnceAndNoMore) {
  executor->executeBlockUntilSuccess(atOnce(false), countSuccess());
  EXPECT_TRUE(executor->hasPendingRetry());
  runFor(seconds(1) - nanoseconds(1));
  EXPECT_EQ(attempts, 1);
  runFor(nanoseconds(1));
  EXPECT_EQ(attempts, 2);
  EXPECT_FALSE(executor->hasPendingRetry());
  EXPECT_TRUE(hasTimer());  // the retry's own, which finds nothing to run
  runFor(seconds(10));
  EXPECT_EQ(attempts, 2);
  EXPECT_EQ(successes, 0);
  EXPECT_FALSE(hasTimer());
}

TEST_F(RVFRetryingBlockExecutorTest, ARetryThatSucceedsWithinTheAttemptCallsTheHandler) {
  executor->executeBlockUntilSuccess(
      [this](const Report& reportBlock) { reportBlock(++attempts == 2); }, countSuccess());
  runFor(seconds(1));
  EXPECT_EQ(successes, 1);
  EXPECT_FALSE(executor->hasPendingRetry());
  EXPECT_FALSE(hasTimer());
}

TEST_F(RVFRetryingBlockExecutorTest, StoppedDuringThePauseTheTimerRunsNothing) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  report(false);
  executor->stopExecuting();
  EXPECT_FALSE(executor->hasPendingRetry());
  EXPECT_TRUE(hasTimer());
  runFor(seconds(10));
  EXPECT_EQ(attempts, 1);
  EXPECT_EQ(successes, 0);
}

TEST_F(RVFRetryingBlockExecutorTest, AFailureReportedAfterStoppingIsRetried) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  executor->stopExecuting();
  report(false);
  EXPECT_TRUE(executor->hasPendingRetry());
  runFor(seconds(1));
  EXPECT_EQ(attempts, 2);
  report(true);
  EXPECT_EQ(successes, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, WithoutAHandlerSuccessEndsTheRun) {
  executor->executeBlockUntilSuccess(atOnce(true), nullptr);
  executor->executeBlockUntilSuccess(later(), nullptr);
  report(false);
  runFor(seconds(1));
  report(true);
  EXPECT_EQ(attempts, 3);
  EXPECT_FALSE(executor->hasPendingRetry());
  EXPECT_FALSE(hasTimer());
}

TEST_F(RVFRetryingBlockExecutorTest, AChangedIntervalDoesNotMoveARetryThatIsScheduled) {
  executor->executeBlockUntilSuccess(later(), nullptr);
  executor->setRetryInterval(3);
  report(false);
  executor->setRetryInterval(1);
  runFor(seconds(3) - nanoseconds(1));
  EXPECT_EQ(attempts, 1);
  runFor(nanoseconds(1));
  EXPECT_EQ(attempts, 2);
}

TEST_F(RVFRetryingBlockExecutorTest, TheIntervalIsCutToWholeNanoseconds) {
  for (const auto& [interval, pause] : {std::pair(0.0000000019, nanoseconds(1)),
                                        {1.5, milliseconds(1500)},
                                        {0.1, milliseconds(100)}}) {
    attempts = 0;
    executor->setRetryInterval(interval);
    executor->executeBlockUntilSuccess(later(), nullptr);
    report(false);
    runFor(pause - nanoseconds(1));
    EXPECT_EQ(attempts, 1) << interval;
    runFor(nanoseconds(1));
    EXPECT_EQ(attempts, 2) << interval;
  }
}

TEST_F(RVFRetryingBlockExecutorTest, WithoutAPauseTheRetryRunsSoonButNotWithinTheReport) {
  for (const double interval : {0.0, -5.0, -1e300, std::nan("")}) {
    attempts = 0;
    executor->setRetryInterval(interval);
    executor->executeBlockUntilSuccess(later(), nullptr);
    report(false);
    EXPECT_EQ(attempts, 1) << interval;
    runFor(nanoseconds(0));
    EXPECT_EQ(attempts, 2) << interval;
  }
}

TEST_F(RVFRetryingBlockExecutorTest, AnEndlessIntervalNeverRetries) {
  executor->setRetryInterval(std::numeric_limits<double>::infinity());
  executor->executeBlockUntilSuccess(later(), nullptr);
  report(false);
  runFor(std::chrono::hours(10'000));
  EXPECT_EQ(attempts, 1);
  EXPECT_TRUE(executor->hasPendingRetry());
  executor->stopExecuting();  // the pending retry holds the executor, and that the retry
}

TEST_F(RVFRetryingBlockExecutorTest, ANewStartCallsThePendingRetryOff) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  report(false);
  int others = 0;
  executor->executeBlockUntilSuccess([&others](const Report&) { ++others; }, nullptr);
  EXPECT_FALSE(executor->hasPendingRetry());
  runFor(seconds(10));
  EXPECT_EQ(attempts, 1);
  EXPECT_EQ(others, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, TheTimerOfAnOldStartRunsTheRetryOfTheNewOne) {
  executor->executeBlockUntilSuccess(atOnce(false), nullptr);
  runFor(milliseconds(400));
  std::vector<nanoseconds> times;
  const auto start = clock->now();
  executor->executeBlockUntilSuccess(
      [&](const Report& reportBlock) {
        times.push_back(clock->now() - start);
        report = reportBlock;
      },
      nullptr);
  report(false);
  runFor(seconds(10));
  EXPECT_THAT(times, ElementsAre(nanoseconds(0), milliseconds(600)));
  EXPECT_EQ(attempts, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, AFailureReportedTwiceWithinThePauseIsRetriedOnce) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  report(false);
  runFor(milliseconds(400));
  report(false);
  runFor(milliseconds(600));
  EXPECT_EQ(attempts, 2);  // with the timer of the first report
  EXPECT_FALSE(executor->hasPendingRetry());
  EXPECT_TRUE(hasTimer());
  runFor(seconds(10));
  EXPECT_EQ(attempts, 2);
}

TEST_F(RVFRetryingBlockExecutorTest, SuccessAfterAFailureOfTheSameAttemptLeavesTheRetryPending) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  report(false);
  report(true);
  EXPECT_EQ(successes, 1);
  EXPECT_TRUE(executor->hasPendingRetry());
  runFor(seconds(10));
  EXPECT_EQ(attempts, 2);
}

TEST_F(RVFRetryingBlockExecutorTest, AHandlerMayStartTheExecutorAnew) {
  executor->executeBlockUntilSuccess(
      later(), [this] { executor->executeBlockUntilSuccess(later(), countSuccess()); });
  report(false);
  runFor(seconds(1));
  report(true);
  EXPECT_EQ(attempts, 3);
  EXPECT_FALSE(executor->hasPendingRetry());
  report(false);
  runFor(seconds(1));
  report(true);
  EXPECT_EQ(attempts, 4);
  EXPECT_EQ(successes, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, EachReportOfSuccessCallsTheHandler) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  report(true);
  report(true);
  EXPECT_EQ(successes, 2);
}

TEST_F(RVFRetryingBlockExecutorTest, RetriesRunOnTheMainThreadWhereverTheFirstAttemptRan) {
  std::vector<bool> wereOnMainThread;
  const auto work = [&](const Report& reportBlock) {
    wereOnMainThread.push_back(NSThread::isMainThread());
    reportBlock(wereOnMainThread.size() == 2);
  };
  std::thread([&] { executor->executeBlockUntilSuccess(work, countSuccess()); }).join();
  EXPECT_THAT(wereOnMainThread, ElementsAre(false));
  runFor(seconds(1));
  EXPECT_THAT(wereOnMainThread, ElementsAre(false, true));
  EXPECT_EQ(successes, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, AReportMayComeFromAnotherThread) {
  executor->executeBlockUntilSuccess(later(), countSuccess());
  std::thread([this] { report(false); }).join();
  EXPECT_TRUE(executor->hasPendingRetry());
  runFor(seconds(1));
  EXPECT_EQ(attempts, 2);
  bool wasMainThread = true;
  std::thread([this, &wasMainThread] {
    wasMainThread = NSThread::isMainThread();
    report(true);
  }).join();
  EXPECT_FALSE(wasMainThread);
  EXPECT_EQ(successes, 1);
}

TEST_F(RVFRetryingBlockExecutorTest, AReportFromAnotherThreadReachesAMainThreadThatIsRunning) {
  executor->setRetryInterval(0);
  executor->executeBlockUntilSuccess(
      [this](const Report& reportBlock) {
        if (++attempts == 2) loop->stop();
        report = reportBlock;
      },
      nullptr);
  std::thread reporting;
  loop->performBlock(
      [&] { reporting = std::thread([reportBlock = report] { reportBlock(false); }); });
  loop->runUntilDate(clock->now() + std::chrono::hours(1));
  reporting.join();
  EXPECT_EQ(attempts, 2);
}

TEST_F(RVFRetryingBlockExecutorTest, ItLivesUntilItsTimerHasFiredAlsoIfItWasStopped) {
  const std::weak_ptr<RVFRetryingBlockExecutor> isAlive = executor;
  {
    const NSAutoreleasePool pool;
    executor->executeBlockUntilSuccess(later(), nullptr);
    report(false);
    report = nullptr;
    executor->stopExecuting();
    executor = nullptr;
  }
  EXPECT_FALSE(isAlive.expired());
  runFor(seconds(1) - nanoseconds(1));
  EXPECT_FALSE(isAlive.expired());
  runFor(nanoseconds(1));
  EXPECT_TRUE(isAlive.expired());
}

TEST_F(RVFRetryingBlockExecutorTest, ReleasedMeanwhileTheChainGoesOnUntilSuccess) {
  const std::weak_ptr<RVFRetryingBlockExecutor> isAlive = executor;
  {
    const NSAutoreleasePool pool;
    executor->executeBlockUntilSuccess(later(), countSuccess());
    executor = nullptr;
    report(false);
    runFor(seconds(1));
    report(false);
    runFor(seconds(1));
    report(true);
    report = nullptr;
  }
  EXPECT_EQ(attempts, 3);
  EXPECT_EQ(successes, 1);
  EXPECT_TRUE(isAlive.expired());
}

TEST_F(RVFRetryingBlockExecutorTest, WorkThatNeverReportsKeepsNothingAlive) {
  const std::weak_ptr<RVFRetryingBlockExecutor> isAlive = executor;
  executor->executeBlockUntilSuccess([](const Report&) {}, nullptr);
  executor = nullptr;
  EXPECT_TRUE(isAlive.expired());
}

TEST_F(RVFRetryingBlockExecutorTest, ARetryThatIsCalledOffLivesUntilTheScopeEnds) {
  const auto token = std::make_shared<int>();
  {
    const NSAutoreleasePool pool;
    executor->setDelayedRetryBlock([token] {});
    executor->executeBlockUntilSuccess([](const Report&) {}, nullptr);
    EXPECT_FALSE(executor->hasPendingRetry());
    EXPECT_EQ(token.use_count(), 2);
  }
  EXPECT_EQ(token.use_count(), 1);
}

TEST_F(RVFRetryingBlockExecutorTest, ARetryMayStopOrStartAnewFromWithin) {
  std::vector<std::string> ran;
  executor->executeBlockUntilSuccess(
      [&](const Report& reportBlock) {
        ran.push_back("first");
        report = reportBlock;
        if (ran.size() == 1) return;
        executor->stopExecuting();
        executor->executeBlockUntilSuccess([&](const Report&) { ran.push_back("second"); },
                                           nullptr);
      },
      nullptr);
  report(false);
  runFor(seconds(10));
  EXPECT_THAT(ran, ElementsAre("first", "first", "second"));
}

TEST_F(RVFRetryingBlockExecutorTest, AHandlerMayDropTheReportThatCalledIt) {
  const auto token = std::make_shared<int>(7);
  int seen = 0;
  executor->executeBlockUntilSuccess(later(), [this, token, &seen] {
    report = nullptr;
    executor = nullptr;
    seen = *token;
  });
  report(true);
  EXPECT_EQ(seen, 7);
  EXPECT_EQ(token.use_count(), 1);
}

TEST_F(RVFRetryingBlockExecutorTest, ARetryThatThrowsIsNotPendingAnyMore) {
  executor->executeBlockUntilSuccess(later(), nullptr);
  executor->setDelayedRetryBlock(nullptr);
  report(false);
  executor->setDelayedRetryBlock([] { throw std::runtime_error("refused"); });
  EXPECT_THROW(runFor(seconds(1)), std::runtime_error);
  EXPECT_FALSE(executor->hasPendingRetry());
}

TEST_F(RVFRetryingBlockExecutorTest, ItsPropertiesCanBeObserved) {
  const auto announced = AnnouncedKeys::of(executor, {"retryInterval", "delayedRetryBlock"});
  executor->setRetryInterval(1);
  executor->setDelayedRetryBlock([] {});
  EXPECT_THAT(announced->told, ElementsAre("retryInterval", "delayedRetryBlock"));
}

TEST_F(RVFRetryingBlockExecutorTest, IsKnownToTheRuntime) {
  const auto properties = class_copyPropertyList(objc_getClass("RVFRetryingBlockExecutor"));
  ASSERT_EQ(properties.size(), 2U);
  EXPECT_EQ(properties[0].attributes, "Td,N,V_retryInterval");
  EXPECT_EQ(properties[1].attributes, "T@?,C,N,V_delayedRetryBlock");
  send(executor, SEL("setRetryInterval:"), 2.0);
  EXPECT_EQ(send<double>(executor, SEL("retryInterval")), 2.0);
  send(executor, SEL("executeBlockUntilSuccess:usingSuccessHandler:"), later(), countSuccess());
  report(false);
  EXPECT_TRUE(send<bool>(executor, SEL("hasPendingRetry")));
  send(executor, SEL("stopExecuting"));
  EXPECT_FALSE(send<bool>(executor, SEL("hasPendingRetry")));
}

}  // namespace
}  // namespace rvf
