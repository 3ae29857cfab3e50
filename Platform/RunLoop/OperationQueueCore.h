// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "Platform/RunLoop/NSOperation.h"

namespace rvf {

class QueuedOperation;

/// What is behind an operation queue. Its operations keep it alive, so the queue itself may go.
///
/// Operations, observers and threads are called and started outside of the lock.
class OperationQueueCore final : public std::enable_shared_from_this<OperationQueueCore> {
 public:
  enum class Kind { kWorkerThreads, kMainThread };

  explicit OperationQueueCore(Kind kind);
  OperationQueueCore(const OperationQueueCore&) = delete;
  OperationQueueCore& operator=(const OperationQueueCore&) = delete;

  void add(const Ref<NSOperation>& operation);
  std::vector<Ref<NSOperation>> operations() const;
  long limit() const;
  void setLimit(long limit);
  void wait();

  /// The operation may be started, now or as soon as the limit allows. Once is enough.
  void becameReady(const Ref<QueuedOperation>& queued);
  /// The operation is done with. Once is enough.
  void becameFinished(const Ref<QueuedOperation>& queued);

 private:
  using Lock = std::unique_lock<std::mutex>;

  std::size_t startable() const;
  bool returnsSoon(const QueuedOperation& queued) const;
  void remove(const QueuedOperation& queued);
  void provideThreads();
  void postToMainThread(Lock lock);
  void startWorkers(Lock lock);
  void work();
  void serveMainThread();
  std::size_t size() const;
  Ref<QueuedOperation> takeNext();
  void startHere(const QueuedOperation& next);
  void leave();

  const Kind kind_;
  mutable std::mutex mutex_;             // guards all below
  std::condition_variable isEmpty_;      // signals that no operation is left
  std::list<Ref<QueuedOperation>> all_;  // unfinished, in the order added
  std::deque<Ref<QueuedOperation>> ready_;
  std::size_t underWay_ = 0;  // started and not finished
  std::size_t coming_ = 0;    // workers, or one block of the main queue, about to take the next
  long limit_;
};

}  // namespace rvf
