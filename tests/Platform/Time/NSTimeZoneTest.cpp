// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSTimeZone.h"

#include <gtest/gtest.h>

#include <string>

#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

class DefaultTimeZoneTest : public testing::Test {
 protected:
  ~DefaultTimeZoneTest() override { NSTimeZone::setDefaultTimeZone(nullptr); }
};

TEST(NSTimeZone, KnowsNamesAndDistances) {
  for (const char* name : {"Europe/Berlin", "America/New_York", "GMT", "GMT+05:30"}) {
    const auto zone = NSTimeZone::timeZoneWithName(name);
    ASSERT_NE(zone, nullptr) << name;
    EXPECT_EQ(zone->name(), name);
  }
}

TEST(NSTimeZone, HasNoZoneOfAnUnknownName) {
  for (const char* name : {"", "Nowhere/Town", "Europe", "\xFF"})
    EXPECT_EQ(NSTimeZone::timeZoneWithName(name), nullptr) << name;
}

TEST(NSTimeZone, IsEqualByItsName) {
  const auto zone = NSTimeZone::timeZoneWithName("Europe/Berlin");
  EXPECT_TRUE(objectsAreEqual(zone, NSTimeZone::timeZoneWithName("Europe/Berlin")));
  EXPECT_EQ(zone->hash(), NSTimeZone::timeZoneWithName("Europe/Berlin")->hash());
  EXPECT_FALSE(objectsAreEqual(zone, NSTimeZone::timeZoneWithName("Europe/Paris")));
  EXPECT_EQ(copyOfObject(zone), zone);
  EXPECT_EQ(zone->description(), "Europe/Berlin");
}

TEST(NSTimeZone, TheDevicesZoneIsOneThatIsKnown) {
  const auto zone = NSTimeZone::systemTimeZone();
  EXPECT_NE(NSTimeZone::timeZoneWithName(zone->name()), nullptr) << zone->name();
}

TEST_F(DefaultTimeZoneTest, IsTheDevicesUntilOneIsSet) {
  EXPECT_TRUE(objectsAreEqual(NSTimeZone::defaultTimeZone(), NSTimeZone::systemTimeZone()));
  const auto zone = NSTimeZone::timeZoneWithName("Pacific/Apia");
  NSTimeZone::setDefaultTimeZone(zone);
  EXPECT_EQ(NSTimeZone::defaultTimeZone(), zone);
  NSTimeZone::setDefaultTimeZone(nullptr);
  EXPECT_TRUE(objectsAreEqual(NSTimeZone::defaultTimeZone(), NSTimeZone::systemTimeZone()));
}

}  // namespace
}  // namespace rvf
