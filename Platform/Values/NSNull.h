// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Stands for "absent" where a collection needs an object. There is one.
///
/// Thread: any; immutable. Lifetime: as long as the process.
class RVF_EXPORT NSNull final : public NSObject {
 public:
  /// Always the same object, so it may be compared by identity.
  static Ref<NSNull> null();

  /// Only `null` can make the key.
  class Key {
    friend class NSNull;
    Key() = default;
  };
  explicit NSNull(Key) {}

  static Class classObject();
  Class isa() const override;
  std::string description() const override { return "<null>"; }
};

}  // namespace rvf
