// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSDateComponents.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

TEST(NSDateComponents, HaveNothingSetAtFirst) {
  const NSDateComponents components;
  for (const long field : {components.era(), components.year(), components.month(),
                           components.weekOfYear(), components.day(), components.weekday(),
                           components.hour(), components.minute(), components.second()})
    EXPECT_EQ(field, NSDateComponentUndefined);
}

TEST(NSDateComponents, KeepEveryFieldOfTheirOwn) {
  const char* names[] = {"era",     "year", "month",  "weekOfYear", "day",
                         "weekday", "hour", "minute", "second"};
  const auto components = std::make_shared<NSDateComponents>();
  long value = 10;
  for (const std::string name : names) {
    const std::string setter =
        "set" + std::string(1, static_cast<char>(name[0] - 'a' + 'A')) + name.substr(1) + ":";
    send<void>(components, SEL(setter), value++);
  }
  value = 10;
  for (const char* name : names)
    EXPECT_EQ(send<long>(components, SEL(name)), value++) << name;
}

TEST(NSDateComponents, KnowALeapMonth) {
  const auto components = std::make_shared<NSDateComponents>();
  EXPECT_FALSE(components->isLeapMonth());
  send<void>(components, SEL("setLeapMonth:"), true);
  EXPECT_TRUE(send<bool>(components, SEL("isLeapMonth")));
  EXPECT_FALSE(objectsAreEqual(components, std::make_shared<NSDateComponents>()));
  EXPECT_TRUE(components->copy()->isLeapMonth());
}

TEST(NSDateComponents, AreEqualByTheirFields) {
  const auto one = std::make_shared<NSDateComponents>();
  const auto other = std::make_shared<NSDateComponents>();
  EXPECT_TRUE(objectsAreEqual(one, other));
  one->setDay(1);
  EXPECT_FALSE(objectsAreEqual(one, other));
  other->setDay(1);
  EXPECT_TRUE(objectsAreEqual(one, other));
  EXPECT_EQ(one->hash(), other->hash());
  other->setSecond(0);
  EXPECT_FALSE(objectsAreEqual(one, other));
  EXPECT_FALSE(objectsAreEqual(one, nullptr));
}

TEST(NSDateComponents, AreCopiedToBeChangedOnTheirOwn) {
  const auto original = std::make_shared<NSDateComponents>();
  original->setYear(2024);
  const auto copied = std::dynamic_pointer_cast<NSDateComponents>(copyOfObject(original));
  ASSERT_NE(copied, nullptr);
  EXPECT_TRUE(objectsAreEqual(original, copied));
  copied->setYear(2025);
  EXPECT_EQ(original->year(), 2024);
}

}  // namespace
}  // namespace rvf
