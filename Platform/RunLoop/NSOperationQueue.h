// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSOperation.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// As many operations at once as the machine has processors.
inline constexpr long NSOperationQueueDefaultMaxConcurrentOperationCount = -1;

/// Starts operations as they become ready, in that order; those that are ready when they are added,
/// in the order added. A queue starts each once, also a cancelled one, and keeps it until its
/// "isFinished" is announced.
///
/// An ordinary queue starts operations on worker threads, whatever `isConcurrent` says:
///
///     const auto queue = std::make_shared<NSOperationQueue>();
///     queue->addOperationWithBlock([] { compress(journal); });
///     queue->waitUntilAllOperationsAreFinished();
///
/// It has threads only while operations are ready that its limit lets run, each with a release
/// scope for each operation. An exception of an operation ends the process there. A `start` that a
/// subclass overrides may go on after "isFinished": the next operation then gets another thread.
///
/// The main queue starts operations on the main thread, within blocks of `MainQueue`, and one at a
/// time: the next when "isFinished" of the one before was announced, and never within that. An
/// exception of `start` leaves the run call; an operation that it leaves neither executing nor
/// finished is dropped from the queue, and those that depend on it go on waiting.
///
/// A queue may go before its operations: they are started all the same.
///
/// Thread: any. Lifetime: keeps operations until they are finished; may go before them.
class RVF_EXPORT NSOperationQueue final : public NSObject {
 public:
  NSOperationQueue();
  ~NSOperationQueue() override;
  static Class classObject();
  Class isa() const override;

  /// One for the process, from any thread.
  static Ref<NSOperationQueue> mainQueue();

  /// Takes an operation. Never starts it within the call. Raises `NSInvalidArgumentException` if it
  /// is absent, was added to any queue before, executes or is finished.
  void addOperation(const Ref<NSOperation>& operation);
  void addOperationWithBlock(std::function<void()> block);
  /// Those that are not finished, in the order added.
  std::vector<Ref<NSOperation>> operations() const;

  /// How many operations may be under way at once: started and not finished, also if `start` has
  /// returned. 0 starts none; the number of the main queue is 1 and stays so. A negative number
  /// other than the default raises `NSInvalidArgumentException`.
  long maxConcurrentOperationCount() const;
  void setMaxConcurrentOperationCount(long count);

  /// Blocks this thread until the queue has no operation. Raises `NSInternalInconsistencyException`
  /// where that would be for ever: on the main thread for the main queue with operations.
  void waitUntilAllOperationsAreFinished();

 private:
  struct Main {};

 public:
  explicit NSOperationQueue(Main);

 private:
  const std::shared_ptr<class OperationQueueCore> core_;
};

}  // namespace rvf
