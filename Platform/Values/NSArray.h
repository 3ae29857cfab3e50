// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/CheckedIterator.h"

namespace rvf {

/// "Nothing found": the largest signed word.
inline constexpr std::size_t NSNotFound = ~std::size_t{0} >> 1;

/// An ordered list of objects, none of them absent (that raises `NSInvalidArgumentException`).
/// Immutable, so safe to share between threads and to iterate while callbacks run; but what is
/// passed around as an array may be an `NSMutableArray`. `copyOfObject` makes sure.
///
/// Thread: any, if it is no mutable one. Lifetime: keeps its objects.
class RVF_EXPORT NSArray : public NSObject {
 public:
  NSArray() = default;
  explicit NSArray(std::vector<id> objects);

  /// Of no object, or of these in their order.
  static Ref<NSArray> array();
  static Ref<NSArray> arrayWithObjects(std::vector<id> objects);
  /// From a list of references of one class.
  template <class T>
  static Ref<NSArray> arrayWithObjects(const std::vector<Ref<T>>& objects) {
    return std::make_shared<NSArray>(std::vector<id>(objects.begin(), objects.end()));
  }

  static Class classObject();
  Class isa() const override;

  /// In constant time, like access by index and at the ends.
  std::size_t count() const noexcept { return objects_.size(); }
  /// Raises `NSRangeException`, "index 2 beyond bounds [0 .. 1]", past the end.
  const id& objectAtIndex(std::size_t index) const;
  id firstObject() const { return objects_.empty() ? nullptr : objects_.front(); }
  id lastObject() const { return objects_.empty() ? nullptr : objects_.back(); }
  /// The first index of an equal object, or `NSNotFound`.
  std::size_t indexOfObject(const id& object) const;
  bool containsObject(const id& object) const;

  /// For loops over the objects. If the array is changed meanwhile, the next step raises
  /// `NSGenericException`.
  auto begin() const { return CheckedIterator(*this, changes_, objects_.begin()); }
  auto end() const { return CheckedIterator(*this, changes_, objects_.end()); }
  /// The objects themselves, where nothing can change the array meanwhile.
  const std::vector<id>& objects() const noexcept { return objects_; }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  /// "(a, b)"
  std::string description() const override;

 protected:
  /// For one change.
  std::vector<id>& mutableObjects() noexcept {
    ++changes_;
    return objects_;
  }

 private:
  std::vector<id> objects_;
  std::size_t changes_ = 0;
};

}  // namespace rvf
