// SPDX-License-Identifier: Apache-2.0

// Notifications against a signal library, key-value coding against a table of accessors, and what
// announcing costs. "ratio" is the time of one operation divided by that of its limit measured in
// the same run. Everything runs in a program that has had a second thread, as a client has: before
// that, the C++ library counts references without atomic operations.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/signals2.hpp>
#include <chrono>
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

namespace rvf {
namespace {

template <class Operation>
double nanosecondsOf(Operation operation, int calls) {
  double best = 1e12;
  for (int run = 0; run < 200; ++run) {  // short runs, so that some is undisturbed
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
      operation();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    best = std::min(best, taken.count() / calls);
  }
  return best;
}

/// Runs the operation under the benchmark's clock, and both operations in turn for the ratio.
template <class Operation, class Limit>
void compare(benchmark::State& state, Operation operation, Limit limit, int calls = 20'000) {
  static const bool kHasHadAThread = (std::thread([] {}).join(), true);
  benchmark::DoNotOptimize(kHasHadAThread);
  for (auto _ : state)
    operation();
  const double ours = nanosecondsOf(operation, calls);
  const double limits = nanosecondsOf(limit, calls);
  state.counters["ns"] = ours;
  state.counters["limit_ns"] = limits;
  state.counters["ratio"] = ours / limits;
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

std::vector<Ref<Till>> tills(benchmark::State& state) {
  std::vector<Ref<Till>> all;
  for (long i = 0; i < state.range(0); ++i)
    all.push_back(std::make_shared<Till>());
  return all;
}

/// The signal tracks its receivers, as the center does: neither calls what has died.
void postAgainstTrackingSignal(benchmark::State& state) {
  const auto center = std::make_shared<NSNotificationCenter>();
  boost::signals2::signal<void(const Ref<NSNotification>&)> signal;
  using Slot = decltype(signal)::slot_type;
  const auto receivers = tills(state);
  for (const auto& till : receivers) {
    center->addObserver(till, SEL("hear:"), "drawer", nullptr);
    signal.connect(Slot(&Till::hear, till.get(), boost::placeholders::_1).track_foreign(till));
  }
  const auto notification = NSNotification::notificationWithName("drawer");
  center->postNotification(notification);
  signal(notification);
  if (receivers.back()->heard() != 2) state.SkipWithError("another result");
  compare(
      state, [&] { center->postNotification(notification); }, [&] { signal(notification); },
      static_cast<int>(20'000 / state.range(0)));
}
BENCHMARK(postAgainstTrackingSignal)->ArgName("observers")->Arg(10)->Arg(1'000);

/// The signal calls whatever it was given: its receivers must outlive it.
void postAgainstPlainSignal(benchmark::State& state) {
  const auto center = std::make_shared<NSNotificationCenter>();
  boost::signals2::signal<void(const Ref<NSNotification>&)> signal;
  const auto receivers = tills(state);
  for (const auto& till : receivers) {
    center->addObserver(till, SEL("hear:"), "drawer", nullptr);
    signal.connect([raw = till.get()](const Ref<NSNotification>& posted) { raw->hear(posted); });
  }
  const auto notification = NSNotification::notificationWithName("drawer");
  center->postNotification(notification);
  signal(notification);
  if (receivers.back()->heard() != 2) state.SkipWithError("another result");
  compare(
      state, [&] { center->postNotification(notification); }, [&] { signal(notification); },
      static_cast<int>(20'000 / state.range(0)));
}
BENCHMARK(postAgainstPlainSignal)->ArgName("observers")->Arg(10)->Arg(1'000);

void unobservedSetterAgainstPlainOne(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  compare(
      state, [&] { till->setDrawer(8); }, [&] { till->setDrawerSilently(8); });
}
BENCHMARK(unobservedSetterAgainstPlainOne);

/// A delivery of a change without values, and with the old and the new one.
void observedSetterAgainstTrackingSignal(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  boost::signals2::signal<void(const Ref<NSNotification>&)> signal;
  using Slot = decltype(signal)::slot_type;
  const auto receivers = tills(state);
  const auto options = static_cast<NSKeyValueObservingOptions>(state.range(1));
  for (const auto& receiver : receivers) {
    addObserverForKeyPath(*till, receiver, "drawer", options);
    signal.connect(
        Slot(&Till::hear, receiver.get(), boost::placeholders::_1).track_foreign(receiver));
  }
  const auto notification = NSNotification::notificationWithName("drawer");
  till->setDrawer(9);
  signal(notification);
  if (receivers.back()->heard() != 2) state.SkipWithError("another result");
  compare(
      state, [&] { till->setDrawer(8); }, [&] { signal(notification); },
      static_cast<int>(20'000 / state.range(0)));
  for (const auto& receiver : receivers)
    removeObserverForKeyPath(*till, receiver, "drawer");
}
BENCHMARK(observedSetterAgainstTrackingSignal)
    ->ArgNames({"observers", "options"})
    ->Args({1, 0})
    ->Args({1, 3})
    ->Args({10, 3})
    ->Args({1'000, 3});

/// The limit: a table from name to a function that knows the type, and makes the same object.
void valueForKeyAgainstTable(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  std::unordered_map<std::string_view, std::function<id(Till&)>> table;
  table["drawer"] = [](Till& object) { return box(object.drawer()); };
  if (!objectsAreEqual(valueForKey(*till, "drawer"), table["drawer"](*till))) {
    state.SkipWithError("another result");
  }
  compare(
      state, [&] { benchmark::DoNotOptimize(valueForKey(*till, "drawer")); },
      [&] { benchmark::DoNotOptimize(table.find("drawer")->second(*till)); });
}
BENCHMARK(valueForKeyAgainstTable);

void setValueForKeyAgainstTable(benchmark::State& state) {
  const auto till = std::make_shared<Till>();
  std::unordered_map<std::string_view, std::function<void(Till&, const id&)>> table;
  table["drawer"] = [](Till& object, const id& value) {
    object.setDrawer(std::static_pointer_cast<NSNumber>(value)->longValue());
  };
  const id value = box(5L);
  setValueForKey(*till, value, "drawer");
  if (till->drawer() != 5) state.SkipWithError("another result");
  compare(
      state, [&] { setValueForKey(*till, value, "drawer"); },
      [&] { table.find("drawer")->second(*till, value); });
}
BENCHMARK(setValueForKeyAgainstTable);

}  // namespace
}  // namespace rvf
