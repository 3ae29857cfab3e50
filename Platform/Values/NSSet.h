// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/ObjectHash.h"

namespace rvf {

/// A set of objects, equal ones once, none of them absent (that raises
/// `NSInvalidArgumentException`). In no defined order. Objects must keep their value while they are
/// in it.
///
/// Thread: any; immutable. Lifetime: keeps its objects.
class RVF_EXPORT NSSet final : public NSObject {
 public:
  using Objects = std::unordered_set<id, ObjectHash, ObjectEqual>;

  explicit NSSet(const std::vector<id>& objects);

  /// Of equal objects the first is kept.
  static Ref<NSSet> setWithObjects(const std::vector<id>& objects);

  static Class classObject();
  Class isa() const override;

  /// Membership is by equality, found by hash.
  std::size_t count() const noexcept { return objects_.size(); }
  bool containsObject(const id& object) const;
  Ref<NSArray> allObjects() const;

  /// For loops over the objects, in no defined order.
  auto begin() const noexcept { return objects_.begin(); }
  auto end() const noexcept { return objects_.end(); }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override { return hash_; }
  std::string description() const override;

 private:
  Objects objects_;
  std::size_t hash_ = 0;  // a sum, because equal sets may differ in their order
};

}  // namespace rvf
