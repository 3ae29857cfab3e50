// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSAutoreleasePool.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>

#include "Platform/Runtime/NSObject.h"

namespace rvf {
namespace {

/// Runs a function when it is destroyed.
class Witness final : public NSObject {
 public:
  explicit Witness(std::function<void()> gone) : gone_(std::move(gone)) {}
  ~Witness() override { gone_(); }

 private:
  std::function<void()> gone_;
};

void autoreleaseWitness(std::function<void()> gone) {
  autorelease(std::make_shared<Witness>(std::move(gone)));
}

TEST(NSAutoreleasePool, KeepsAnObjectUntilItEnds) {
  bool gone = false;
  {
    const NSAutoreleasePool pool;
    autoreleaseWitness([&gone] { gone = true; });
    EXPECT_FALSE(gone);
  }
  EXPECT_TRUE(gone);
}

TEST(NSAutoreleasePool, ReturnsWhatItKeeps) {
  const NSAutoreleasePool pool;
  const auto object = std::make_shared<NSObject>();
  EXPECT_EQ(autorelease(object), object);
  EXPECT_EQ(object.use_count(), 2);
}

TEST(NSAutoreleasePool, IgnoresAbsentObjects) {
  const NSAutoreleasePool pool;
  EXPECT_EQ(autorelease(id()), nullptr);
}

TEST(NSAutoreleasePool, InnerOnesReleaseOnlyTheirOwn) {
  std::string order;
  {
    const NSAutoreleasePool outer;
    autoreleaseWitness([&order] { order += "outer "; });
    {
      const NSAutoreleasePool inner;
      autoreleaseWitness([&order] { order += "inner "; });
    }
    EXPECT_EQ(order, "inner ");
    autoreleaseWitness([&order] { order += "later "; });
  }
  EXPECT_EQ(order, "inner later outer ");
}

TEST(NSAutoreleasePool, ReleasesWhatDestructorsHandOver) {
  int gone = 0;
  {
    const NSAutoreleasePool pool;
    autoreleaseWitness([&gone] {
      ++gone;
      autoreleaseWitness([&gone] { ++gone; });
    });
  }
  EXPECT_EQ(gone, 2);
}

TEST(NSAutoreleasePool, SurvivesPoolsInDestructors) {
  int gone = 0;
  {
    const NSAutoreleasePool pool;
    for (int i = 0; i < 3; ++i) {
      autoreleaseWitness([&gone] {
        const NSAutoreleasePool nested;
        autoreleaseWitness([&gone] { ++gone; });
      });
    }
  }
  EXPECT_EQ(gone, 3);
}

TEST(NSAutoreleasePool, GoesOnAfterADrain) {
  int gone = 0;
  NSAutoreleasePool pool;
  autoreleaseWitness([&gone] { ++gone; });
  pool.drain();
  EXPECT_EQ(gone, 1);
  autoreleaseWitness([&gone] { ++gone; });
  EXPECT_EQ(gone, 1);
  pool.drain();
  EXPECT_EQ(gone, 2);
}

TEST(NSAutoreleasePool, OutsideEveryScopeObjectsLiveUntilTheNextOutermostEnds) {
  bool gone = false;
  std::jthread([&gone] {
    autoreleaseWitness([&gone] { gone = true; });
    EXPECT_FALSE(gone);
    { const NSAutoreleasePool pool; }
    EXPECT_TRUE(gone);
  }).join();
}

TEST(NSAutoreleasePool, OutsideEveryScopeObjectsLiveUntilTheirThreadEnds) {
  bool gone = false;
  bool wasGoneEarly = true;
  std::jthread([&] {
    autoreleaseWitness([&gone] { gone = true; });
    wasGoneEarly = gone;
  }).join();
  EXPECT_FALSE(wasGoneEarly);
  EXPECT_TRUE(gone);
}

TEST(NSAutoreleasePool, IsHarmlessInTheLastDestructorsOfAThread) {
  bool gone = false;
  std::jthread([&gone] {
    // Made before the thread's scopes, so destroyed after them.
    thread_local std::optional<Witness> late;
    late.emplace([&gone] {
      const NSAutoreleasePool pool;
      autoreleaseWitness([&gone] { gone = true; });
    });
    const NSAutoreleasePool pool;
  }).join();
  EXPECT_TRUE(gone);
}

TEST(NSAutoreleasePool, EndedBeforeAnInnerOneTakesItsObjectsAlong) {
  std::string order;
  std::optional<NSAutoreleasePool> outer(std::in_place);
  std::optional<NSAutoreleasePool> inner(std::in_place);
  autoreleaseWitness([&order] { order += "inner "; });
  outer.reset();
  EXPECT_EQ(order, "inner ");
  autoreleaseWitness([&order] { order += "between "; });
  inner.reset();
  { const NSAutoreleasePool next; }
  EXPECT_EQ(order, "inner between ");
}

TEST(NSAutoreleasePool, BelongsToItsThread) {
  bool gone = false;
  const NSAutoreleasePool pool;
  std::jthread([&gone] {
    const NSAutoreleasePool other;
    autoreleaseWitness([&gone] { gone = true; });
  }).join();
  EXPECT_TRUE(gone);
}

TEST(NSAutoreleasePool, KeepsNothingOfAMillionScopes) {
  int alive = 0;
  for (int i = 0; i < 1'000'000; ++i) {
    const NSAutoreleasePool pool;
    if (i % 1000 != 0) continue;
    ++alive;
    autoreleaseWitness([&alive] { --alive; });
  }
  EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace rvf
