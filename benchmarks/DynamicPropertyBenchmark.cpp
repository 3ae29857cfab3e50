// SPDX-License-Identifier: Apache-2.0

// Properties by name whose accessors are made at run time: one set and one get of a whole number.
// Our class has ten properties, "count" in their middle, and keeps each in a variable of its own.

#include <benchmark/benchmark.h>

#include <functional>
#include <string_view>
#include <unordered_map>

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

long setAndGetByMessage(NSObject& object, long value) {
  static const SEL kCount("count");
  static const SEL kSetCount("setCount:");
  send(object, kSetCount, value);
  return send<long>(object, kCount);
}

template <class Object>
void setAndGet(benchmark::State& state) {
  Object record;
  measurePair(state, [&](long value) { return setAndGetByMessage(record, value); });
}
BENCHMARK(setAndGet<Record>)->Name("set and get a dynamic property/ours");
BENCHMARK(setAndGet<DictionaryRecord>)->Name("set and get a dynamic property in a dictionary/ours");

/// The limit: a table from name to accessors that know the type.
struct Accessors {
  std::function<void(long)> set;
  std::function<long()> get;
};

void setAndGetByTable(benchmark::State& state) {
  long count = 0;
  std::unordered_map<std::string_view, Accessors> table;
  table["count"] = {[&count](long value) { count = value; }, [&count] { return count; }};
  measurePair(state, [&](long value) {
    table.find("count")->second.set(value);
    return table.find("count")->second.get();
  });
}
BENCHMARK(setAndGetByTable)->Name("set and get a dynamic property/limit: table of functions");
BENCHMARK(setAndGetByTable)
    ->Name("set and get a dynamic property in a dictionary/limit: table of functions");

}  // namespace
}  // namespace rvf
