// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// What the observers of a notification center are handed: a name, whom it is about, and what else
/// there is to say.
///
/// Thread: any; immutable, its object and user info by their own rules. Lifetime: keeps object and
/// user info.
class RVF_EXPORT NSNotification final : public NSObject {
 public:
  NSNotification(std::string_view name, id object, Ref<NSDictionary> userInfo);

  /// Object and user info may be absent.
  static Ref<NSNotification> notificationWithName(std::string_view name, id object = nullptr,
                                                  Ref<NSDictionary> userInfo = nullptr);

  static Class classObject();
  Class isa() const override;

  /// Object and user info are absent if the poster gave none.
  const std::string& name() const noexcept { return name_; }
  const id& object() const noexcept { return object_; }
  const Ref<NSDictionary>& userInfo() const noexcept { return userInfo_; }

 private:
  const std::string name_;
  const id object_;
  const Ref<NSDictionary> userInfo_;
};

}  // namespace rvf
