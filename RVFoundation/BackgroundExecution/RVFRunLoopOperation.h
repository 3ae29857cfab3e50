// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSOperation.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// An operation whose work lives on the main run loop: its block only launches the work, and a
/// later callback of the run loop says that it is done.
///
///     const auto operation = std::make_shared<RVFRunLoopOperation>();
///     operation->setExecutionBlock([weak = std::weak_ptr(operation)] {
///       resolve([weak](const Ref<NSError>& error) {
///         if (const auto resolving = weak.lock()) resolving->finishWithError(error);
///       });
///     });
///     NSOperationQueue::mainQueue()->addOperation(operation);
///
/// Started and finished on the main thread; no lock guards it. Started elsewhere, twice or without
/// block, or finished twice, it reports an assertion of `RVFoundation/RVFRunLoopOperation` at line
/// 29, 30, 31 or 66, and goes on if the assertion handler returns.
///
/// Thread: the main one. Lifetime: keeps its block until it is finished, and itself while it starts
/// or finishes: the block may drop it.
class RVF_EXPORT RVFRunLoopOperation final : public NSOperation {
 public:
  using Block = std::function<void()>;

  RVFRunLoopOperation();

  static Class classObject();
  Class isa() const override;

  /// 0: not started, 1: executing, 2: finished. Any thread may ask.
  std::int64_t state() const noexcept { return state_; }
  /// Moves the state on; before anything is announced, reports an assertion (66) if `state` is not
  /// greater than the present one or the operation is finished. Announces "isExecuting" if one of
  /// the two is 1, and within that "isFinished" if `state` is 2. A greater `state` than 2 is stored
  /// and means nothing: such an operation neither executes nor is it ever finished.
  void setState(std::int64_t state);

  /// Launches the work, which has to call `finishWithError` then or later.
  const Block& executionBlock() const noexcept { return executionBlock_; }
  void setExecutionBlock(Block block);

  /// What `finishWithError` was given; absent for success and for an operation that was cancelled
  /// before it was started.
  const Ref<NSError>& error() const noexcept { return error_; }
  void setError(Ref<NSError> error);

  /// Calls the block, unless the operation was cancelled, and is finished without error then.
  void start() override;
  /// Keeps the error, which may be absent, finishes, and drops the block. What the block holds
  /// lives until the current release scope ends, as the block may be what is running.
  void finishWithError(Ref<NSError> error);

  /// False, although the work goes on after `start`.
  bool isConcurrent() const override;
  bool isExecuting() const override;
  bool isFinished() const override;

 private:
  void moveToState(std::int64_t state);

  std::atomic<std::int64_t> state_{0};
  Block executionBlock_;
  Ref<NSError> error_;
};

}  // namespace rvf
