// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Facts about this process and its machine.
///
/// Thread: any. Lifetime: the one there is lives as long as the process.
class RVF_EXPORT NSProcessInfo final : public NSObject {
 public:
  /// Always the same.
  static Ref<NSProcessInfo> processInfo();

  static Class classObject();
  Class isa() const override;

  /// The memory that the kernel manages, in bytes; a container's limit does not count.
  unsigned long long physicalMemory() const;
};

}  // namespace rvf
