// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSSet.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSSet, HoldsEqualObjectsOnce) {
  const auto set = NSSet::setWithObjects({box(1), box(1.0), box(true), box("1")});
  EXPECT_EQ(set->count(), 2U);
  EXPECT_TRUE(set->containsObject(box(1U)));
  EXPECT_FALSE(set->containsObject(box(2)));
  EXPECT_FALSE(set->containsObject(nullptr));
}

TEST(NSSet, RaisesForAbsentObjects) {
  EXPECT_THROW(NSSet::setWithObjects({nullptr}), NSException);
}

TEST(NSSet, IsEqualToOneOfEqualObjects) {
  const auto set = NSSet::setWithObjects({box("a"), box("b")});
  EXPECT_TRUE(set->isEqual(NSSet::setWithObjects({box("b"), box("a")}).get()));
  EXPECT_FALSE(set->isEqual(NSSet::setWithObjects({box("a")}).get()));
  EXPECT_EQ(set->allObjects()->count(), 2U);
}

TEST(NSSet, DescribesItsObjectsInOrder) {
  EXPECT_EQ(NSSet::setWithObjects({box("b"), box("a")})->description(), "{(a, b)}");
}

}  // namespace
}  // namespace rvf
