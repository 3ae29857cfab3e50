// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/NSThread-RVFExtensions.h"

#include <utility>

#include "Platform/RunLoop/PerformSelector.h"

namespace rvf {
namespace {

using Block = std::function<void()>;

Block running(Block block) {
  return [block = std::move(block)] { NSThread_RVFExtensions::RVF_runBlock(block); };
}

}  // namespace

void RVF_performBlock(const Ref<NSThread>& thread, Block block, bool waitUntilDone,
                      const RunLoopModes& modes) {
  if (!thread) return;
  if (thread->isCurrentThread()) return block();
  performBlockOnThread(thread, running(std::move(block)), waitUntilDone, modes);
}

void RVF_performBlock(const Ref<NSThread>& thread, Block block, bool waitUntilDone) {
  if (!thread) return;
  if (thread->isCurrentThread()) return block();
  performBlockOnThread(thread, running(std::move(block)), waitUntilDone);
}

void RVF_performBlock(const Ref<NSThread>& thread, Block&& block) {
  if (!thread) return;
  if (thread->isCurrentThread()) return Block(std::move(block))();
  performBlockOnThread(thread, std::move(block), false);
}

void RVF_performBlock(const Ref<NSThread>& thread, const Block& block) {
  RVF_performBlock(thread, Block(block));
}

void NSThread_RVFExtensions::RVF_performBlockInBackground(Block block) {
  NSThread::detachNewThread(running(std::move(block)));
}

void NSThread_RVFExtensions::RVF_runBlock(const Block& block) {
  block();
}

}  // namespace rvf
