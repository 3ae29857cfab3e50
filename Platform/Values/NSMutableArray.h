// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#include "Platform/Export.h"
#include "Platform/Values/NSArray.h"

namespace rvf {

/// An array that can change. Iterate a `copy()` where what is called might change it. Removed
/// objects are released when the change is complete, so their destructors may use the array.
///
/// Thread: one at a time. Lifetime: keeps its objects while they are in it.
class RVF_EXPORT NSMutableArray final : public NSArray {
 public:
  using NSArray::NSArray;

  /// Empty.
  static Ref<NSMutableArray> array();

  static Class classObject();
  Class isa() const override;

  /// Absent objects raise `NSInvalidArgumentException`; indexes past the end `NSRangeException`.
  void addObject(id object);
  void insertObject(id object, std::size_t index);
  void replaceObjectAtIndex(std::size_t index, id object);
  void removeObjectAtIndex(std::size_t index);
  /// Removes every equal object; none is fine.
  void removeObject(const id& object);
  void removeAllObjects();

  /// The objects of this moment, immutable.
  Ref<NSArray> copy() const { return std::make_shared<NSArray>(objects()); }
};

}  // namespace rvf
