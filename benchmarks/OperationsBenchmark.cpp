// SPDX-License-Identifier: Apache-2.0
//
// Operations, retries and log calls, beside the bare main queue. `added_ns` is what a step takes
// more than posting the same block to the main queue takes in the same program.

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Platform/RunLoop/MainQueue.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/System/SystemLog.h"
#include "RVFoundation/BackgroundExecution/RVFRetryingBlockExecutor.h"
#include "RVFoundation/BackgroundExecution/RVFRunLoopOperation.h"

namespace rvf {
namespace {

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::duration<double, std::nano>;

constexpr int kRounds = 20;

void turnUntilIdle(NSRunLoop& loop) {
  while (loop.turn()) {
  }
}

/// The best of some rounds, in nanoseconds a step.
template <class Round>
double bestStep(int steps, Round&& round) {
  double best = 1e300;
  for (int i = 0; i < kRounds; ++i) {
    const auto start = Clock::now();
    round();
    best = std::min(best, Nanoseconds(Clock::now() - start).count() / steps);
  }
  return best;
}

double barePost(int steps) {
  const auto loop = NSRunLoop::mainRunLoop();
  return bestStep(steps, [&] {
    int count = 0;
    for (int i = 0; i < steps; ++i)
      MainQueue::dispatch_async([&count] { ++count; });
    turnUntilIdle(*loop);
    benchmark::DoNotOptimize(count);
  });
}

/// Runs `perform(steps)` once an iteration and tells what a step adds to a bare post.
template <class Perform>
void measure(benchmark::State& state, double bare, Perform&& perform) {
  const int steps = static_cast<int>(state.range(0));
  double step = 1e300;
  for (auto _ : state) {
    const auto start = Clock::now();
    perform(steps);
    step = std::min(step, Nanoseconds(Clock::now() - start).count() / steps);
  }
  state.SetItemsProcessed(state.iterations() * steps);
  state.SetComplexityN(steps);
  state.counters["step_ns"] = step;
  state.counters["bare_ns"] = bare;
  state.counters["added_ns"] = step - bare;
}

void performMainQueueOperations(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = NSOperationQueue::mainQueue();
  measure(state, barePost(static_cast<int>(state.range(0))), [&](int steps) {
    int count = 0;
    for (int i = 0; i < steps; ++i)
      queue->addOperationWithBlock([&count] { ++count; });
    turnUntilIdle(*loop);
    benchmark::DoNotOptimize(count);
  });
}
BENCHMARK(performMainQueueOperations)->Arg(1'000);

/// Each depends on the one before.
void performChain(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = NSOperationQueue::mainQueue();
  measure(state, barePost(static_cast<int>(state.range(0))), [&](int steps) {
    int count = 0;
    Ref<NSOperation> last;
    for (int i = 0; i < steps; ++i) {
      const auto next = std::make_shared<NSBlockOperation>([&count] { ++count; });
      if (last) next->addDependency(last);
      queue->addOperation(next);
      last = next;
    }
    turnUntilIdle(*loop);
    benchmark::DoNotOptimize(count);
  });
}
BENCHMARK(performChain)->RangeMultiplier(10)->Range(100, 100'000)->Complexity();

void performRunLoopOperations(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto queue = NSOperationQueue::mainQueue();
  measure(state, barePost(static_cast<int>(state.range(0))), [&](int steps) {
    for (int i = 0; i < steps; ++i) {
      const auto operation = std::make_shared<RVFRunLoopOperation>();
      operation->setExecutionBlock(
          [weak = std::weak_ptr(operation)] { weak.lock()->finishWithError(nullptr); });
      queue->addOperation(operation);
    }
    turnUntilIdle(*loop);
  });
}
BENCHMARK(performRunLoopOperations)->Arg(1'000);

void performOnWorkers(benchmark::State& state) {
  const auto queue = std::make_shared<NSOperationQueue>();
  measure(state, barePost(static_cast<int>(state.range(0))), [&](int steps) {
    for (int i = 0; i < steps; ++i)
      queue->addOperationWithBlock([] {});
    queue->waitUntilAllOperationsAreFinished();
  });
}
BENCHMARK(performOnWorkers)->Arg(1'000)->UseRealTime();

/// One attempt after another, each reported failed from a later block; beside delayed blocks that
/// start each other.
void retry(benchmark::State& state) {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop->setClock(clock);
  const int count = static_cast<int>(state.range(0));
  const double bare = bestStep(count, [&] {
    int left = count;
    std::function<void()> next = [&] {
      if (--left == 0) return;
      MainQueue::dispatch_async(
          [&next] { MainQueue::dispatch_after(std::chrono::seconds(1), next); });
    };
    next();
    clock->runLoopFor(*loop, std::chrono::seconds(count + 1));
  });
  measure(state, bare, [&](int steps) {
    const auto executor = std::make_shared<RVFRetryingBlockExecutor>();
    int left = steps;
    executor->executeBlockUntilSuccess(
        [&left](const auto& report) {
          MainQueue::dispatch_async([report, succeeds = --left == 0] { report(succeeds); });
        },
        nullptr);
    clock->runLoopFor(*loop, std::chrono::seconds(steps + 1));
  });
  loop->setClock(nullptr);
}
BENCHMARK(retry)->Arg(1'000);

/// Its own socket, so that the machine needs no log.
void logBelowTheMask(benchmark::State& state) {
  const std::string path = "/tmp/rvf-benchmark-log-" + std::to_string(::getpid());
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  const int listener = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
  const aslclient client = asl_open("benchmark", "user", 0, {path, path});
  for (auto _ : state)
    benchmark::DoNotOptimize(asl_log(client, 7, "nobody reads this"));
  asl_close(client);
  ::close(listener);
  ::unlink(path.c_str());
}
BENCHMARK(logBelowTheMask);

}  // namespace
}  // namespace rvf
