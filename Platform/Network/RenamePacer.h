// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>

#include "Platform/Export.h"

namespace rvf {

/// Keeps a publication from storming the network with new names: says how long to wait before the
/// next one is tried. The first ten collisions are answered at once, the following ones after
/// five seconds each (RFC 6762, 8.1); after fifty without a quiet minute it is given up.
class RVF_EXPORT RenamePacer final {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// Counts a collision. Seconds to wait before the next name; absent: give up.
  std::optional<double> delayAfterCollision(TimePoint now);

 private:
  int collisions_ = 0;
  TimePoint latest_;
};

}  // namespace rvf
