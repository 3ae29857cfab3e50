// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace rvf {

/// How often `new` was called so far in a program that AllocationCount.cpp is linked into.
std::uint64_t allocationCount() noexcept;

}  // namespace rvf
