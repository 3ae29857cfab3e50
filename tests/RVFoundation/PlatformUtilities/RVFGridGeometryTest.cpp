// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFGridGeometry.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <initializer_list>
#include <limits>
#include <string>

namespace rvf {
namespace {

using Boxing = NSValue_RVFValueGeometryExtensions;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

struct Row {
  RVFGridRect a;
  RVFGridRect b;
  bool intersect;
};

std::string text(const RVFGridRect& rect) {
  return std::to_string(rect.origin.x) + "," + std::to_string(rect.origin.y) + " " +
         std::to_string(rect.size.width) + "x" + std::to_string(rect.size.height);
}

void expectRows(std::initializer_list<Row> rows) {
  for (const Row& row : rows)
    EXPECT_EQ(RVFIntersectsGridRect(row.a, row.b), row.intersect)
        << text(row.a) << " and " << text(row.b);
}

TEST(RVFGridGeometry, RectanglesIntersectIfTheyHaveACellInCommon) {
  expectRows({
      {{{0, 0}, {2, 2}}, {{1, 1}, {2, 2}}, true},
      {{{1, 1}, {2, 2}}, {{0, 0}, {2, 2}}, true},
      {{{0, 0}, {9, 9}}, {{4, 4}, {1, 1}}, true},
      {{{-3, -3}, {2, 2}}, {{-2, -2}, {2, 2}}, true},
      {{{0, 0}, {2, 2}}, {{5, 0}, {2, 2}}, false},
      {{{0, 0}, {2, 2}}, {{0, 5}, {2, 2}}, false},
      {{{5, 0}, {2, 2}}, {{0, 0}, {2, 2}}, false},
      {{{0, 5}, {2, 2}}, {{0, 0}, {2, 2}}, false},
  });
}

TEST(RVFGridGeometry, SharedEdgesAndCornersAreNoIntersection) {
  expectRows({
      {{{0, 0}, {2, 2}}, {{2, 0}, {2, 2}}, false},
      {{{2, 0}, {2, 2}}, {{0, 0}, {2, 2}}, false},
      {{{0, 0}, {2, 2}}, {{0, 2}, {2, 2}}, false},
      {{{0, 2}, {2, 2}}, {{0, 0}, {2, 2}}, false},
      {{{0, 0}, {2, 2}}, {{2, 2}, {2, 2}}, false},
  });
}

TEST(RVFGridGeometry, ARectangleWithoutExtentIntersectsNothingThatItTouches) {
  expectRows({
      {{{0, 0}, {0, 0}}, {{0, 0}, {5, 5}}, false},
      {{{5, 0}, {0, 5}}, {{0, 0}, {5, 5}}, false},
      {{{0, 0}, {0, 0}}, {{0, 0}, {0, 0}}, false},
      {{{2, 2}, {0, 0}}, {{0, 0}, {5, 5}}, true},  // inside, it touches nothing
  });
}

TEST(RVFGridGeometry, FarEdgesWrapAround) {
  expectRows({
      {{{kMost, 0}, {1, 2}}, {{0, 0}, {2, 2}}, false},
      {{{kMost, 0}, {1, 2}}, {{kMost, 0}, {1, 2}}, false},
      {{{kMost - 1, 0}, {1, 2}}, {{kMost - 1, 0}, {1, 2}}, true},
      {{{kLeast, kLeast}, {-1, -1}}, {{0, 0}, {1, 1}}, true},
      {{{kLeast, kLeast}, {kMost, kMost}}, {{-2, -2}, {1, 1}}, true},
  });
}

TEST(RVFGridGeometry, IntersectsAsItsCellsDo) {
  EXPECT_TRUE(rc::check([] {
    const auto coordinate = rc::gen::inRange<std::int64_t>(-4, 5);
    const auto extent = rc::gen::inRange<std::int64_t>(1, 5);
    const RVFGridRect a{{*coordinate, *coordinate}, {*extent, *extent}};
    const RVFGridRect b{{*coordinate, *coordinate}, {*extent, *extent}};
    bool haveCellInCommon = false;
    for (std::int64_t x = -4; x < 10; ++x) {
      for (std::int64_t y = -4; y < 10; ++y) {
        const auto covers = [x, y](const RVFGridRect& rect) {
          return x >= rect.origin.x && x < rect.origin.x + rect.size.width && y >= rect.origin.y &&
                 y < rect.origin.y + rect.size.height;
        };
        haveCellInCommon = haveCellInCommon || (covers(a) && covers(b));
      }
    }
    RC_ASSERT(RVFIntersectsGridRect(a, b) == haveCellInCommon);
  }));
}

TEST(RVFGridGeometry, RecordsComeOutOfTheirBoxesAsTheyWentIn) {
  const RVFGridPoint point{kLeast, kMost};
  const RVFGridSize size{-1, 7};
  const RVFGridRect rect{point, size};
  EXPECT_EQ(RVF_gridPointValue(Boxing::RVF_valueWithGridPoint(point)), point);
  EXPECT_EQ(RVF_gridSizeValue(Boxing::RVF_valueWithGridSize(size)), size);
  EXPECT_EQ(RVF_gridRectValue(Boxing::RVF_valueWithGridRect(rect)), rect);
}

TEST(RVFGridGeometry, BoxesHaveTheRecordsTypeEncodings) {
  EXPECT_EQ(Boxing::RVF_valueWithGridPoint({1, 2})->objCType(), "{?=qq}");
  EXPECT_EQ(Boxing::RVF_valueWithGridSize({1, 2})->objCType(), "{?=qq}");
  EXPECT_EQ(Boxing::RVF_valueWithGridRect({{1, 2}, {3, 4}})->objCType(), "{?={?=qq}{?=qq}}");
}

TEST(RVFGridGeometry, APointAndASizeAreBoxedAlike) {
  const auto point = Boxing::RVF_valueWithGridPoint({3, 4});
  const auto size = Boxing::RVF_valueWithGridSize({3, 4});
  EXPECT_TRUE(objectsAreEqual(point, size));
  EXPECT_EQ(RVF_gridSizeValue(point), (RVFGridSize{3, 4}));
  EXPECT_EQ(RVF_gridPointValue(size), (RVFGridPoint{3, 4}));
}

TEST(RVFGridGeometry, WhatHoldsNoSuchRecordIsAllZero) {
  const auto point = Boxing::RVF_valueWithGridPoint({3, 4});
  EXPECT_EQ(RVF_gridRectValue(point), RVFGridRect{});
  EXPECT_EQ(RVF_gridPointValue(nullptr), RVFGridPoint{});
  EXPECT_EQ(RVF_gridSizeValue(nullptr), RVFGridSize{});
  EXPECT_EQ(RVF_gridRectValue(nullptr), RVFGridRect{});
}

}  // namespace
}  // namespace rvf
