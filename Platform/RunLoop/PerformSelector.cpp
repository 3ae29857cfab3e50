// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/PerformSelector.h"

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

using Block = NSThread::Block;

Block messageBlock(const id& target, SEL selector, const id& argument) {
  return [target, selector, argument] {
    if (selector.argumentCount() == 0) {
      send(target, selector);
    } else {
      send(target, selector, argument);
    }
  };
}

/// Where a caller waits for its block.
class Waiting final {
 public:
  enum class Outcome { kPending, kPerformed, kDropped };

  void finish(Outcome outcome, std::exception_ptr exception) {
    {
      const std::lock_guard lock(mutex_);
      outcome_ = outcome;
      exception_ = std::move(exception);
    }
    finished_.notify_one();
  }

  void wait() {
    std::unique_lock lock(mutex_);
    finished_.wait(lock, [this] { return outcome_ != Outcome::kPending; });
    if (outcome_ == Outcome::kDropped) {
      NSException::raise(NSDestinationInvalidException,
                         "the target thread finished before the work was performed");
    }
    if (exception_) std::rethrow_exception(std::exchange(exception_, nullptr));
  }

 private:
  std::mutex mutex_;
  std::condition_variable finished_;
  Outcome outcome_ = Outcome::kPending;
  std::exception_ptr exception_;
};

/// A block that somebody waits for. Destroyed unperformed, as when its thread's loop drops it,
/// it ends the wait as well.
class AwaitedBlock final {
 public:
  AwaitedBlock(Block block, std::shared_ptr<Waiting> waiting)
      : block_(std::move(block)), waiting_(std::move(waiting)) {}
  AwaitedBlock(const AwaitedBlock&) = delete;
  AwaitedBlock& operator=(const AwaitedBlock&) = delete;
  ~AwaitedBlock() {
    if (waiting_) waiting_->finish(Waiting::Outcome::kDropped, nullptr);
  }

  void perform() {
    std::exception_ptr exception;
    try {
      std::exchange(block_, nullptr)();
    } catch (...) {
      exception = std::current_exception();
    }
    std::exchange(waiting_, nullptr)->finish(Waiting::Outcome::kPerformed, std::move(exception));
  }

 private:
  Block block_;
  std::shared_ptr<Waiting> waiting_;
};

/// In the common modes if `modes` is null.
void post(NSRunLoop& loop, Block&& block, const RunLoopModes* modes) {
  if (modes) {
    loop.performInModes(*modes, std::move(block));
  } else {
    loop.performBlock(std::move(block));
  }
}

void postAndWait(NSRunLoop& loop, Block&& block, const RunLoopModes* modes) {
  const auto waiting = std::make_shared<Waiting>();
  auto awaited = std::make_shared<AwaitedBlock>(std::move(block), waiting);
  post(
      loop, [awaited = std::move(awaited)] { awaited->perform(); }, modes);
  waiting->wait();
}

void perform(const Ref<NSThread>& thread, Block&& block, bool waitUntilDone,
             const RunLoopModes* modes) {
  if (modes && modes->empty()) return;
  if (!thread) NSException::raise(NSInvalidArgumentException, "the target thread is absent");
  if (waitUntilDone && thread->isCurrentThread()) return block();
  if (waitUntilDone) return postAndWait(*thread->runLoop(), std::move(block), modes);
  post(*thread->runLoop(), std::move(block), modes);
}

}  // namespace

void performSelectorOnMainThread(const id& target, SEL selector, const id& argument,
                                 bool waitUntilDone) {
  performSelectorOnThread(target, selector, NSThread::mainThread(), argument, waitUntilDone);
}

void performSelectorOnMainThread(const id& target, SEL selector, const id& argument,
                                 bool waitUntilDone, const RunLoopModes& modes) {
  performSelectorOnThread(target, selector, NSThread::mainThread(), argument, waitUntilDone, modes);
}

void performSelectorOnThread(const id& target, SEL selector, const Ref<NSThread>& thread,
                             const id& argument, bool waitUntilDone) {
  if (target) perform(thread, messageBlock(target, selector, argument), waitUntilDone, nullptr);
}

void performSelectorOnThread(const id& target, SEL selector, const Ref<NSThread>& thread,
                             const id& argument, bool waitUntilDone, const RunLoopModes& modes) {
  if (target) perform(thread, messageBlock(target, selector, argument), waitUntilDone, &modes);
}

void performBlockOnThread(const Ref<NSThread>& thread, Block&& block, bool waitUntilDone) {
  perform(thread, std::move(block), waitUntilDone, nullptr);
}

void performBlockOnThread(const Ref<NSThread>& thread, Block&& block, bool waitUntilDone,
                          const RunLoopModes& modes) {
  perform(thread, std::move(block), waitUntilDone, &modes);
}

void performSelectorAfterDelay(const id& target, SEL selector, const id& argument,
                               double delaySeconds, const RunLoopModes& modes) {
  if (!target) return;
  NSRunLoop::currentRunLoop()->performAfterDelay(delaySeconds, modes,
                                                 messageBlock(target, selector, argument));
}

void performSelectorInBackground(const id& target, SEL selector, const id& argument) {
  if (!target) return;
  NSThread::detachNewThread([block = messageBlock(target, selector, argument)] {
    const NSAutoreleasePool pool;
    block();
  });
}

}  // namespace rvf
