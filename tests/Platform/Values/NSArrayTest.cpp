// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSArray.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

std::string raisedBy(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const NSException& exception) {
    return exception.what();
  }
  return "nothing";
}

TEST(NSArray, KeepsItsObjectsInOrder) {
  const auto array = NSArray::arrayWithObjects({box("b"), box("a")});
  EXPECT_EQ(array->count(), 2U);
  EXPECT_EQ(unboxText(array->objectAtIndex(1)), "a");
  EXPECT_EQ(unboxText(array->firstObject()), "b");
  EXPECT_EQ(unboxText(array->lastObject()), "a");
}

TEST(NSArray, HasNoFirstOrLastObjectWhenEmpty) {
  EXPECT_EQ(NSArray::array()->firstObject(), nullptr);
  EXPECT_EQ(NSArray::array()->lastObject(), nullptr);
}

TEST(NSArray, RaisesPastItsEnd) {
  const auto array = NSArray::arrayWithObjects({box("a"), box("b")});
  EXPECT_EQ(raisedBy([&] { array->objectAtIndex(2); }),
            "NSRangeException: index 2 beyond bounds [0 .. 1]");
  EXPECT_EQ(raisedBy([] { NSArray::array()->objectAtIndex(0); }),
            "NSRangeException: index 0 beyond bounds for empty array");
}

TEST(NSArray, RaisesForAbsentObjects) {
  EXPECT_EQ(raisedBy([] {
              NSArray::arrayWithObjects({box("a"), nullptr});
            }),
            "NSInvalidArgumentException: absent object put into an array");
}

TEST(NSArray, FindsEqualObjects) {
  const auto array = NSArray::arrayWithObjects({box(1), box("a"), box("a")});
  EXPECT_EQ(array->indexOfObject(box("a")), 1U);
  EXPECT_EQ(array->indexOfObject(box(1.0)), 0U);
  EXPECT_EQ(array->indexOfObject(box("b")), NSNotFound);
  EXPECT_EQ(array->indexOfObject(nullptr), NSNotFound);
  EXPECT_TRUE(array->containsObject(box("a")));
}

TEST(NSArray, NotFoundIsTheLargestSignedWord) {
  EXPECT_EQ(NSNotFound, 9223372036854775807U);
}

TEST(NSArray, IsEqualToOneOfEqualObjectsInTheSameOrder) {
  const auto array = NSArray::arrayWithObjects({box(1), box("a")});
  const auto same = NSArray::arrayWithObjects({box(1.0), box("a")});
  EXPECT_TRUE(array->isEqual(same.get()));
  EXPECT_EQ(array->hash(), same->hash());
  EXPECT_FALSE(array->isEqual(NSArray::arrayWithObjects({box("a"), box(1)}).get()));
}

TEST(NSArray, HashesItsObjectsInTheirOrder) {
  const auto array = NSArray::arrayWithObjects({box(1), box(2)});
  EXPECT_NE(array->hash(), NSArray::arrayWithObjects({box(2), box(1)})->hash());
  EXPECT_NE(array->hash(), NSArray::arrayWithObjects({box(1), box(3)})->hash());
  EXPECT_NE(array->hash(), NSArray::arrayWithObjects({box(1)})->hash());
  const auto same = NSMutableArray::array();
  same->addObject(box(1.0));
  same->addObject(box(2.0));
  EXPECT_EQ(array->hash(), same->hash());
}

TEST(NSArray, IsWalkedInOrder) {
  const auto array = NSArray::arrayWithObjects({box("a"), box("b")});
  std::string text;
  for (const id& object : *array)
    text += object->description();
  EXPECT_EQ(text, "ab");
}

TEST(NSArray, DescribesItsObjects) {
  EXPECT_EQ(NSArray::array()->description(), "()");
  EXPECT_EQ(NSArray::arrayWithObjects({box("a"), box(1)})->description(), "(a, 1)");
}

}  // namespace
}  // namespace rvf
