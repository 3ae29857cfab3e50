// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A piece of work that is done once, after those that it depends on. Queues (`NSOperationQueue`)
/// start it; a client may start it itself instead.
///
/// A subclass overrides `main` for work that is done when `main` returns. For work that goes on
/// afterwards it overrides `start`, `isExecuting` and `isFinished`, and announces the changes of
/// these keys with `willChangeValueForKey` and `didChangeValueForKey`: the announcement of
/// "isFinished" is what a queue, and the operations that depend on this one, go by.
///
/// The keys "isReady", "isExecuting", "isFinished" and "isCancelled" can be observed; observers are
/// told on the thread that makes the change.
///
/// Asking, cancelling, adding to a queue and changing dependencies is thread-safe. Of a subclass
/// that overrides `isFinished` or `isReady`, though, announcements are all that others go by: such
/// an operation must not be announced to be finished on one thread while it gets its first
/// dependent on another, nor to be ready while it is added to a queue.
///
/// Thread: any, within the limits above; overrides run on the thread that starts it. Lifetime: kept
/// by its queue until it is finished, and by those that depend on it.
class RVF_EXPORT NSOperation : public NSObject {
 public:
  NSOperation();
  ~NSOperation() override;
  static Class classObject();
  Class isa() const override;

  /// Calls `main` on this thread, unless the operation was cancelled, and is finished then. An
  /// exception of `main` comes out of here, with the operation finished.
  ///
  /// Does nothing if the operation is finished. Raises `NSInvalidArgumentException` if it was
  /// started before or is not ready.
  virtual void start();
  /// The work. Does nothing by itself. Long work asks `isCancelled` now and then.
  virtual void main();

  /// Asks the work to end early; it takes notice or not. An operation that is cancelled is ready,
  /// and must still be started to be finished: a queue does. Does nothing to a finished one.
  virtual void cancel();
  bool isCancelled() const noexcept { return isCancelled_; }

  /// Whether every dependency is finished, or this is cancelled.
  virtual bool isReady() const;
  virtual bool isExecuting() const;
  virtual bool isFinished() const;
  /// Whether `start` returns before the work is done. Queues do not ask.
  virtual bool isConcurrent() const;

  /// Makes the operation wait for another one, which it keeps alive; both may be in different
  /// queues or in none. One that is added twice counts once. To be done before the operation is
  /// added to a queue. Operations that wait for each other in a circle are never ready.
  ///
  /// Raises `NSInvalidArgumentException` for an absent operation and for the operation itself.
  void addDependency(const Ref<NSOperation>& operation);
  /// Does nothing if the operation does not depend on that one.
  void removeDependency(const Ref<NSOperation>& operation);
  /// In the order added, finished ones among them.
  std::vector<Ref<NSOperation>> dependencies() const;

 protected:
  /// How a queue and the dependents of an operation learn that it is ready or finished.
  enum class Learning {
    kByObserving,  ///< like everybody else, whatever a subclass overrides
    /// For a class that leaves `isReady` alone and calls `tellFinished` right after it has
    /// announced "isFinished". Spares most of what an operation costs.
    kByBeingTold,
  };

  explicit NSOperation(Learning learning);
  /// Once is enough. Does nothing while the operation is not finished.
  void tellFinished();

 private:
  friend class QueuedOperation;
  class Links;
  enum class Phase { kIdle, kExecuting, kFinished };

  /// False if there is one already. What is queued is told once "isFinished" is announced, at once
  /// if that is by now; of being ready, unless a subclass decides on that.
  bool setQueued(const Ref<class QueuedOperation>& queued);
  bool hasToBeObserved() const noexcept { return learning_ == Learning::kByObserving; }
  /// Whether `start` has nothing to do but to return once "isFinished" is announced, because it is
  /// the one of this class.
  bool endsWithStart() const noexcept { return isStarted_; }
  void tellReady();

  void addDependent(const Ref<NSOperation>& dependent);
  void observeFinish();
  void dependencyFinished(const NSOperation* operation);
  void nothingIsAwaited();
  void updateReadiness();
  void finish();

  const Learning learning_;
  std::atomic<Phase> phase_{Phase::kIdle};
  std::atomic<bool> isStarted_{false};
  std::atomic<bool> isCancelled_{false};
  const std::unique_ptr<Links> links_;
};

}  // namespace rvf
