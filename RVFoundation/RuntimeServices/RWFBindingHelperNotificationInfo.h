// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A registration at a notification center that a `RWFBindingHelperProxy` made.
///
/// Thread: that of the helper's owner. Lifetime: neither observer nor object is kept, and both may
/// go.
class RVF_EXPORT RWFBindingHelperNotificationInfo final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// Not owned; absent once it is gone.
  id observer() const { return observer_.lock(); }
  void setObserver(const id& observer);
  /// Absent for a registration for every name.
  const std::optional<std::string>& name() const noexcept { return name_; }
  void setName(std::optional<std::string> name);
  /// Not owned; absent for a registration for every object, and once it is gone.
  id object() const { return object_.lock(); }
  void setObject(const id& object);
  /// Whether there was an object that is gone now.
  bool hasLostObject() const noexcept;

 private:
  std::weak_ptr<NSObject> observer_;
  std::optional<std::string> name_;
  std::weak_ptr<NSObject> object_;
};

}  // namespace rvf
