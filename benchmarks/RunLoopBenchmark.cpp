// SPDX-License-Identifier: Apache-2.0
//
// Posting blocks to another thread's run loop, beside a queue written by hand on the same event
// library, and how late a delayed block is. "cores" is the number of cores that the two threads may
// use.

#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sched.h>
#include <uv.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"
#include "RVFoundation/BackgroundExecution/NSThread-RVFExtensions.h"
#include "benchmarks/Measure.h"

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

/// The sender on the first core, the receiver on the last of those that it may use.
template <class Target>
void pinBoth(const benchmark::State& state, Target& target) {
  pinToCore(pthread_self(), 0);
  pinToCore(target.handle(), static_cast<std::size_t>(state.range(0) - 1));
}

template <class Target>
void postBlocks(benchmark::State& state) {
  Target target;
  pinBoth(state, target);
  const auto post = [&] {
    if (postSum(target, kBlocks) != kBlocks * (kBlocks + 1) / 2) state.SkipWithError("other sum");
  };
  rvf::measure(state, post, kBlocks);
}

void forCores(benchmark::internal::Benchmark* each) {
  each->ArgName("cores")->Arg(1)->Arg(2)->UseRealTime();
}
BENCHMARK(postBlocks<RunLoopPost>)->Name("post a block/ours")->Apply(&forCores);
BENCHMARK(postBlocks<QueueByHand>)
    ->Name("post a block/limit: lock, vector and uv_async")
    ->Apply(&forCores);
BENCHMARK(postBlocks<ThreadPerform>)->Name("post by RVF_performBlock/ours")->Apply(&forCores);
BENCHMARK(postBlocks<QueueByHand>)
    ->Name("post by RVF_performBlock/limit: lock, vector and uv_async")
    ->Apply(&forCores);

/// There and back: the next block is posted when the last one has run.
template <class Target>
void thereAndBack(benchmark::State& state) {
  Target target;
  pinBoth(state, target);
  std::atomic<int> answered{0};
  int count = 0;
  const auto goAndReturn = [&] {
    target.post([&answered] {
      ++answered;
      answered.notify_one();
    });
    answered.wait(count++);
  };
  rvf::measure(state, goAndReturn);
}

BENCHMARK(thereAndBack<RunLoopPost>)->Name("there and back/ours")->Apply(&forCores);
BENCHMARK(thereAndBack<QueueByHand>)
    ->Name("there and back/limit: lock, vector and uv_async")
    ->Apply(&forCores);

/// Measures how long after its time `wait(delay)` comes back. One that is early fails.
template <class Wait>
void measureLateness(benchmark::State& state, Wait wait) {
  const auto delay = std::chrono::microseconds(state.range(0));
  pinToCore(pthread_self(), 0);
  for ([[maybe_unused]] auto _ : state) {
    const auto due = Clock::now() + delay;
    wait(delay);
    const double seconds = std::chrono::duration<double>(Clock::now() - due).count();
    if (seconds < 0) return state.SkipWithError("early");
    state.SetIterationTime(seconds);
  }
}

void lateness(benchmark::State& state) {
  const auto loop = rvf::NSRunLoop::currentRunLoop();
  const rvf::RunLoopModes modes{std::string(rvf::NSDefaultRunLoopMode)};
  measureLateness(state, [&](std::chrono::duration<double> delay) {
    bool hasRun = false;
    loop->performAfterDelay(delay.count(), modes, [&] { hasRun = true; });
    loop->runMode(rvf::NSDefaultRunLoopMode, Clock::time_point::max());
    if (!hasRun) state.SkipWithError("the block did not run");
  });
}

void latenessOfSleep(benchmark::State& state) {
  measureLateness(state, [](auto delay) { std::this_thread::sleep_for(delay); });
}

void forDelays(benchmark::internal::Benchmark* each) {
  each->ArgName("us")->Arg(1'000)->Arg(10'000)->UseManualTime()->Iterations(20);
}
BENCHMARK(lateness)->Name("lateness of a delay/ours")->Apply(&forDelays);
BENCHMARK(latenessOfSleep)->Name("lateness of a delay/limit: a sleeping thread")->Apply(&forDelays);

}  // namespace
