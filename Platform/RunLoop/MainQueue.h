// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>

#include "Platform/Export.h"

namespace rvf {

/// The queue of the main thread: its blocks run one after another on the main thread, while that
/// runs its loop in one of the common modes. A block that runs the loop again is not overtaken:
/// the next block waits until it has returned. Nothing takes a block back.
///
/// None runs a block within the call.
///
/// Thread: any. Lifetime: keeps blocks until they have run; what has not run when the process exits
/// never does.
class RVF_EXPORT MainQueue final {
 public:
  using Block = std::function<void()>;

  MainQueue() = delete;

  /// Runs the block after those that are queued already.
  static void dispatch_async(Block block);

  /// Queues the block when `delay` has passed on the main run loop's clock, never earlier; 0 or
  /// less: as soon as possible. Blocks of equal time run in the order given by one thread.
  static void dispatch_after(std::chrono::nanoseconds delay, Block block);
};

}  // namespace rvf
