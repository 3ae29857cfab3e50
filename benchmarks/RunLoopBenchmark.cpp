// SPDX-License-Identifier: Apache-2.0
//
// Posting blocks to another thread's run loop, beside a queue written by hand on the same event
// library, and how late a delayed block is.
//
// The argument of the posting benchmarks is the number of cores that the two threads may use. The
// times are those of ours; `ratio` is our time over that of the queue by hand, each the best of
// its rounds, and less than 1 means that ours is faster.

#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sched.h>
#include <uv.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"
#include "RVFoundation/BackgroundExecution/NSThread-RVFExtensions.h"

namespace {

using Block = std::function<void()>;
using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kBlocks = 100'000;

void pinToCore(pthread_t thread, std::size_t core) {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  CPU_SET(core, &cores);
  pthread_setaffinity_np(thread, sizeof cores, &cores);
}

/// The limit: nothing but a lock, a list and a wake-up when the list was empty.
class QueueByHand {
 public:
  QueueByHand() {
    uv_loop_init(&loop_);
    async_.data = this;
    uv_async_init(&loop_, &async_,
                  [](uv_async_t* async) { static_cast<QueueByHand*>(async->data)->runAll(); });
    worker_ = std::thread([this] { uv_run(&loop_, UV_RUN_DEFAULT); });
  }
  QueueByHand(const QueueByHand&) = delete;
  QueueByHand& operator=(const QueueByHand&) = delete;
  ~QueueByHand() {
    post([this] { uv_close(reinterpret_cast<uv_handle_t*>(&async_), nullptr); });
    worker_.join();
    uv_loop_close(&loop_);
  }

  pthread_t handle() { return worker_.native_handle(); }

  void post(Block block) {
    bool wasEmpty;
    {
      const std::lock_guard lock(mutex_);
      wasEmpty = incoming_.empty();
      incoming_.push_back(std::move(block));
    }
    if (wasEmpty) uv_async_send(&async_);
  }

 private:
  void runAll() {
    {
      const std::lock_guard lock(mutex_);
      running_.swap(incoming_);
    }
    for (Block& block : running_) {
      block();
      block = nullptr;
    }
    running_.clear();
  }

  uv_loop_t loop_{};
  uv_async_t async_{};
  std::mutex mutex_;
  std::vector<Block> incoming_;
  std::vector<Block> running_;
  std::thread worker_;
};

/// A thread that serves its run loop.
class ServedLoop {
 public:
  ServedLoop() {
    std::promise<rvf::Ref<rvf::NSThread>> serving;
    auto thread = serving.get_future();
    worker_ = std::thread([&serving] {
      const auto loop = rvf::NSRunLoop::currentRunLoop();
      loop->performBlock([&] { serving.set_value(rvf::NSThread::currentThread()); });
      loop->run();
    });
    thread_ = thread.get();
    loop_ = thread_->runLoop();
  }
  ServedLoop(const ServedLoop&) = delete;
  ServedLoop& operator=(const ServedLoop&) = delete;
  ~ServedLoop() {
    loop_->stop();
    worker_.join();
  }

  pthread_t handle() { return worker_.native_handle(); }

 protected:
  rvf::Ref<rvf::NSThread> thread_;
  rvf::Ref<rvf::NSRunLoop> loop_;
  std::thread worker_;
};

struct RunLoopPost : ServedLoop {
  void post(Block block) { loop_->performBlock(std::move(block)); }
};

struct ThreadPerform : ServedLoop {
  void post(Block block) { rvf::RVF_performBlock(thread_, std::move(block)); }
};

/// Adds 1, 2, ... `count` up on the target's thread and answers the sum.
template <class Target>
std::uint64_t postSum(Target& target, std::uint64_t count) {
  std::uint64_t sum = 0;
  std::atomic<bool> done{false};
  for (std::uint64_t i = 1; i <= count; ++i) {
    target.post([&sum, i] { sum += i; });
  }
  target.post([&done] {
    done = true;
    done.notify_one();
  });
  done.wait(false);
  return sum;
}

template <class Target>
double secondsToPost(Target& target) {
  const auto start = Clock::now();
  benchmark::DoNotOptimize(postSum(target, kBlocks));
  return std::chrono::duration<double>(Clock::now() - start).count();
}

template <class Target>
void postBlocks(benchmark::State& state) {
  Target ours;
  QueueByHand byHand;
  if (postSum(ours, 1'000) != postSum(byHand, 1'000)) return state.SkipWithError("unequal work");
  pinToCore(pthread_self(), 0);
  for (const pthread_t thread : {ours.handle(), byHand.handle()}) {
    pinToCore(thread, static_cast<std::size_t>(state.range(0) - 1));
  }
  double bestOfOurs = std::numeric_limits<double>::max();
  double bestByHand = bestOfOurs;
  for (auto _ : state) {
    bestByHand = std::min(bestByHand, secondsToPost(byHand));
    const double seconds = secondsToPost(ours);
    bestOfOurs = std::min(bestOfOurs, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["ratio"] = bestOfOurs / bestByHand;
  state.counters["ours_ns"] = bestOfOurs / kBlocks * 1e9;
  state.counters["by_hand_ns"] = bestByHand / kBlocks * 1e9;
}

BENCHMARK(postBlocks<RunLoopPost>)
    ->Name("NSRunLoop performBlock")
    ->Arg(1)
    ->Arg(2)
    ->UseManualTime()
    ->Iterations(40)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(postBlocks<ThreadPerform>)
    ->Name("RVF_performBlock")
    ->Arg(1)
    ->Arg(2)
    ->UseManualTime()
    ->Iterations(40)
    ->Unit(benchmark::kMillisecond);

/// There and back: the next block is posted when the last one has run.
template <class Target>
double secondsThereAndBack(Target& target, int count) {
  std::atomic<int> answered{0};
  const auto start = Clock::now();
  for (int i = 0; i < count; ++i) {
    target.post([&answered] {
      ++answered;
      answered.notify_one();
    });
    answered.wait(i);
  }
  return std::chrono::duration<double>(Clock::now() - start).count() / count;
}

void thereAndBack(benchmark::State& state) {
  constexpr int kTimes = 2'000;
  RunLoopPost ours;
  QueueByHand byHand;
  pinToCore(pthread_self(), 0);
  for (const pthread_t thread : {ours.handle(), byHand.handle()}) {
    pinToCore(thread, static_cast<std::size_t>(state.range(0) - 1));
  }
  double bestOfOurs = std::numeric_limits<double>::max();
  double bestByHand = bestOfOurs;
  for (auto _ : state) {
    bestByHand = std::min(bestByHand, secondsThereAndBack(byHand, kTimes));
    const double seconds = secondsThereAndBack(ours, kTimes);
    bestOfOurs = std::min(bestOfOurs, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["ratio"] = bestOfOurs / bestByHand;
  state.counters["ours_us"] = bestOfOurs * 1e6;
  state.counters["by_hand_us"] = bestByHand * 1e6;
}

BENCHMARK(thereAndBack)
    ->Name("there and back")
    ->Arg(1)
    ->Arg(2)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMicrosecond);

/// How long after its time a block runs. One that is early fails the benchmark.
void lateness(benchmark::State& state) {
  const auto loop = rvf::NSRunLoop::currentRunLoop();
  const auto delay = std::chrono::microseconds(state.range(0));
  const rvf::RunLoopModes modes{std::string(rvf::NSDefaultRunLoopMode)};
  std::vector<double> late;
  for (auto _ : state) {
    const auto due = Clock::now() + delay;
    double seconds = 0;
    loop->performAfterDelay(std::chrono::duration<double>(delay).count(), modes, [&] {
      seconds = std::chrono::duration<double>(Clock::now() - due).count();
    });
    loop->runMode(rvf::NSDefaultRunLoopMode, Clock::time_point::max());
    if (seconds < 0) return state.SkipWithError("a block ran early");
    late.push_back(seconds);
    state.SetIterationTime(seconds);
  }
  std::sort(late.begin(), late.end());
  state.counters["median_us"] = late[late.size() / 2] * 1e6;
  state.counters["p99_us"] = late[late.size() * 99 / 100] * 1e6;
  state.counters["max_us"] = late.back() * 1e6;
}

BENCHMARK(lateness)
    ->Name("lateness of a delay, in us")
    ->Arg(1'000)
    ->Arg(1'700)
    ->Arg(10'000)
    ->UseManualTime()
    ->Iterations(300)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
