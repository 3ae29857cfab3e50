// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "Platform/Export.h"

namespace rvf {

/// How many times by now properties or methods were added to classes that were known already, in
/// the whole process. What was read of classes while this number stayed the same is still right;
/// read it before them. Thread-safe.
RVF_EXPORT std::uint64_t classChangeCount() noexcept;

}  // namespace rvf
