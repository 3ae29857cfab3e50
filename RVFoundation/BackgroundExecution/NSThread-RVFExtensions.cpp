// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/NSThread-RVFExtensions.h"

#include <utility>

#include "Platform/RunLoop/PerformSelector.h"

namespace rvf {
namespace {

using Block = std::function<void()>;

}  // namespace

void RVF_performBlock(const Ref<NSThread>& thread, Block block, bool waitUntilDone,
                      const RunLoopModes& modes) {
  if (!thread) return;
  if (thread->isCurrentThread()) return block();
  performBlockOnThread(thread, std::move(block), waitUntilDone, modes);
}

void RVF_performBlock(const Ref<NSThread>& thread, Block block, bool waitUntilDone) {
  if (!thread) return;
  if (thread->isCurrentThread()) return block();
  performBlockOnThread(thread, std::move(block), waitUntilDone);
}

void RVF_performBlock(const Ref<NSThread>& thread, Block block) {
  RVF_performBlock(thread, std::move(block), false);
}

void NSThread_RVFExtensions::RVF_performBlockInBackground(Block block) {
  NSThread::detachNewThread([block = std::move(block)] { RVF_runBlock(block); });
}

void NSThread_RVFExtensions::RVF_runBlock(const Block& block) {
  block();
}

}  // namespace rvf
