// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "Platform/Export.h"

namespace rvf {

/// The files that the values below are read from; tests name others.
///
/// Thread: any, a plain value. Lifetime: owns its paths.
struct SystemControlSources {
  std::string productName = "/sys/class/dmi/id/product_name";
  std::string deviceTreeModel = "/proc/device-tree/model";
  std::string greatestSendBuffer = "/proc/sys/net/core/wmem_max";
};

/// For the whole process. Thread-safe.
RVF_EXPORT void setSystemControlSources(SystemControlSources sources);

/// Facts about the machine by the names and numbers of BSD's sysctl(3), read anew each time:
///
/// - "hw.model", {6, 2}: the model as text with a final NUL: the firmware's product name, or that
///   of the device tree where there is none.
/// - "kern.ipc.maxsockbuf", {1, 32, 1}: the greatest send buffer of a socket, 32 bits unsigned.
///
/// `oldlenp` holds the size of the buffer `oldp`, and then the length of the value; without a
/// buffer just the length is told. 0, or -1 with `errno`: ENOENT for another name, ENOMEM for too
/// small a buffer, EPERM for a new value (they are read only), EFAULT without a name, else why the
/// value cannot be read. Thread-safe.
RVF_EXPORT int sysctlbyname(const char* name, void* oldp, std::size_t* oldlenp,
                            const void* newp = nullptr, std::size_t newlen = 0);
RVF_EXPORT int sysctl(std::span<const int> name, void* oldp, std::size_t* oldlenp,
                      const void* newp = nullptr, std::size_t newlen = 0);

}  // namespace rvf
