// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// What the root object and its associations know of each other: few objects have any, and the
/// others must not pay for a look-up when they are destroyed.
class AssociationTable final {
 public:
  static void markAsUsed(const NSObject& object) noexcept {
    object.hasAssociations_.store(true, std::memory_order_release);
  }
  static bool isUsedBy(const NSObject& object) noexcept {
    return object.hasAssociations_.load(std::memory_order_acquire);
  }
  /// Forgets what hangs on an object that is being destroyed.
  static void removeAll(const NSObject& object);
};

}  // namespace rvf
