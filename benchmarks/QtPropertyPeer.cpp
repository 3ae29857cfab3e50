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
void setAndGet(benchmark::State& state) {
  Record record;
  rvf::measurePair(state, [&](long value) { return setAndGet(record, value); });
}
BENCHMARK(setAndGet<QtRecord>)->Name("set and get a dynamic property/peer: QObject, declared");
BENCHMARK(setAndGet<QObject>)->Name("set and get a dynamic property/peer: QObject, dynamic");

}  // namespace

#include "QtPropertyPeer.moc"
