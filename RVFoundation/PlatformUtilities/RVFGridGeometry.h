// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "Platform/Export.h"
#include "Platform/Values/NSValue.h"

namespace rvf {

/// A cell of a grid.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct RVFGridPoint {
  std::int64_t x;
  std::int64_t y;

  bool operator==(const RVFGridPoint&) const = default;
};

/// An extent in cells.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct RVFGridSize {
  std::int64_t width;
  std::int64_t height;

  bool operator==(const RVFGridSize&) const = default;
};

/// A rectangle of cells: its first cell and its extent.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct RVFGridRect {
  RVFGridPoint origin;
  RVFGridSize size;

  bool operator==(const RVFGridRect&) const = default;
};

/// Whether two rectangles have a cell in common. Those that only share an edge or a corner have
/// none. Far edges beyond the range of the coordinates wrap around to its other end.
RVF_EXPORT bool RVFIntersectsGridRect(const RVFGridRect& a, const RVFGridRect& b) noexcept;

/// The records as objects, to be kept in collections. A point and a size are boxed alike, under the
/// type encoding "{?=qq}", a rectangle under "{?={?=qq}{?=qq}}".
///
/// Thread: any. Lifetime: an object holds a copy of the record.
struct RVF_EXPORT NSValue_RVFValueGeometryExtensions {
  /// A new object, which `RVF_gridRectValue` and the others below read.
  static Ref<NSValue> RVF_valueWithGridRect(const RVFGridRect& rect);
  static Ref<NSValue> RVF_valueWithGridSize(const RVFGridSize& size);
  static Ref<NSValue> RVF_valueWithGridPoint(const RVFGridPoint& point);
};

// The record in a value object: all zero if the object is absent or holds something of another
// size.
RVF_EXPORT RVFGridRect RVF_gridRectValue(const Ref<NSValue>& value);
RVF_EXPORT RVFGridSize RVF_gridSizeValue(const Ref<NSValue>& value);
RVF_EXPORT RVFGridPoint RVF_gridPointValue(const Ref<NSValue>& value);

}  // namespace rvf
