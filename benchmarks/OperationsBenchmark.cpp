// SPDX-License-Identifier: Apache-2.0
//
// Operations, retries and log calls, beside the same blocks posted to the bare main queue.

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "Platform/RunLoop/MainQueue.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/System/SystemLog.h"
#include "RVFoundation/BackgroundExecution/RVFRetryingBlockExecutor.h"
#include "RVFoundation/BackgroundExecution/RVFRunLoopOperation.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

void turnUntilIdle(NSRunLoop& loop) {
  while (loop.turn()) {
  }
}

/// Gives `perform` the number of steps, and measures one of them.
template <class Perform>
void measureSteps(benchmark::State& state, Perform perform) {
  const int steps = static_cast<int>(state.range(0));
  measure(
      state, [&] { perform(steps); }, steps);
}

void postToMainQueue(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  measureSteps(state, [&](int steps) {
    int count = 0;
    for (int i = 0; i < steps; ++i)
      MainQueue::dispatch_async([&count] { ++count; });
    turnUntilIdle(*loop);
    if (count != steps) state.SkipWithError("a block did not run");
  });
}

constexpr const char* kBareQueue = "/limit: blocks of the main queue";

void performMainQueueOperations(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = NSOperationQueue::mainQueue();
  measureSteps(state, [&](int steps) {
    int count = 0;
    for (int i = 0; i < steps; ++i)
      queue->addOperationWithBlock([&count] { ++count; });
    turnUntilIdle(*loop);
    if (count != steps) state.SkipWithError("an operation did not run");
  });
}
BENCHMARK(performMainQueueOperations)->Name("operation of the main queue/ours")->Arg(1'000);
BENCHMARK(postToMainQueue)
    ->Name(std::string("operation of the main queue") + kBareQueue)
    ->Arg(1'000);

/// Each depends on the one before.
void performChain(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = NSOperationQueue::mainQueue();
  measureSteps(state, [&](int steps) {
    int count = 0;
    Ref<NSOperation> last;
    for (int i = 0; i < steps; ++i) {
      const auto next = std::make_shared<NSBlockOperation>([&count] { ++count; });
      if (last) next->addDependency(last);
      queue->addOperation(next);
      last = next;
    }
    turnUntilIdle(*loop);
    if (count != steps) state.SkipWithError("an operation did not run");
  });
}
BENCHMARK(performChain)
    ->Name("chain of dependent operations/ours")
    ->RangeMultiplier(10)
    ->Range(1'000, 100'000);
BENCHMARK(postToMainQueue)
    ->Name(std::string("chain of dependent operations") + kBareQueue)
    ->RangeMultiplier(10)
    ->Range(1'000, 100'000);

void performRunLoopOperations(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = NSOperationQueue::mainQueue();
  measureSteps(state, [&](int steps) {
    for (int i = 0; i < steps; ++i) {
      const auto operation = std::make_shared<RVFRunLoopOperation>();
      operation->setExecutionBlock(
          [weak = std::weak_ptr(operation)] { weak.lock()->finishWithError(nullptr); });
      queue->addOperation(operation);
    }
    turnUntilIdle(*loop);
  });
}
BENCHMARK(performRunLoopOperations)->Name("operation on the run loop/ours")->Arg(1'000);
BENCHMARK(postToMainQueue)->Name(std::string("operation on the run loop") + kBareQueue)->Arg(1'000);

void performOnWorkers(benchmark::State& state) {
  const auto queue = std::make_shared<NSOperationQueue>();
  measureSteps(state, [&](int steps) {
    for (int i = 0; i < steps; ++i)
      queue->addOperationWithBlock([] {});
    queue->waitUntilAllOperationsAreFinished();
  });
}
BENCHMARK(performOnWorkers)->Name("operation on a worker/ours")->Arg(1'000)->UseRealTime();

void runOnThreads(benchmark::State& state) {
  measureSteps(state, [](int steps) {
    for (int i = 0; i < steps; ++i)
      std::thread([] {}).join();
  });
}
BENCHMARK(runOnThreads)
    ->Name("operation on a worker/limit: a thread each")
    ->Arg(1'000)
    ->UseRealTime();

/// One attempt after another, each reported failed from a later block. Time is not waited for.
void retry(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop->setClock(clock);
  measureSteps(state, [&](int steps) {
    const auto executor = std::make_shared<RVFRetryingBlockExecutor>();
    int left = steps;
    executor->executeBlockUntilSuccess(
        [&left](const auto& report) {
          MainQueue::dispatch_async([report, succeeds = --left == 0] { report(succeeds); });
        },
        nullptr);
    clock->runLoopFor(*loop, std::chrono::seconds(steps + 1));
    if (left != 0) state.SkipWithError("an attempt is missing");
  });
  loop->setClock(nullptr);
}
BENCHMARK(retry)->Name("retry/ours")->Arg(1'000);

/// Delayed blocks that start each other.
void startDelayedBlocks(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop->setClock(clock);
  measureSteps(state, [&](int steps) {
    int left = steps;
    std::function<void()> next = [&] {
      if (--left == 0) return;
      MainQueue::dispatch_async(
          [&next] { MainQueue::dispatch_after(std::chrono::seconds(1), next); });
    };
    next();
    clock->runLoopFor(*loop, std::chrono::seconds(steps + 1));
    if (left != 0) state.SkipWithError("a block is missing");
  });
  loop->setClock(nullptr);
}
BENCHMARK(startDelayedBlocks)->Name("retry/limit: delayed blocks")->Arg(1'000);

/// Its own socket, so that the machine needs no log.
void logBelowTheMask(benchmark::State& state) {
  const std::string path = "/tmp/rvf-benchmark-log-" + std::to_string(::getpid());
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  const int listener = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
  const aslclient client = asl_open("benchmark", "user", 0, {path, path});
  measureResult(state, [&] { return asl_log(client, 7, "nobody reads this"); });
  asl_close(client);
  ::close(listener);
  ::unlink(path.c_str());
}
BENCHMARK(logBelowTheMask)->Name("log message that the mask holds back/ours");

}  // namespace
}  // namespace rvf
