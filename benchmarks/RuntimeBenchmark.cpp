// SPDX-License-Identifier: Apache-2.0

// Messages against virtual calls, and release scopes. "ratio" is the time of one operation divided
// by that of one virtual call (or of one allocation) measured in the same run.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

class Counter : public NSObject {
 public:
  explicit Counter(Class aClass) : class_(aClass) {}
  Class isa() const override { return class_; }
  virtual int next() { return ++count_; }

 protected:
  int count_ = 0;

 private:
  const Class class_;
};

// With a single class, the compiler would make the virtual call a direct one.
class BackwardCounter final : public Counter {
 public:
  using Counter::Counter;
  int next() override { return --count_; }
};

std::unique_ptr<Counter> counterOf(Class aClass) {
  bool backward = false;
  benchmark::DoNotOptimize(backward);
  if (backward) return std::make_unique<BackwardCounter>(aClass);
  return std::make_unique<Counter>(aClass);
}

/// A class `depth` levels below the one that has the method.
Class classBelow(int depth) {
  static const Class kRoot = ClassBuilder<Counter>("BenchmarkCounter", NSObject::classObject())
                                 .method<&Counter::next>("next")
                                 .registered();
  static std::vector<Class> chain = {kRoot};
  while (static_cast<int>(chain.size()) <= depth) {
    chain.push_back(
        ClassBuilder<Counter>("BenchmarkCounter" + std::to_string(chain.size()), chain.back())
            .registered());
  }
  return chain[static_cast<std::size_t>(depth)];
}

template <class Operation>
double nanosecondsOf(Operation operation) {
  constexpr int kCalls = 20'000;  // short, so that some run is undisturbed
  double best = 1e9;
  for (int run = 0; run < 200; ++run) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kCalls; ++i)
      operation();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    best = std::min(best, taken.count() / kCalls);
  }
  return best;
}

/// Runs the operation under the benchmark's clock, and both operations in turn for the ratio.
template <class Operation, class Limit>
void compare(benchmark::State& state, Operation operation, Limit limit) {
  for (auto _ : state)
    operation();
  state.counters["ratio"] = nanosecondsOf(operation) / nanosecondsOf(limit);
}

void virtualCall(benchmark::State& state) {
  const auto counter = counterOf(classBelow(0));
  for (auto _ : state)
    benchmark::DoNotOptimize(counter->next());
}
BENCHMARK(virtualCall);

void sendAgainstVirtualCall(benchmark::State& state) {
  const auto counter = counterOf(classBelow(static_cast<int>(state.range(0))));
  static const SEL kNext("next");
  const int before = counter->next();
  if (send<int>(*counter, kNext) != before + 1) state.SkipWithError("another result");
  compare(
      state, [&] { benchmark::DoNotOptimize(send<int>(*counter, kNext)); },
      [&] { benchmark::DoNotOptimize(counter->next()); });
}
BENCHMARK(sendAgainstVirtualCall)->ArgName("depth")->Arg(0)->Arg(1)->Arg(4)->Arg(16);

void convertedSend(benchmark::State& state) {
  const auto counter = counterOf(classBelow(0));
  static const SEL kNext("next");
  enum class Count : std::int32_t {};
  compare(
      state, [&] { benchmark::DoNotOptimize(send<Count>(*counter, kNext)); },
      [&] { benchmark::DoNotOptimize(counter->next()); });
}
BENCHMARK(convertedSend);

void emptyScope(benchmark::State& state) {
  for (auto _ : state) {
    const NSAutoreleasePool pool;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(emptyScope);

void autoreleasedObjectAgainstAllocation(benchmark::State& state) {
  compare(
      state,
      [] {
        const NSAutoreleasePool pool;
        benchmark::DoNotOptimize(autorelease(std::make_shared<NSObject>()));
      },
      [] { benchmark::DoNotOptimize(std::make_shared<NSObject>()); });
}
BENCHMARK(autoreleasedObjectAgainstAllocation);

}  // namespace
}  // namespace rvf
