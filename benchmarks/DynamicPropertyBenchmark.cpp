// SPDX-License-Identifier: Apache-2.0

// Properties by name whose accessors are made at run time: one set and one get of a whole number.
// "ratio" is the time of our pair divided by that of the peer's, taken in turns.

#include <benchmark/benchmark.h>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"
#include "benchmarks/DynamicProperties.h"

namespace rvf {
namespace {

class Record final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  Class isa() const override {
    static const Class kClass = RVFDynamicPropertySynthesizer::registered(
        ClassBuilder<Record>("BenchmarkRecord", NSObject::classObject())
            .property("title", "T@\"NSString\",C,D,N")
            .property("note", "T@\"NSString\",C,D,N")
            .property("price", "Td,D,N")
            .property("weight", "Td,D,N")
            .property("count", "Tq,D,N")
            .property("stock", "Tq,D,N")
            .property("enabled", "Tc,D,GisEnabled,N")
            .property("group", "T@,&,D,N")
            .property("owner", "T@,D,W,N")
            .property("total", "Td,R,D,N"));
    return kClass;
  }

  id objectForDynamicProperty(std::string_view name, bool) override { return valueOf(name); }
  void setObject(const id& object, std::string_view name, bool) override { valueOf(name) = object; }

 private:
  id& valueOf(std::string_view name) { return name == "count" ? count_ : other_; }

  id count_;
  id other_;
};

/// The same with the values in a dictionary, which is less to write.
class DictionaryRecord final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  Class isa() const override {
    static const Class kClass = RVFDynamicPropertySynthesizer::registered(
        ClassBuilder<DictionaryRecord>("BenchmarkDictionaryRecord", NSObject::classObject())
            .property("title", "T@\"NSString\",C,D,N")
            .property("count", "Tq,D,N"));
    return kClass;
  }

  id objectForDynamicProperty(std::string_view name, bool) override {
    return values_->objectForKey(name);
  }
  void setObject(const id& object, std::string_view name, bool) override {
    values_->setObject(object, name);
  }

 private:
  Ref<NSMutableDictionary> values_ = NSMutableDictionary::dictionary();
};

void runPair(benchmark::State& state, const Ref<NSObject>& record) {
  long value = 0;
  for (auto _ : state) {
    ++value;
    if (setAndGetDynamicProperty(*record, value) != value) state.SkipWithError("another value");
  }
}

void setAndGet(benchmark::State& state) {
  runPair(state, objectWithDynamicProperties());
}
BENCHMARK(setAndGet);

void setAndGetInADictionary(benchmark::State& state) {
  runPair(state, std::make_shared<DictionaryRecord>());
}
BENCHMARK(setAndGetInADictionary);

}  // namespace

Ref<NSObject> objectWithDynamicProperties() {
  return std::make_shared<Record>();
}

long setAndGetDynamicProperty(NSObject& object, long value) {
  static const SEL kCount("count");
  static const SEL kSetCount("setCount:");
  send(object, kSetCount, value);
  return send<long>(object, kCount);
}

}  // namespace rvf
