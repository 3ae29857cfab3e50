// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSNumber.h"
#include "tests/RVFoundation/RuntimeServices/DynamicPropertyStore.h"

namespace rvf {
namespace {

TEST(Synthesis, OfAnUnsupportedTypeIsReportedForTheWholeClass) {
  auto builder = storeBuilder("Unsupported");
  const Class aClass = builder.property("flag", "TB,D").registered();
  EXPECT_EQ(reasonOf([&] { Synthesizer::synthesizeDynamicPropertiesForClass(aClass); }),
            "NSInternalInconsistencyException: unsupported property type: B");
  EXPECT_FALSE(hasOwn(aClass, "flag"));
}

TEST(Synthesis, OfAClassThatIsNoProviderIsReported) {
  ClassBuilder<NSObject> builder("SynthesizerTestStranger", NSObject::classObject());
  const Class aClass = builder.property("count", "Ti,D").registered();
  EXPECT_EQ(reasonOf([&] { Synthesizer::synthesizeDynamicPropertiesForClass(aClass); }),
            "NSInternalInconsistencyException: class must conform to RVFDynamicPropertyProvider");
  EXPECT_FALSE(hasOwn(aClass, "count"));
}

TEST(Synthesis, GoesOnIfTheHandlerReturns) {
  ClassBuilder<NSObject> builder("SynthesizerTestTolerated", NSObject::classObject());
  const Class aClass = builder.property("count", "Ti,D").registered();
  const auto texts = reportsOf([&] { Synthesizer::synthesizeDynamicPropertiesForClass(aClass); });
  EXPECT_EQ(texts, (std::vector<std::string>{
                       "+[RVFDynamicPropertySynthesizer synthesizeDynamicPropertiesForClass:] "
                       "RVFoundation/RVFDynamicPropertySynthesizer:117 class must conform to "
                       "RVFDynamicPropertyProvider"}));
  EXPECT_TRUE(hasOwn(aClass, "count"));
}

TEST(Synthesis, OfNoClassIsReported) {
  EXPECT_EQ(reportsOf([] { Synthesizer::synthesizeDynamicPropertiesForClass(nullptr); }).size(),
            1U);
}

TEST(Synthesis, CountsConformanceOfASuperclass) {
  ClassBuilder<Store> builder("SynthesizerTestHeir", sampleStore()->isa());
  const Class aClass = builder.property("more", "Ti,D").registered();
  EXPECT_NO_THROW(Synthesizer::synthesizeDynamicPropertiesForClass(aClass));
}

TEST(Synthesis, TheProtocolExtendsThatOfTheRootObject) {
  const Protocol provider = objc_getProtocol("RVFDynamicPropertyProvider");
  ASSERT_NE(provider, nullptr);
  EXPECT_TRUE(protocol_conformsToProtocol(provider, objc_getProtocol("NSObject")));
}

/// The short way to make a provider known.
class Note final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  Class isa() const override {
    static const Class kClass = Synthesizer::registered(
        ClassBuilder<Note>("SynthesizerTestNote", NSObject::classObject()).property("n", "Ti,D"));
    return kClass;
  }

 private:
  id objectForDynamicProperty(std::string_view, bool) override { return value_; }
  void setObject(const id& object, std::string_view, bool) override { value_ = object; }

  id value_;
};

TEST(Synthesis, RegistersAProviderWithItsProtocolAndAccessors) {
  const auto note = std::make_shared<Note>();
  EXPECT_TRUE(note->conformsToProtocol("RVFDynamicPropertyProvider"));
  send(note, SEL("setN:"), 4);
  EXPECT_EQ(send<int>(note, SEL("n")), 4);
}

TEST(SynthesisDeath, OfAClassThatHasTheGetterStopsTheProcess) {
  const IMP own = +[](NSObject&, SEL) { return 1; };
  const Class aClass =
      storeBuilder("OwnGetter").property("count", "Ti,D").method("count", own).registered();
  EXPECT_DEATH(Synthesizer::synthesizeDynamicPropertiesForClass(aClass),
               "class_addMethod.*property->getter.*function \\+\\[RVFDynamicPropertySynthesizer "
               "synthesizeProperty:forClass:\\], file "
               "RVFoundation/RVFDynamicPropertySynthesizer, line 107");
}

TEST(SynthesisDeath, OfAClassThatHasTheSetterStopsTheProcess) {
  const IMP own = +[](NSObject&, SEL, int) {};
  const Class aClass =
      storeBuilder("OwnSetter").property("count", "Ti,D").method("setCount:", own).registered();
  EXPECT_DEATH(Synthesizer::synthesizeDynamicPropertiesForClass(aClass),
               "class_addMethod.*property->setter.*function \\+\\[RVFDynamicPropertySynthesizer "
               "synthesizeProperty:forClass:\\], file "
               "RVFoundation/RVFDynamicPropertySynthesizer, line 112");
}

TEST(SynthesisDeath, TwiceStopsTheProcess) {
  EXPECT_DEATH(Synthesizer::synthesizeDynamicPropertiesForClass(sampleStore()->isa()), "line 107");
}

TEST(SynthesisDeath, OfAnUnsupportedTypeStopsTheProcessIfTheHandlerReturns) {
  const Class aClass = storeBuilder("NoAccessor").property("flag", "TB,D").registered();
  EXPECT_DEATH(reportsOf([&] { Synthesizer::synthesizeDynamicPropertiesForClass(aClass); }),
               "line 107");
}

TEST(AccessorDeath, AGetterUnderTheSelectorOfNoPropertyStopsTheProcess) {
  const auto store = sampleStore();
  EXPECT_DEATH(Synthesizer::getterForType("@").call<id>(*store, SEL("nothing")),
               "\\(RVFPropertyInfoForSelector\\(.*\\), function GetPropValue, file "
               "RVFoundation/RVFDynamicPropertySynthesizer, line 145");
}

TEST(AccessorDeath, ASetterUnderTheSelectorOfNoPropertyStopsTheProcess) {
  const auto store = sampleStore();
  EXPECT_DEATH(Synthesizer::setterForType("i").call<void>(*store, SEL("nothing:"), 1),
               "\\(RVFPropertyInfoForSelector\\(.*\\), function SetPropValue, file "
               "RVFoundation/RVFDynamicPropertySynthesizer, line 198");
}

TEST(Accessors, RaiseForAnotherTypeWithClassAndSelector) {
  const auto store = sampleStore();
  EXPECT_EQ(reasonOf([&] { send(store, SEL("setCount:"), 2.5); }),
            "NSInvalidArgumentException: -[SynthesizerTestSample setCount:] got a value of type "
            "double where q is expected");
  EXPECT_EQ(reasonOf([&] { send<std::string>(store, SEL("count")); }),
            "NSInvalidArgumentException: -[SynthesizerTestSample count] answers a value of type "
            "long where text is expected");
}

TEST(Accessors, RaiseForASelectorThatIsNoneOfTheirs) {
  const auto store = sampleStore();
  EXPECT_TRUE(reasonOf([&] { send(store, SEL("setTotal:"), 2.5); })
                  .starts_with("NSInvalidArgumentException: -[SynthesizerTestSample setTotal:]: "
                               "unrecognized selector sent to instance 0x"));
}

TEST(Accessors, RaiseForAStoredObjectWithoutTheReading) {
  const auto store = sampleStore();
  store->values_->setObject(std::make_shared<NSObject>(), "count");
  EXPECT_TRUE(reasonOf([&] { send<long>(store, SEL("count")); })
                  .starts_with("NSInvalidArgumentException: -[NSObject longValue]: unrecognized "
                               "selector sent to instance 0x"));
}

TEST(Accessors, OfAClassWithoutTheProvidersMethodsRaise) {
  ClassBuilder<Store> builder("SynthesizerTestEmptyPromise", NSObject::classObject());
  const Class aClass =
      builder.conformsTo("RVFDynamicPropertyProvider").property("count", "Ti,D").registered();
  Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
  EXPECT_TRUE(reasonOf([&] { send<int>(std::make_shared<Store>(aClass), SEL("count")); })
                  .starts_with("NSInvalidArgumentException: -[SynthesizerTestEmptyPromise "
                               "objectForDynamicProperty:isWeak:]: unrecognized selector"));
}

}  // namespace
}  // namespace rvf
