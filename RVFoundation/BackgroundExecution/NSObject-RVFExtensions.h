// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSObject.h"

/// Running a block elsewhere or later, on behalf of any object. The receiver is kept alive until
/// the block has run, and gets the block through its method `_RVF_BLOCKPERFORMER_:`, which calls
/// it inside a release scope of its own and which a class may override. An absent receiver runs
/// nothing.
namespace rvf {

/// On a new detached thread. An exception of the block ends the process.
RVF_EXPORT void RVF_performBlockInBackground(const id& receiver, std::function<void()> block);

/// On the main thread while it runs its loop in one of the common modes. Always queued, also when
/// called there; never waits.
RVF_EXPORT void RVF_performBlockOnMainThread(const id& receiver, std::function<void()> block);

/// On the loop of the thread that calls, main or not, after `delay` seconds and in these modes.
RVF_EXPORT void RVF_performOnMainThreadAfterDelay(const id& receiver, double delay,
                                                  const RunLoopModes& inModes,
                                                  std::function<void()> block);

}  // namespace rvf
