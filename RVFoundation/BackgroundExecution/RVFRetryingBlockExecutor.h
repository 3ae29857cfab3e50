// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Runs a piece of asynchronous work again and again, with a pause after each failure, until it
/// succeeds:
///
///     const auto executor = std::make_shared<RVFRetryingBlockExecutor>();
///     executor->setRetryInterval(5);
///     executor->executeBlockUntilSuccess([](const auto& report) { connect(report); }, &showShop);
///
/// The first attempt runs on the caller's thread, within the call; each retry, on the main queue.
/// Work is told where to report, and reports once an attempt whether it has succeeded.
///
/// Meant for work that reports later. Of work that reports a failure within the attempt there is
/// one retry and no more: what the retry schedules within its own call is called off after it.
///
/// A scheduled retry keeps the executor alive until its time has come, also when it was called off.
/// Reports may come from any thread, but nothing is locked: while the main thread may use the
/// executor, report there.
///
/// Thread: one, and as retries come from the main queue, the main one. Lifetime: a scheduled retry
/// keeps it, its work and its handler; a late report after `stopExecuting` still counts.
class RVF_EXPORT RVFRetryingBlockExecutor final : public NSObject {
 public:
  using Report = std::function<void(bool succeeded)>;
  /// One attempt. Keeps a copy of `report` if it reports later.
  using Execution = std::function<void(const Report& report)>;
  using Block = std::function<void()>;

  static Class classObject();
  Class isa() const override;

  /// Seconds from a failed attempt to the next; 1 if none is set. Read when an attempt fails: a
  /// change does not move a retry that is scheduled.
  double retryInterval() const noexcept { return retryInterval_; }
  void setRetryInterval(double seconds);

  /// The next attempt while one is pending. Whichever timer comes first takes it: after a new
  /// start within the pause, the timer of the old start runs the new one's retry.
  const Block& delayedRetryBlock() const noexcept { return delayedRetryBlock_; }
  /// What was set before lives until the current release scope ends.
  void setDelayedRetryBlock(Block block);

  /// Calls a pending retry off and makes the first attempt. `usingSuccessHandler`, which may be
  /// empty, is called once for each report of success, within the report.
  void executeBlockUntilSuccess(Execution block, Block usingSuccessHandler);
  bool hasPendingRetry() const noexcept { return static_cast<bool>(delayedRetryBlock_); }
  /// Calls a pending retry off. An attempt that is under way goes on: if it fails, it is retried.
  void stopExecuting();

 private:
  struct Work;

  void replaceDelayedRetryBlock(Block block);
  void attempt(const Ref<const Work>& work);
  void scheduleRetry(const Ref<const Work>& work);
  void retry();

  double retryInterval_ = 1;
  Block delayedRetryBlock_;
};

}  // namespace rvf
