// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/AssociatedObjects.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr char kKey = 0;
constexpr char kOtherKey = 0;

TEST(AssociatedObjects, HangOnIdentityAndKey) {
  const id object = box("a");
  const id equal = box("a");
  const id value = box("value");
  objc_setAssociatedObject(object, &kKey, value, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(objc_getAssociatedObject(object, &kKey), value);
  EXPECT_EQ(objc_getAssociatedObject(object, &kOtherKey), nullptr);
  EXPECT_EQ(objc_getAssociatedObject(equal, &kKey), nullptr);
}

TEST(AssociatedObjects, AreReplacedAndTakenAway) {
  const id object = box("a");
  const auto value = box("value");
  objc_setAssociatedObject(object, &kKey, value, OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(object, &kKey, box("other"), OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(value.use_count(), 1);
  objc_setAssociatedObject(object, &kKey, nullptr, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(objc_getAssociatedObject(object, &kKey), nullptr);
}

TEST(AssociatedObjects, GoWithTheirObject) {
  const auto value = box("value");
  id object = box("a");
  objc_setAssociatedObject(object, &kKey, value, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(value.use_count(), 2);
  object.reset();
  EXPECT_EQ(value.use_count(), 1);
}

TEST(AssociatedObjects, ACopyStaysAsItWas) {
  const id object = box("a");
  const auto list = NSMutableArray::array();
  objc_setAssociatedObject(object, &kKey, list, OBJC_ASSOCIATION_COPY);
  list->addObject(box("late"));
  const auto kept = std::dynamic_pointer_cast<NSArray>(objc_getAssociatedObject(object, &kKey));
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->count(), 0U);
}

TEST(AssociatedObjects, AnObjectThatGoesMayHaveSomeItself) {
  const id object = box("a");
  id value = box("value");
  const auto deepest = box("deepest");
  objc_setAssociatedObject(value, &kKey, deepest, OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(object, &kKey, value, OBJC_ASSOCIATION_RETAIN);
  value.reset();
  objc_setAssociatedObject(object, &kKey, nullptr, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(deepest.use_count(), 1);
}

TEST(AssociatedObjects, AnAbsentObjectIsIgnored) {
  objc_setAssociatedObject(nullptr, &kKey, box("value"), OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(objc_getAssociatedObject(nullptr, &kKey), nullptr);
}

TEST(AssociatedObjects, ConcurrentThreadsHangValuesOnTheirOwnObjects) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 500; ++turn) {
        const id object = box("a");
        const id value = box("value");
        objc_setAssociatedObject(object, &kKey, value, OBJC_ASSOCIATION_RETAIN);
        EXPECT_EQ(objc_getAssociatedObject(object, &kKey), value);
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
}

}  // namespace
}  // namespace rvf
