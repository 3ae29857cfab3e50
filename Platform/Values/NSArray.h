// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// An ordered list of objects, none of them absent (that raises `NSInvalidArgumentException`).
/// Immutable, so safe to share between threads and to iterate while callbacks run.
class RVF_EXPORT NSArray : public NSObject {
 public:
  NSArray() = default;
  explicit NSArray(std::vector<id> objects);

  static Ref<NSArray> array();
  static Ref<NSArray> arrayWithObjects(std::vector<id> objects);
  /// From a list of references of one class.
  template <class T>
  static Ref<NSArray> arrayWithObjects(const std::vector<Ref<T>>& objects) {
    return std::make_shared<NSArray>(std::vector<id>(objects.begin(), objects.end()));
  }

  static Class classObject();
  Class isa() const override;

  std::size_t count() const noexcept { return objects_.size(); }
  /// Raises `NSRangeException`, "index 2 beyond bounds [0 .. 1]", past the end.
  const id& objectAtIndex(std::size_t index) const;
  id firstObject() const { return objects_.empty() ? nullptr : objects_.front(); }
  id lastObject() const { return objects_.empty() ? nullptr : objects_.back(); }
  /// The first index of an equal object, or `NSNotFound`.
  std::size_t indexOfObject(const id& object) const;
  bool containsObject(const id& object) const;

  const std::vector<id>& objects() const noexcept { return objects_; }
  auto begin() const noexcept { return objects_.begin(); }
  auto end() const noexcept { return objects_.end(); }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override;

 protected:
  std::vector<id>& mutableObjects() noexcept { return objects_; }

 private:
  std::vector<id> objects_;
};

/// "Nothing found": the largest signed word.
inline constexpr std::size_t NSNotFound = ~std::size_t{0} >> 1;

}  // namespace rvf
