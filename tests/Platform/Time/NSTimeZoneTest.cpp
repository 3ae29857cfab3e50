// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSTimeZone.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <utility>

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
  for (const std::string_view name :
       {"", "Nowhere/Town", "Europe", "europe/berlin", "Etc/Unknown", "GMT+25:00", "UTC+5", "\xFF"})
    EXPECT_EQ(NSTimeZone::timeZoneWithName(name), nullptr) << name;
  EXPECT_EQ(NSTimeZone::timeZoneWithName(std::string_view("GMT\0+5", 6)), nullptr);
}

TEST(NSTimeZone, IsNamedByItsDistance) {
  const std::pair<long, const char*> rows[] = {{0, "GMT"},
                                               {19800, "GMT+05:30"},
                                               {-12600, "GMT-03:30"},
                                               {1172, "GMT+00:19:32"},
                                               {-1, "GMT-00:00:01"},
                                               {86399, "GMT+23:59:59"},
                                               {-86399, "GMT-23:59:59"}};
  for (const auto& [seconds, name] : rows) {
    const auto zone = NSTimeZone::timeZoneForSecondsFromGMT(seconds);
    ASSERT_NE(zone, nullptr) << seconds;
    EXPECT_EQ(zone->name(), name);
  }
  for (const long seconds :
       {86400L, -86400L, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()})
    EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(seconds), nullptr) << seconds;
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
