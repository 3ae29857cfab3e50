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

TEST(NSSet, HashesItsObjectsInNoOrder) {
  const auto set = NSSet::setWithObjects({box(1), box(2), box("a")});
  EXPECT_EQ(set->hash(), NSSet::setWithObjects({box("a"), box(2.0), box(1), box(1)})->hash());
  EXPECT_NE(set->hash(), NSSet::setWithObjects({box(1), box(2), box("b")})->hash());
  EXPECT_NE(set->hash(), NSSet::setWithObjects({box(3), box(0), box("a")})->hash());
}

/// Counts how often it is compared.
class Compared final : public NSObject {
 public:
  explicit Compared(std::size_t value) : value_(value) {}
  bool isEqual(const NSObject* other) const override {
    ++comparisons;
    const auto* compared = dynamic_cast<const Compared*>(other);
    return compared && compared->value_ == value_;
  }
  std::size_t hash() const override { return value_; }
  inline static std::size_t comparisons = 0;

 private:
  std::size_t value_;
};

TEST(NSSet, OfSetsComparesOnlyThoseThatMayBeEqual) {
  constexpr std::size_t kCount = 1000;
  std::vector<id> sets;
  for (std::size_t i = 0; i < kCount; ++i)
    sets.push_back(NSSet::setWithObjects({std::make_shared<Compared>(i)}));
  Compared::comparisons = 0;
  EXPECT_EQ(NSSet::setWithObjects(sets)->count(), kCount);
  EXPECT_LT(Compared::comparisons, kCount);
}

TEST(NSSet, DescribesItsObjectsInOrder) {
  EXPECT_EQ(NSSet::setWithObjects({box("b"), box("a")})->description(), "{(a, b)}");
}

}  // namespace
}  // namespace rvf
