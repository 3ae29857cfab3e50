// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

namespace rvf::network {

/// Sets this program's wall clock forward or back, and nobody else's: the program has its own
/// versions of the system's clock functions, which add what was stepped. Timers that the kernel
/// would cancel when the clock is set become readable.
void stepWallClock(std::chrono::seconds step);

}  // namespace rvf::network
