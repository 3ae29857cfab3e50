// SPDX-License-Identifier: Apache-2.0

// Notifications beside a vector of functions and a signal library, changes beside the plain setter
// and that library, key-value coding beside a table of accessors. Everything runs in a program that
// has had a second thread, as a client has: before that, the C++ library counts references without
// atomic operations.

#include <benchmark/benchmark.h>

#include <boost/signals2.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Values/NSNumber.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

/// Measures one delivery of something that delivers to `count` at once.
template <class Work>
void measureDelivery(benchmark::State& state, Work work, std::int64_t count = 1) {
  static const bool kHasHadAThread = (std::thread([] {}).join(), true);
  benchmark::DoNotOptimize(kHasHadAThread);
  measure(state, work, count);
}

/// Something with a plain and an announcing setter for the same member.
class Till final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  long drawer() const { return drawer_; }
  __attribute__((noinline)) void setDrawer(long drawer) {
    announceChange(*this, "drawer", [&] { drawer_ = drawer; });
  }
  __attribute__((noinline)) void setDrawerSilently(long drawer) { drawer_ = drawer; }
  long heard() const { return heard_; }

  void hear(const Ref<NSNotification>&) { ++heard_; }
  void observe(std::string_view, const id&, const Ref<NSDictionary>&, void*) { ++heard_; }

 private:
  long drawer_ = 7;
  long heard_ = 0;
};

Class Till::classObject() {
  static const Class kClass =
      ClassBuilder<Till>("BenchmarkTill", NSObject::classObject())
          .method<&Till::drawer>("drawer")
          .method<&Till::setDrawer>("setDrawer:")
          .method<&Till::hear>("hear:")
          .method<&Till::observe>("observeValueForKeyPath:ofObject:change:context:")
          .registered();
  return kClass;
}

using Signal = boost::signals2::signal<void(const Ref<NSNotification>&)>;

std::vector<Ref<Till>> tills(const benchmark::State& state) {
  std::vector<Ref<Till>> all;
  for (long i = 0; i < state.range(0); ++i)
    all.push_back(std::make_shared<Till>());
  return all;
}

/// Posts once, checks that the last receiver heard it, and measures.
template <class Post>
void measurePost(benchmark::State& state, const std::vector<Ref<Till>>& receivers, Post post) {
  const auto notification = NSNotification::notificationWithName("drawer");
  post(notification);
  if (receivers.back()->heard() != 1) state.SkipWithError("not heard");
  measureDelivery(
      state, [&] { post(notification); }, state.range(0));
}

void postByCenter(benchmark::State& state) {
  const auto center = std::make_shared<NSNotificationCenter>();
  const auto receivers = tills(state);
  for (const auto& till : receivers)
    center->addObserver(till, SEL("hear:"), "drawer", nullptr);
  measurePost(state, receivers, [&](const auto& posted) { center->postNotification(posted); });
}

/// Neither thread-safe nor to be changed by what it calls.
void postByVector(benchmark::State& state) {
  std::vector<std::function<void(const Ref<NSNotification>&)>> functions;
  const auto receivers = tills(state);
  for (const auto& till : receivers)
    functions.emplace_back([raw = till.get()](const auto& posted) { raw->hear(posted); });
  measurePost(state, receivers, [&](const auto& posted) {
    for (const auto& function : functions)
      function(posted);
  });
}

/// Tracks its receivers, as the center does: neither calls what has died.
void connectTracking(Signal& signal, const std::vector<Ref<Till>>& receivers) {
  for (const auto& till : receivers) {
    signal.connect(
        Signal::slot_type(&Till::hear, till.get(), boost::placeholders::_1).track_foreign(till));
  }
}

void postByTrackingSignal(benchmark::State& state) {
  Signal signal;
  const auto receivers = tills(state);
  connectTracking(signal, receivers);
  measurePost(state, receivers, [&](const auto& posted) { signal(posted); });
}

/// Calls whatever it was given: its receivers must outlive it.
void postByPlainSignal(benchmark::State& state) {
  Signal signal;
  const auto receivers = tills(state);
  for (const auto& till : receivers)
    signal.connect([raw = till.get()](const Ref<NSNotification>& posted) { raw->hear(posted); });
  measurePost(state, receivers, [&](const auto& posted) { signal(posted); });
}

void forCounts(benchmark::internal::Benchmark* each) {
  each->ArgName("observers")->Arg(10)->Arg(1'000);
}
BENCHMARK(postByCenter)->Name("post/ours")->Apply(&forCounts);
BENCHMARK(postByVector)->Name("post/limit: vector of functions")->Apply(&forCounts);
BENCHMARK(postByTrackingSignal)->Name("post/peer: Boost.Signals2, tracking")->Apply(&forCounts);
BENCHMARK(postByPlainSignal)->Name("post/peer: Boost.Signals2, not tracking")->Apply(&forCounts);

void setUnobserved(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  measureDelivery(state, [&] { till->setDrawer(8); });
}
BENCHMARK(setUnobserved)->Name("announcing setter, unobserved/ours");

void setPlainly(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  measureDelivery(state, [&] { till->setDrawerSilently(8); });
}
BENCHMARK(setPlainly)->Name("announcing setter, unobserved/limit: plain setter");

/// A delivery of a change without values, or with the old and the new one.
template <NSKeyValueObservingOptions options>
void setObserved(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  const auto receivers = tills(state);
  for (const auto& receiver : receivers)
    addObserverForKeyPath(*till, receiver, "drawer", options);
  till->setDrawer(9);
  if (receivers.back()->heard() != 1) state.SkipWithError("not heard");
  measureDelivery(
      state, [&] { till->setDrawer(8); }, state.range(0));
  for (const auto& receiver : receivers)
    removeObserverForKeyPath(*till, receiver, "drawer");
}

void setAndSignal(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  Signal signal;
  const auto receivers = tills(state);
  connectTracking(signal, receivers);
  const auto notification = NSNotification::notificationWithName("drawer");
  const auto set = [&] {
    till->setDrawerSilently(8);
    signal(notification);
  };
  measureDelivery(state, set, state.range(0));
}

constexpr const char* kSignalPeer = "/peer: Boost.Signals2, tracking, no values";
constexpr auto kNoValues = static_cast<NSKeyValueObservingOptions>(0);
constexpr auto kBothValues = static_cast<NSKeyValueObservingOptions>(3);

void forOneAndMany(benchmark::internal::Benchmark* each) {
  each->ArgName("observers")->Arg(1)->Arg(1'000);
}
BENCHMARK(setObserved<kNoValues>)->Name("change without values/ours")->Apply(&forOneAndMany);
BENCHMARK(setAndSignal)
    ->Name(std::string("change without values") + kSignalPeer)
    ->Apply(&forOneAndMany);
BENCHMARK(setObserved<kBothValues>)->Name("change with values/ours")->Apply(&forOneAndMany);
BENCHMARK(setAndSignal)
    ->Name(std::string("change with values") + kSignalPeer)
    ->Apply(&forOneAndMany);

void readByKey(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  if (!objectsAreEqual(valueForKey(*till, "drawer"), box(7L))) state.SkipWithError("other value");
  measureDelivery(state, [&] { benchmark::DoNotOptimize(valueForKey(*till, "drawer")); });
}
BENCHMARK(readByKey)->Name("read a number by key/ours");

/// The limit: a table from name to a function that knows the type, and makes the same object.
void readByTable(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  std::unordered_map<std::string_view, std::function<id(Till&)>> table;
  table["drawer"] = [](Till& object) { return box(object.drawer()); };
  measureDelivery(state, [&] { benchmark::DoNotOptimize(table.find("drawer")->second(*till)); });
}
BENCHMARK(readByTable)->Name("read a number by key/limit: table of functions");

void writeByKey(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  const id value = box(5L);
  setValueForKey(*till, value, "drawer");
  if (till->drawer() != 5) state.SkipWithError("another value");
  measureDelivery(state, [&] { setValueForKey(*till, value, "drawer"); });
}
BENCHMARK(writeByKey)->Name("write a number by key/ours");

void writeByTable(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  const id value = box(5L);
  std::unordered_map<std::string_view, std::function<void(Till&, const id&)>> table;
  table["drawer"] = [](Till& object, const id& number) {
    object.setDrawer(std::static_pointer_cast<NSNumber>(number)->longValue());
  };
  measureDelivery(state, [&] { table.find("drawer")->second(*till, value); });
}
BENCHMARK(writeByTable)->Name("write a number by key/limit: table of functions");

}  // namespace
}  // namespace rvf
