// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {

/// Facts about the machine, for diagnostics and for sizing network buffers. Read anew at every
/// call.
///
/// Thread: any; without state. Lifetime: keeps nothing.
class RVF_EXPORT RVFHardwareInfo final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// The machine's model, "Unknown" where it cannot be told or is no UTF-8 of less than 128 bytes.
  std::string hardwareModel() const;
  /// Physical memory in whole MiB, a 64-bit integer.
  Ref<NSNumber> ramInMegabytes() const;
  /// A TCP send buffer's size in bytes, a 32-bit integer: an eighth of the kernel's limit, or
  /// 786432 where that cannot be read.
  Ref<NSNumber> tcpSendSpace() const;
};

}  // namespace rvf
