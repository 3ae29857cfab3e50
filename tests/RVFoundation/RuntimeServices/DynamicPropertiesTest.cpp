// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/RVFoundation/RuntimeServices/DynamicPropertyStore.h"

namespace rvf {
namespace {

TEST(DynamicProperties, GainAGetterAndUnlessReadOnlyASetter) {
  const Class aClass = sampleStore()->isa();
  for (const std::string_view selector : {"title", "setTitle:", "count", "setCount:", "total"})
    EXPECT_TRUE(hasOwn(aClass, selector)) << selector;
  EXPECT_FALSE(hasOwn(aClass, "setTotal:"));
}

TEST(DynamicProperties, ThatAreNotDeclaredDynamicGainNothing) {
  EXPECT_FALSE(hasOwn(sampleStore()->isa(), "plain"));
  EXPECT_FALSE(hasOwn(sampleStore()->isa(), "setPlain:"));
}

TEST(DynamicProperties, GainTheAccessorsThatTheyName) {
  const Class aClass = sampleStore()->isa();
  EXPECT_TRUE(hasOwn(aClass, "isEnabled"));
  EXPECT_TRUE(hasOwn(aClass, "makeEnabled:"));
  EXPECT_FALSE(hasOwn(aClass, "enabled"));
  EXPECT_FALSE(hasOwn(aClass, "setEnabled:"));
}

TEST(DynamicProperties, KeepTheirValuesInTheProviderUnderTheirNames) {
  const auto store = sampleStore();
  send(store, SEL("setCount:"), 5L);
  EXPECT_EQ(store->values_->objectForKey("count")->description(), "5");
  EXPECT_EQ(send<long>(store, SEL("count")), 5);
  EXPECT_EQ(store->calls_, (std::vector<std::string>{"set count", "get count"}));
}

TEST(DynamicProperties, AreStoredUnderTheNameAlsoWhereTheAccessorsHaveOthers) {
  const auto store = sampleStore();
  send(store, SEL("makeEnabled:"), true);
  EXPECT_TRUE(send<bool>(store, SEL("isEnabled")));
  EXPECT_EQ(store->calls_, (std::vector<std::string>{"set enabled", "get enabled"}));
}

TEST(DynamicProperties, ThatWereNeverStoredReadAsZeroOrAbsent) {
  const auto store = sampleStore();
  EXPECT_EQ(send<long>(store, SEL("count")), 0);
  EXPECT_EQ(send<double>(store, SEL("total")), 0);
  EXPECT_FALSE(send<bool>(store, SEL("isEnabled")));
  EXPECT_EQ(send<id>(store, SEL("title")), nullptr);
}

TEST(DynamicProperties, ThatAreFlagsStoreYesForWhateverIsNotZero) {
  const auto store = sampleStore();
  for (const signed char value : std::initializer_list<signed char>{2, -1, 127}) {
    send(store, SEL("makeEnabled:"), value);
    const auto stored =
        std::dynamic_pointer_cast<NSNumber>(store->values_->objectForKey("enabled"));
    EXPECT_TRUE(stored && stored->objCType() == "c" && stored->integerValue() == 1) << int{value};
    EXPECT_EQ(send<signed char>(store, SEL("isEnabled")), 1) << int{value};
  }
}

TEST(DynamicProperties, MayBeSetToAbsent) {
  const auto store = sampleStore();
  send(store, SEL("setTitle:"), box("Till"));
  send(store, SEL("setTitle:"), nullptr);
  EXPECT_EQ(store->calls_.back(), "set title absent");
  EXPECT_EQ(send<id>(store, SEL("title")), nullptr);
}

TEST(DynamicProperties, ReadTheStoredObjectItself) {
  const auto store = sampleStore();
  const id title = box("Till");
  store->values_->setObject(title, "title");
  EXPECT_EQ(send<id>(store, SEL("title")), title);
  EXPECT_EQ(send<std::string>(store, SEL("title")), "Till");
}

TEST(DynamicProperties, ReadScalarsOfWhateverAnswersTheReading) {
  const auto store = std::make_shared<Store>(storeClass("Flexible", {{"share", "Td,D"}}));
  store->values_->setObject(box("2.5"), "share");
  EXPECT_EQ(send<double>(store, SEL("share")), 2.5);
}

TEST(DynamicProperties, WithCopyStoreACopy) {
  const auto store = std::make_shared<Store>(storeClass("Copying", {{"list", "T@,C,D"}}));
  const auto list = NSMutableArray::array();
  list->addObject(box("a"));
  send(store, SEL("setList:"), list);
  list->addObject(box("b"));
  const id stored = store->values_->objectForKey("list");
  EXPECT_NE(stored, list);
  EXPECT_EQ(stored->description(), "(a)");
}

TEST(DynamicProperties, WithRetainStoreTheVeryObject) {
  const auto store = std::make_shared<Store>(storeClass("Retaining", {{"list", "T@,&,D"}}));
  const auto list = NSMutableArray::array();
  send(store, SEL("setList:"), list);
  EXPECT_EQ(store->values_->objectForKey("list"), list);
}

TEST(DynamicProperties, WithCopyKeepTheCopyUntilTheScopeEnds) {
  const Class aClass = storeClass("ScopedCopying", {{"list", "T@,C,D"}});
  const auto store = std::make_shared<Store>(aClass);
  std::weak_ptr<NSObject> copy;
  {
    const NSAutoreleasePool pool;
    send(store, SEL("setList:"), NSMutableArray::array());
    copy = store->values_->objectForKey("list");
    store->values_->removeAllObjects();
    EXPECT_FALSE(copy.expired());
  }
  EXPECT_TRUE(copy.expired());
}

struct ReferenceRow {
  std::string_view attributes;
  bool isWeak;
};

std::ostream& operator<<(std::ostream& stream, const ReferenceRow& row) {
  return stream << row.attributes;
}

class ReferenceFlag : public ::testing::TestWithParam<ReferenceRow> {};

TEST_P(ReferenceFlag, TellsTheProviderWhetherToOwn) {
  const auto& [attributes, isWeak] = GetParam();
  const auto store = std::make_shared<Store>(
      storeClass("Reference" + std::string(attributes), {{"p", std::string(attributes)}}));
  const std::string suffix = isWeak ? " weak" : "";
  if (hasOwn(store->isa(), "setP:")) {
    sendWithArguments(*store, SEL("setP:"), std::vector<std::any>(1));
    EXPECT_TRUE(store->calls_.back().starts_with("set p" + suffix));
    EXPECT_EQ(store->calls_.back().find("weak") != std::string::npos, isWeak);
  }
  sendWithArguments(*store, SEL("p"), {});
  EXPECT_EQ(store->calls_.back(), "get p" + suffix);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReferenceFlag,
    ::testing::Values(ReferenceRow{"T@,D", true}, ReferenceRow{"T@,D,W", true},
                      ReferenceRow{"T@,D,&", false}, ReferenceRow{"T@,D,C", false},
                      ReferenceRow{"T@,D,&,W", true}, ReferenceRow{"T@,D,C,W", true},
                      ReferenceRow{"T@,D,R", false}, ReferenceRow{"T@,D,R,W", true},
                      ReferenceRow{"T@,D,R,&", false}, ReferenceRow{"Tq,D", false},
                      ReferenceRow{"Tq,D,W", false}, ReferenceRow{"Tq,D,R", false}));

TEST(DynamicProperties, OfASuperclassAreServedToSubclasses) {
  auto builder = storeBuilder("Subclass", sampleStore()->isa());
  builder.property("extra", "Ti,D");
  const Class aClass = builder.registered();
  Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
  const auto store = std::make_shared<Store>(aClass);
  send(store, SEL("setCount:"), 7L);
  send(store, SEL("setExtra:"), 8);
  EXPECT_EQ(send<long>(store, SEL("count")), 7);
  EXPECT_EQ(send<int>(store, SEL("extra")), 8);
}

TEST(DynamicProperties, OfASuperclassAreNotAddedAgain) {
  const Class aClass = storeBuilder("Inheriting", sampleStore()->isa()).registered();
  Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
  EXPECT_FALSE(hasOwn(aClass, "count"));
}

TEST(DynamicProperties, FollowThePropertyThatASubclassDeclaresAgain) {
  auto builder = storeBuilder("Redeclaring", storeClass("Redeclared", {{"item", "T@,&,D"}}));
  builder.property("item", "T@,W");
  const auto store = std::make_shared<Store>(builder.registered());
  send<id>(store, SEL("item"));
  EXPECT_EQ(store->calls_.back(), "get item weak");
}

TEST(DynamicProperties, OverrideTheMethodOfASuperclass) {
  ClassBuilder<Store> base("SynthesizerTestFixedBase", NSObject::classObject());
  const IMP fixed = +[](NSObject&, SEL) { return 1L; };
  const Class baseClass = base.method("count", fixed).registered();
  auto builder = storeBuilder("FixedDerived", baseClass);
  const Class aClass = builder.property("count", "Tq,D").registered();
  Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
  EXPECT_EQ(send<long>(std::make_shared<Store>(aClass), SEL("count")), 0);
}

TEST(DynamicProperties, ReachAProviderThatAnExtensionReplacesLater) {
  const auto store =
      std::make_shared<Store>(storeClass("Replaced", {{"count", "Tq,D"}, {"size", "Tq,D"}}));
  send(store, SEL("setCount:"), 5L);
  EXPECT_EQ(send<long>(store, SEL("count")), 5);
  const IMP provide = +[](NSObject&, SEL, std::string_view, bool) -> id { return box(7); };
  const IMP drop = +[](NSObject&, SEL, id, std::string_view, bool) {};
  class_addExtension(store->isa(), {{SEL("objectForDynamicProperty:isWeak:"), provide},
                                    {SEL("setObject:forDynamicProperty:isWeak:"), drop}});
  send(store, SEL("setCount:"), 6L);
  EXPECT_EQ(send<long>(store, SEL("count")), 7);
  EXPECT_EQ(store->values_->objectForKey("count")->description(), "5");
}

TEST(DynamicProperties, FollowAPropertyThatIsAddedLater) {
  const auto store = std::make_shared<Store>(
      storeBuilder("Growing", storeClass("Grown", {{"item", "T@,&,D"}})).registered());
  send<id>(store, SEL("item"));
  EXPECT_EQ(store->calls_.back(), "get item");
  class_addProperty(store->isa(), "item", "T@,W");
  send<id>(store, SEL("item"));
  EXPECT_EQ(store->calls_.back(), "get item weak");
}

TEST(DynamicProperties, OfManyClassesAnswerRightInTurn) {
  std::vector<Ref<Store>> stores;
  for (int i = 0; i < 100; ++i) {
    stores.push_back(std::make_shared<Store>(
        storeClass("Many" + std::to_string(i), {{"a", "Tq,D"}, {"b", "Tq,D"}})));
    send(stores.back(), SEL("setA:"), long{i});
    send(stores.back(), SEL("setB:"), long{-i});
  }
  for (std::size_t i = 0; i < stores.size(); ++i) {
    EXPECT_EQ(send<long>(stores[i], SEL("a")), static_cast<long>(i));
    EXPECT_EQ(send<long>(stores[i], SEL("b")), -static_cast<long>(i));
  }
}

/// Reads a property when its thread's objects are destroyed.
struct LastReader {
  Ref<Store> store_;
  long* result_ = nullptr;
  ~LastReader() {
    if (store_) *result_ = send<long>(store_, SEL("count"));
  }
};

TEST(DynamicProperties, AnswerTheLastDestructorsOfAThreadToo) {
  const auto store = sampleStore();
  send(store, SEL("setCount:"), 9L);
  long result = 0;
  std::thread([&] {
    thread_local LastReader reader;  // made first, so destroyed last
    reader.store_ = store;
    reader.result_ = &result;
    EXPECT_EQ(send<long>(store, SEL("count")), 9);
  }).join();
  EXPECT_EQ(result, 9);
}

/// A provider that forwards the two messages to another object.
class Forwarder final : public NSObject {
 public:
  explicit Forwarder(Ref<Store> target) : target_(std::move(target)) {}
  Class isa() const override {
    static const Class kClass = [] {
      ClassBuilder<Forwarder> builder("SynthesizerTestForwarder", NSObject::classObject());
      const Class aClass =
          builder.conformsTo("RVFDynamicPropertyProvider").property("count", "Tq,D").registered();
      Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
      return aClass;
    }();
    return kClass;
  }
  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override {
    const auto own = NSObject::methodSignatureForSelector(selector);
    return own ? own : target_->methodSignatureForSelector(selector);
  }
  void forwardInvocation(NSInvocation& invocation) override {
    invocation.invokeWithTarget(target_);
  }

 private:
  const Ref<Store> target_;
};

TEST(DynamicProperties, ReachAProviderThatForwards) {
  const auto store = sampleStore();
  const auto forwarder = std::make_shared<Forwarder>(store);
  send(forwarder, SEL("setCount:"), 4L);
  EXPECT_EQ(send<long>(forwarder, SEL("count")), 4);
  EXPECT_EQ(store->calls_, (std::vector<std::string>{"set count", "get count"}));
}

TEST(DynamicProperties, MayBeSynthesizedOneByOne) {
  const Class aClass = storeBuilder("Single").property("size", "TQ").registered();
  RVFPropertyInfo info;
  ASSERT_TRUE(RVFPropertyInfoForPropertyOfClass(aClass, "size", &info));
  Synthesizer::synthesizeProperty(info, aClass);
  const auto store = std::make_shared<Store>(aClass);
  send(store, SEL("setSize:"), 9UL);
  EXPECT_EQ(send<unsigned long>(store, SEL("size")), 9U);
}

TEST(DynamicProperties, OfAProviderWithObjectsForTextsWorkToo) {
  ClassBuilder<NSObject> builder("SynthesizerTestLoose", NSObject::classObject());
  const IMP provide = +[](NSObject&, SEL, id name, signed char) -> id { return name; };
  const Class aClass = builder.conformsTo("RVFDynamicPropertyProvider")
                           .property("title", "T@,C,D")
                           .method("objectForDynamicProperty:isWeak:", provide)
                           .registered();
  Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
  const auto getter = class_getMethodImplementation(aClass, SEL("title"));
  class Loose : public NSObject {
   public:
    explicit Loose(Class known) : class_(known) {}
    Class isa() const override { return class_; }
    const Class class_;
  };
  const auto loose = std::make_shared<Loose>(aClass);
  EXPECT_EQ(getter.call<std::string>(*loose, SEL("title")), "title");
}

}  // namespace
}  // namespace rvf
