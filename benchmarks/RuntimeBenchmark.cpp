// SPDX-License-Identifier: Apache-2.0

// Messages beside virtual calls, and release scopes beside bare allocations.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "benchmarks/Measure.h"

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

void callVirtually(benchmark::State& state) {
  const auto counter = counterOf(classBelow(0));
  measureResult(state, [&] { return counter->next(); });
}

void forDepths(benchmark::internal::Benchmark* each) {
  each->ArgName("depth")->Arg(0)->Arg(1)->Arg(4)->Arg(16);
}

void sendMessage(benchmark::State& state) {
  const auto counter = counterOf(classBelow(static_cast<int>(state.range(0))));
  static const SEL kNext("next");
  const int before = counter->next();
  if (send<int>(*counter, kNext) != before + 1) state.SkipWithError("another result");
  measureResult(state, [&] { return send<int>(*counter, kNext); });
}
BENCHMARK(sendMessage)->Name("send a message/ours")->Apply(&forDepths);
BENCHMARK(callVirtually)->Name("send a message/limit: virtual call")->Apply(&forDepths);

void sendConverted(benchmark::State& state) {
  const auto counter = counterOf(classBelow(0));
  static const SEL kNext("next");
  enum class Count : std::int32_t {};
  measureResult(state, [&] { return send<Count>(*counter, kNext); });
}
BENCHMARK(sendConverted)->Name("send a message, result converted/ours");
BENCHMARK(callVirtually)->Name("send a message, result converted/limit: virtual call");

void emptyScope(benchmark::State& state) {
  measure(state, [] {
    const NSAutoreleasePool pool;
    benchmark::ClobberMemory();
  });
}
BENCHMARK(emptyScope)->Name("open and close a release scope/ours");

void releaseAtEndOfScope(benchmark::State& state) {
  measure(state, [] {
    const NSAutoreleasePool pool;
    benchmark::DoNotOptimize(autorelease(std::make_shared<NSObject>()));
  });
}
BENCHMARK(releaseAtEndOfScope)->Name("autorelease an object/ours");

void allocateAndRelease(benchmark::State& state) {
  measureResult(state, [] { return std::make_shared<NSObject>(); });
}
BENCHMARK(allocateAndRelease)->Name("autorelease an object/limit: make and drop it");

}  // namespace
}  // namespace rvf
