// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// What the runtime knows of an instance variable, as an object: its name and its type encoding.
///
/// Thread: one at a time. Lifetime: owns its texts, so it may outlive what it describes.
class RVF_EXPORT RVFClassIvarDescriptor final : public NSObject {
 public:
  /// A new descriptor, kept alive at least until the current release scope ends.
  static Ref<RVFClassIvarDescriptor> classIvarDescriptorForIvar(const Ivar& ivar);
  static Ref<RVFClassIvarDescriptor> initWithIvar(const Ivar& ivar);

  explicit RVFClassIvarDescriptor(const Ivar& ivar);

  static Class classObject();
  Class isa() const override;

  /// The variable's, unless the descriptor was renamed.
  const std::string& name() const noexcept { return name_; }
  /// Renames the descriptor, not the variable.
  void setName(std::string_view name);
  const std::string& encodedType() const noexcept { return encodedType_; }
  /// Whether the type is that of an object, of any class.
  bool isObjCType() const noexcept { return encodedType_.starts_with('@'); }

 private:
  std::string name_;
  std::string encodedType_;
};

}  // namespace rvf
