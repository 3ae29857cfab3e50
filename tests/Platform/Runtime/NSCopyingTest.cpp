// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSCopying.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSCopying, AbsentStaysAbsent) {
  EXPECT_EQ(copyOfObject(nullptr), nullptr);
}

TEST(NSCopying, ImmutableObjectsAnswerThemselves) {
  const id text = box("text");
  EXPECT_EQ(copyOfObject(text), text);
}

TEST(NSCopying, MutableCollectionsAnswerAnImmutableCopy) {
  const auto array = NSMutableArray::array();
  array->addObject(box(1));
  const id copy = copyOfObject(array);
  array->addObject(box(2));
  EXPECT_TRUE(copy->isMemberOfClass(NSArray::classObject()));
  EXPECT_TRUE(objectsAreEqual(copy, NSArray::arrayWithObjects({box(1)})));
  EXPECT_TRUE(copyOfObject(NSMutableDictionary::dictionary())
                  ->isMemberOfClass(NSDictionary::classObject()));
}

TEST(NSCopying, ObjectsThatCannotBeCopiedRaise) {
  EXPECT_THROW(copyOfObject(std::make_shared<NSObject>()), NSException);
}

}  // namespace
}  // namespace rvf
