// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFTestingUserDefaults.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Platform/Network/NSURL.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

Ref<RVFTestingUserDefaults> make() {
  return RVFTestingUserDefaults::testingDefaults();
}

TEST(RVFTestingUserDefaults, EveryStoreIsNewAndEmpty) {
  const auto a = make();
  const auto b = make();
  a->setInteger(1, "k");
  EXPECT_FALSE(b->objectForKey("k"));
  EXPECT_EQ(b->data()->count(), 0U);
}

TEST(RVFTestingUserDefaults, LivesUntilTheScopeEnds) {
  std::weak_ptr<RVFTestingUserDefaults> weak;
  {
    const NSAutoreleasePool pool;
    weak = make();
    EXPECT_FALSE(weak.expired());
  }
  EXPECT_TRUE(weak.expired());
}

TEST(RVFTestingUserDefaults, KeepsTheVeryObjectsOfAnyClass) {
  const auto defaults = make();
  const auto dictionary = NSMutableDictionary::dictionary();
  for (const id& object : {id(dictionary), id(NSNull::null()), id(defaults->data())}) {
    defaults->setObject(object, "k");
    EXPECT_EQ(defaults->objectForKey("k"), object);
  }
  defaults->removeObjectForKey("k");
}

TEST(RVFTestingUserDefaults, AbsentRemoves) {
  const auto defaults = make();
  defaults->setInteger(1, "a");
  defaults->setInteger(1, "b");
  defaults->setObject(nullptr, "a");
  defaults->removeObjectForKey("b");
  defaults->removeObjectForKey("never there");
  EXPECT_EQ(defaults->data()->count(), 0U);
}

TEST(RVFTestingUserDefaults, TypedObjectReadingsCheckNothing) {
  const auto defaults = make();
  defaults->setInteger(5, "k");
  const id number = defaults->objectForKey("k");
  EXPECT_TRUE(objectsAreEqual(number, box(5)));
  EXPECT_EQ(defaults->stringForKey("k"), number);
  EXPECT_EQ(defaults->arrayForKey("k"), number);
  EXPECT_EQ(defaults->dictionaryForKey("k"), number);
  EXPECT_EQ(defaults->dataForKey("k"), number);
  EXPECT_EQ(defaults->stringArrayForKey("k"), number);
  EXPECT_EQ(defaults->URLForKey("k"), number);
  EXPECT_FALSE(defaults->stringForKey("absent"));
}

TEST(RVFTestingUserDefaults, NumericReadingsAskTheValue) {
  const struct {
    id value;
    long integer;
    double fraction;
    bool truth;
  } rows[] = {
      {nullptr, 0, 0, false},        {box("12"), 12, 12, true},  {box("12abc"), 12, 12, true},
      {box("YES"), 0, 0, true},      {box(2.5), 2, 2.5, true},   {box(false), 0, 0, false},
      {box("-1.5"), -1, -1.5, true}, {box("none"), 0, 0, false},
  };
  for (const auto& row : rows) {
    const auto defaults = make();
    defaults->setObject(row.value, "k");
    const std::string name = row.value ? row.value->description() : "absent";
    EXPECT_EQ(defaults->integerForKey("k"), row.integer) << name;
    EXPECT_EQ(defaults->floatForKey("k"), static_cast<float>(row.fraction)) << name;
    EXPECT_EQ(defaults->doubleForKey("k"), row.fraction) << name;
    EXPECT_EQ(defaults->boolForKey("k"), row.truth) << name;
  }
}

TEST(RVFTestingUserDefaults, AValueWithoutNumericReadingRaises) {
  const auto defaults = make();
  defaults->setObject(NSNull::null(), "k");
  try {
    defaults->integerForKey("k");
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_NE(exception.reason().find("unrecognized selector"), std::string::npos);
  }
}

TEST(RVFTestingUserDefaults, SettersBoxWithTheirTypeCode) {
  const auto defaults = make();
  defaults->setInteger(5, "q");
  defaults->setFloat(0.5F, "f");
  defaults->setDouble(2.5, "d");
  defaults->setBool(true, "c");
  for (const char* key : {"q", "f", "d", "c"})
    EXPECT_EQ(dynamic_cast<NSNumber&>(*defaults->objectForKey(key)).objCType(), key);
}

TEST(RVFTestingUserDefaults, KeepsTheURLItself) {
  const auto defaults = make();
  const auto url = NSURL::URLWithString("http://h/");
  defaults->setURL(url, "k");
  EXPECT_EQ(defaults->URLForKey("k"), url);
  defaults->setURL(nullptr, "k");
  EXPECT_FALSE(defaults->URLForKey("k"));
}

TEST(RVFTestingUserDefaults, RegisteredValuesFillGapsAndBecomeOrdinary) {
  const auto defaults = make();
  defaults->setInteger(9, "a");
  const auto before = defaults->data();
  defaults->registerDefaults(NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box(2)}}));
  EXPECT_NE(defaults->data(), before);
  EXPECT_EQ(before->count(), 1U);
  EXPECT_EQ(defaults->data()->description(), "{a = 9; b = 2;}");
  defaults->removeObjectForKey("b");
  EXPECT_FALSE(defaults->objectForKey("b"));
  defaults->registerDefaults(nullptr);
  EXPECT_EQ(defaults->data()->description(), "{a = 9;}");
}

TEST(RVFTestingUserDefaults, TheRegisteredDictionaryIsCopied) {
  const auto defaults = make();
  const auto registered = NSMutableDictionary::dictionary();
  defaults->registerDefaults(registered);
  defaults->setInteger(1, "k");
  EXPECT_EQ(registered->count(), 0U);
}

TEST(RVFTestingUserDefaults, SynchronizingDoesNothing) {
  const auto defaults = make();
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_FALSE(defaults->synchronizationError());
  EXPECT_TRUE(defaults->performExclusively([&] { defaults->setInteger(1, "k"); }));
  EXPECT_EQ(defaults->integerForKey("k"), 1);
}

TEST(RVFTestingUserDefaults, TheDataCanBeReplaced) {
  const auto defaults = make();
  const auto data = NSMutableDictionary::dictionary();
  data->setObject(box("v"), "k");
  defaults->setData(data);
  EXPECT_EQ(defaults->data(), data);
  EXPECT_EQ(unboxText(defaults->objectForKey("k")), "v");
  defaults->setData(nullptr);
  EXPECT_FALSE(defaults->objectForKey("k"));
  defaults->setInteger(1, "k");
  defaults->removeObjectForKey("k");
  EXPECT_FALSE(defaults->data());
}

TEST(RVFTestingUserDefaults, StandsInForUserDefaultsInMessagesToo) {
  const Ref<NSUserDefaults> defaults = make();
  EXPECT_TRUE(defaults->isKindOfClass(NSUserDefaults::classObject()));
  send(defaults, SEL("setObject:forKey:"), id(box("v")), std::string("k"));
  EXPECT_EQ(unboxText(send<id>(defaults, SEL("objectForKey:"), std::string("k"))), "v");
  EXPECT_EQ(send<Ref<NSMutableDictionary>>(defaults, SEL("data"))->count(), 1U);
  EXPECT_EQ(objc_getClass("RVFTestingUserDefaults"), RVFTestingUserDefaults::classObject());
}

}  // namespace
}  // namespace rvf
