// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// What the root object and key-value coding and observing know of each other. Declared here
/// because every object answers their messages; defined in the room of observation, which stands
/// above this one.
///
/// Thread: any, as the object that is asked allows. Lifetime: keeps nothing.
class RVF_EXPORT KeyValueHooks final {
 public:
  /// The messages of coding, observing and binding that every object answers.
  static std::vector<Method> methods();

  /// Whether announcements of the object's changes can matter to anybody. One relaxed load: few
  /// objects are observed, and the setters of the others must not pay for it.
  static bool isObserved(const NSObject& object) noexcept {
    return object.isObserved_.load(std::memory_order_relaxed);
  }
  static void setObserved(const NSObject& object, bool isObserved) noexcept {
    object.isObserved_.store(isObserved, std::memory_order_relaxed);
  }
  /// Drops the registrations on an object that is being destroyed, with a warning.
  static void forgetObservers(const NSObject& object) noexcept;
};

}  // namespace rvf
