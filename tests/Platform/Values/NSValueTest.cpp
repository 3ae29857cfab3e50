// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSValue.h"

#include <gtest/gtest.h>

#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

struct Point {
  long x;
  long y;
};

TEST(NSValue, GivesARecordBack) {
  const auto value = NSValue::valueWithBytes(Point{3, 4}, "{Point=qq}");
  Point point{};
  ASSERT_TRUE(value->getValue(point));
  EXPECT_EQ(point.x, 3);
  EXPECT_EQ(point.y, 4);
  EXPECT_EQ(value->objCType(), "{Point=qq}");
}

TEST(NSValue, GivesNothingForARecordOfAnotherSize) {
  int number = 7;
  EXPECT_FALSE(NSValue::valueWithBytes(Point{3, 4}, "{Point=qq}")->getValue(number));
  EXPECT_EQ(number, 7);
}

TEST(NSValue, RecordsAreEqualByEncodingAndBytes) {
  const auto value = NSValue::valueWithBytes(Point{3, 4}, "{Point=qq}");
  const auto same = NSValue::valueWithBytes(Point{3, 4}, "{Point=qq}");
  EXPECT_TRUE(value->isEqual(same.get()));
  EXPECT_EQ(value->hash(), same->hash());
  EXPECT_FALSE(value->isEqual(NSValue::valueWithBytes(Point{3, 5}, "{Point=qq}").get()));
  EXPECT_FALSE(value->isEqual(NSValue::valueWithBytes(Point{3, 4}, "{Size=qq}").get()));
}

TEST(NSValue, DoesNotKeepAnObjectAlive) {
  id object = box("text");
  const auto value = NSValue::valueWithNonretainedObject(object);
  EXPECT_EQ(value->nonretainedObjectValue(), object);
  object.reset();
  EXPECT_EQ(value->nonretainedObjectValue(), nullptr);
}

TEST(NSValue, ReferencesAreEqualExactlyWhenTheyReferToTheSameObject) {
  const id object = box("text");
  const id equalObject = box("text");
  const auto value = NSValue::valueWithNonretainedObject(object);
  EXPECT_TRUE(value->isEqual(NSValue::valueWithNonretainedObject(object).get()));
  EXPECT_EQ(value->hash(), NSValue::valueWithNonretainedObject(object)->hash());
  EXPECT_FALSE(value->isEqual(NSValue::valueWithNonretainedObject(equalObject).get()));
}

TEST(NSValue, AReferenceIsUnequalToTheSameAddressInARecord) {
  const id object = box("text");
  const NSObject* const address = object.get();
  const auto reference = NSValue::valueWithNonretainedObject(object);
  EXPECT_FALSE(reference->isEqual(NSValue::valueWithBytes(address, "^v").get()));
}

}  // namespace
}  // namespace rvf
