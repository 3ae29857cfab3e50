// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSMutableArray.h"

#include <gtest/gtest.h>

#include <functional>

#include "Platform/Runtime/NSException.h"
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

class MutableArray : public ::testing::Test {
 protected:
  MutableArray() {
    for (const char* text : {"a", "b", "c"})
      array_->addObject(box(text));
  }
  const Ref<NSMutableArray> array_ = NSMutableArray::array();
};

/// Adds to an array when it is destroyed.
class Leaver final : public NSObject {
 public:
  explicit Leaver(NSMutableArray& array) : array_(array) {}
  ~Leaver() override { array_.addObject(box("left")); }

 private:
  NSMutableArray& array_;
};

TEST_F(MutableArray, InsertsReplacesAndRemoves) {
  array_->insertObject(box("d"), 3);
  array_->insertObject(box("x"), 0);
  array_->replaceObjectAtIndex(1, box("A"));
  array_->removeObjectAtIndex(2);
  EXPECT_EQ(array_->description(), "(x, A, c, d)");
  array_->removeAllObjects();
  EXPECT_EQ(array_->count(), 0U);
}

TEST_F(MutableArray, RemovesEveryEqualObject) {
  array_->addObject(box("a"));
  array_->removeObject(array_->objectAtIndex(0));
  EXPECT_EQ(array_->description(), "(b, c)");
  array_->removeObject(box("none"));
  EXPECT_EQ(array_->count(), 2U);
}

TEST_F(MutableArray, RaisesOutsideItsBounds) {
  EXPECT_EQ(raisedBy([this] { array_->insertObject(box("x"), 4); }),
            "NSRangeException: index 4 beyond bounds [0 .. 3]");
  EXPECT_EQ(raisedBy([this] { array_->replaceObjectAtIndex(3, box("x")); }),
            "NSRangeException: index 3 beyond bounds [0 .. 2]");
  EXPECT_EQ(raisedBy([this] { array_->removeObjectAtIndex(3); }),
            "NSRangeException: index 3 beyond bounds [0 .. 2]");
}

TEST_F(MutableArray, RaisesForAbsentObjectsAndStaysAsItWas) {
  EXPECT_THROW(array_->addObject(nullptr), NSException);
  EXPECT_THROW(array_->insertObject(nullptr, 0), NSException);
  EXPECT_THROW(array_->replaceObjectAtIndex(0, nullptr), NSException);
  EXPECT_EQ(array_->description(), "(a, b, c)");
}

TEST_F(MutableArray, RaisesWhenItIsChangedWhileItIsWalked) {
  const std::function<void()> changes[] = {
      [this] { array_->addObject(box("x")); },
      [this] { array_->insertObject(box("x"), 0); },
      [this] { array_->replaceObjectAtIndex(0, box("x")); },
      [this] { array_->removeObjectAtIndex(0); },
      [this] { array_->removeAllObjects(); },
  };
  for (const auto& change : changes) {
    array_->insertObject(box("first"), 0);
    const Ref<NSArray> asArray = array_;
    const auto walk = [&] {
      for (const id& object : *asArray) {
        change();
        EXPECT_EQ(unboxText(object), "first");  // outlives the change
      }
    };
    EXPECT_TRUE(raisedBy(walk).starts_with("NSGenericException: Collection <NSMutableArray: 0x"));
  }
}

TEST_F(MutableArray, MayBeChangedByWhoeverStopsTheWalk) {
  for (const id& object : *array_) {
    if (unboxText(object) != "b") continue;
    array_->removeObject(object);
    break;
  }
  EXPECT_EQ(array_->description(), "(a, c)");
}

TEST_F(MutableArray, DoesNotCountARemovalOfNothingAsAChange) {
  const auto walk = [this] {
    for (const id& object : *array_)
      array_->removeObject(box(object->description() + "?"));
  };
  EXPECT_NO_THROW(walk());
}

TEST_F(MutableArray, ReleasesObjectsWhenTheChangeIsComplete) {
  array_->addObject(std::make_shared<Leaver>(*array_));
  array_->removeObjectAtIndex(3);
  EXPECT_EQ(array_->description(), "(a, b, c, left)");
  array_->replaceObjectAtIndex(3, std::make_shared<Leaver>(*array_));
  array_->replaceObjectAtIndex(3, box("d"));
  EXPECT_EQ(array_->description(), "(a, b, c, d, left)");
  array_->replaceObjectAtIndex(4, std::make_shared<Leaver>(*array_));
  array_->removeAllObjects();
  EXPECT_EQ(array_->description(), "(left)");
}

TEST_F(MutableArray, CopiesItsObjectsOfThisMoment) {
  const auto copy = array_->copy();
  array_->removeAllObjects();
  EXPECT_EQ(copy->description(), "(a, b, c)");
}

}  // namespace
}  // namespace rvf
