// SPDX-License-Identifier: Apache-2.0

// Qt's properties by name: declared ones and those that an object gets at run time.

#include <benchmark/benchmark.h>

#include <QObject>
#include <QVariant>

#include "benchmarks/DynamicProperties.h"

class QtRecord final : public QObject {
  Q_OBJECT
  Q_PROPERTY(qlonglong count MEMBER count_)

 private:
  qlonglong count_ = 0;
};

namespace {

long setAndGet(QObject& record, long value) {
  record.setProperty("count", QVariant(static_cast<qlonglong>(value)));
  return static_cast<long>(record.property("count").toLongLong());
}

template <class Record>
void compare(benchmark::State& state) {
  Record theirs;
  const auto ours = rvf::objectWithDynamicProperties();
  long value = 0;
  for (auto _ : state) {
    ++value;
    if (setAndGet(theirs, value) != value) state.SkipWithError("another value");
  }
  state.counters["ratio"] = rvf::timeOfPair(*ours, [&](long v) { return setAndGet(theirs, v); });
}

void againstDeclaredQtProperty(benchmark::State& state) {
  compare<QtRecord>(state);
}
BENCHMARK(againstDeclaredQtProperty);

void againstDynamicQtProperty(benchmark::State& state) {
  compare<QObject>(state);
}
BENCHMARK(againstDynamicQtProperty);

}  // namespace

#include "QtPropertyPeer.moc"
