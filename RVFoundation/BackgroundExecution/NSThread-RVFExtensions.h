// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"

namespace rvf {

/// Calls the block on a thread: at once, within the call, if that is the current thread, whatever
/// the other arguments say; else when the thread runs its loop in one of the modes, by
/// `NSThread_RVFExtensions::RVF_runBlock`. With `waitUntilDone` the call returns when the block
/// has run, and raises what the block raises.
///
/// A caller that waits is raised `NSDestinationInvalidException` if the thread has finished, or
/// finishes before the block has run; without waiting the block is then dropped. An empty list of
/// modes drops the block; so does an absent thread.
RVF_EXPORT void RVF_performBlock(const Ref<NSThread>& thread, std::function<void()> block,
                                 bool waitUntilDone, const RunLoopModes& modes);
/// The same in the common modes.
RVF_EXPORT void RVF_performBlock(const Ref<NSThread>& thread, std::function<void()> block,
                                 bool waitUntilDone);
/// The same in the common modes, without waiting.
RVF_EXPORT void RVF_performBlock(const Ref<NSThread>& thread, std::function<void()>&& block);
RVF_EXPORT void RVF_performBlock(const Ref<NSThread>& thread, const std::function<void()>& block);

/// Operations of the thread class itself.
///
/// Thread: any. Lifetime: blocks are kept until they have run.
struct RVF_EXPORT NSThread_RVFExtensions {
  /// Calls the block on a new detached thread by `RVF_runBlock`: what it hands over outside of
  /// scopes of its own lives until the thread ends. An exception of the block ends the process.
  static void RVF_performBlockInBackground(std::function<void()> block);

  /// Calls the block. Opens no release scope.
  static void RVF_runBlock(const std::function<void()>& block);
};

}  // namespace rvf
