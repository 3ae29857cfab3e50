// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/OperationQueueCore.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "Platform/RunLoop/MainQueue.h"
#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/RunLoop/QueuedOperation.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/ScopeExit.h"

namespace rvf {
namespace {

using Stage = QueuedOperation::Stage;

/// What a queue has this thread start; null while it is none.
thread_local const QueuedOperation* startedHere = nullptr;
/// Whether that is finished, so that the thread counts as coming although `start` has not returned.
thread_local bool isComingBack = false;

std::size_t processors() {
  return std::max(1U, std::thread::hardware_concurrency());
}

void requireNew(const Ref<NSOperation>& operation) {
  if (!operation) NSException::raise(NSInvalidArgumentException, "absent operation");
  if (operation->isFinished()) {
    NSException::raise(NSInvalidArgumentException, "a finished operation is added to a queue");
  }
  if (operation->isExecuting()) {
    NSException::raise(NSInvalidArgumentException, "an executing operation is added to a queue");
  }
}

/// Whether nothing is left that could finish an operation whose `start` has thrown.
bool isGivenUp(const NSOperation& operation) {
  return !operation.isExecuting() && !operation.isFinished();
}

}  // namespace

OperationQueueCore::OperationQueueCore(Kind kind)
    : kind_(kind),
      limit_(kind == Kind::kMainThread ? 1 : NSOperationQueueDefaultMaxConcurrentOperationCount) {}

void OperationQueueCore::add(const Ref<NSOperation>& operation) {
  requireNew(operation);
  const auto queued = std::make_shared<QueuedOperation>(operation, shared_from_this());
  {
    const Lock lock(mutex_);
    queued->place = all_.insert(all_.end(), queued);
  }
  if (queued->attach()) return;
  {
    const Lock lock(mutex_);
    remove(*queued);
  }
  NSException::raise(NSInvalidArgumentException, "an operation is added to a queue twice");
}

std::vector<Ref<NSOperation>> OperationQueueCore::operations() const {
  const Lock lock(mutex_);
  std::vector<Ref<NSOperation>> operations;
  operations.reserve(all_.size());
  for (const auto& queued : all_)
    operations.push_back(queued->reference());
  return operations;
}

long OperationQueueCore::limit() const {
  const Lock lock(mutex_);
  return limit_;
}

void OperationQueueCore::setLimit(long limit) {
  if (kind_ == Kind::kMainThread) return;
  {
    const Lock lock(mutex_);
    limit_ = limit;
  }
  provideThreads();
}

void OperationQueueCore::wait() {
  Lock lock(mutex_);
  if (kind_ == Kind::kMainThread && !all_.empty() && NSThread::isMainThread()) {
    NSException::raise(NSInternalInconsistencyException,
                       "the main thread waits for operations that it would have to start");
  }
  isEmpty_.wait(lock, [this] { return all_.empty(); });
}

void OperationQueueCore::becameReady(const Ref<QueuedOperation>& queued) {
  {
    const Lock lock(mutex_);
    if (queued->stage != Stage::kWaiting) return;
    queued->stage = Stage::kReady;
    ready_.push_back(queued);
  }
  provideThreads();
}

void OperationQueueCore::becameFinished(const Ref<QueuedOperation>& queued) {
  {
    const Lock lock(mutex_);
    const Stage before = std::exchange(queued->stage, Stage::kFinished);
    if (before == Stage::kFinished) return;
    if (before == Stage::kStarted) --underWay_;
    if (before == Stage::kReady) std::erase(ready_, queued);
    if (startedHere == queued.get() && returnsSoon(*queued)) {
      isComingBack = true;
      ++coming_;
    }
    remove(*queued);
  }
  provideThreads();
}

/// Whether this thread can be expected for the next operation once this one is finished. A `start`
/// that may still do anything gets a thread beside it instead; on the main thread there is none.
bool OperationQueueCore::returnsSoon(const QueuedOperation& queued) const {
  return kind_ == Kind::kMainThread || queued.endsWithStart();
}

void OperationQueueCore::remove(const QueuedOperation& queued) {
  all_.erase(queued.place);
  if (all_.empty()) isEmpty_.notify_all();
}

/// How many of the ready operations the limit lets start.
std::size_t OperationQueueCore::startable() const {
  const std::size_t limit = limit_ < 0 ? processors() : static_cast<std::size_t>(limit_);
  return limit > underWay_ ? std::min(ready_.size(), limit - underWay_) : 0;
}

/// Whoever makes more operations startable calls this. So each of them has somebody coming for it.
void OperationQueueCore::provideThreads() {
  Lock lock(mutex_);
  if (startable() <= coming_) return;
  kind_ == Kind::kMainThread ? postToMainThread(std::move(lock)) : startWorkers(std::move(lock));
}

void OperationQueueCore::postToMainThread(Lock lock) {
  ++coming_;
  lock.unlock();
  MainQueue::dispatch_async([self = shared_from_this()] { self->serveMainThread(); });
}

void OperationQueueCore::startWorkers(Lock lock) {
  while (startable() > coming_) {
    ++coming_;
    lock.unlock();
    try {
      NSThread::detachNewThread([self = shared_from_this()] { self->work(); });
    } catch (...) {
      lock.lock();
      --coming_;
      throw;
    }
    lock.lock();
  }
}

/// A batch, as a block of the main queue: operations that are added meanwhile let the loop turn.
void OperationQueueCore::serveMainThread() {
  for (std::size_t left = size(); left > 0; --left) {
    const auto next = takeNext();
    if (!next) return;
    try {
      startHere(*next);
    } catch (...) {
      if (isGivenUp(next->operation())) next->becameFinished();
      leave();
      throw;
    }
  }
  leave();
}

/// The life of a worker thread: one operation after another, as long as there are any.
void OperationQueueCore::work() {
  while (const auto next = takeNext())
    startHere(*next);
}

std::size_t OperationQueueCore::size() const {
  const Lock lock(mutex_);
  return all_.size();
}

/// To be called once by everybody who counts as coming, and does not any more.
Ref<QueuedOperation> OperationQueueCore::takeNext() {
  const Lock lock(mutex_);
  --coming_;
  if (startable() == 0) return nullptr;
  const auto next = std::move(ready_.front());
  ready_.pop_front();
  next->stage = Stage::kStarted;
  ++underWay_;
  return next;
}

/// Afterwards this thread counts as coming again, also after an exception.
void OperationQueueCore::startHere(const QueuedOperation& next) {
  const NSAutoreleasePool pool;
  startedHere = &next;
  isComingBack = false;
  const ScopeExit ended([this] {
    startedHere = nullptr;
    const Lock lock(mutex_);
    if (!isComingBack) ++coming_;
  });
  next.operation().start();
}

/// Instead of taking the next operation.
void OperationQueueCore::leave() {
  {
    const Lock lock(mutex_);
    --coming_;
  }
  provideThreads();
}

}  // namespace rvf
