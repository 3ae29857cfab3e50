// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// Runs asynchronous steps strictly one after another:
///
///     const auto queue = RVFBlockQueue::queue();
///     queue->addBlock([](const auto& running, const auto& done) { startDownload(done); });
///     queue->addBlock([](const auto& running, const auto& done) { done(parse()); });
///     queue->executeQueueUsingCompletion([](const Ref<NSError>& error) { show(error); });
///
/// A step is handed a done callback and calls it exactly once, at once or later, with the error
/// that it met or with none; a step that finishes later keeps a copy of it. The next step starts
/// within that call, so steps that finish at once nest. The first error ends the run.
///
/// Steps may be added at any time, also by steps; those added before the run ends run in it. The
/// queue keeps itself alive from `executeQueue` to the end of the run. It takes no lock: done
/// callbacks are called on the thread that the queue lives on.
///
/// Thread: one at a time, that of the done callbacks. Lifetime: keeps itself from start to end of a
/// run, and done callbacks keep it; it may be dropped in any step.
class RVF_EXPORT RVFBlockQueue final : public NSObject {
 public:
  /// Receives the error that ended the run or a step; absent for success.
  using Completion = std::function<void(const Ref<NSError>& error)>;
  using Done = Completion;
  using Step = std::function<void(const Ref<RVFBlockQueue>& queue, const Done& done)>;

  /// A new, empty queue, kept alive at least until the current release scope ends.
  static Ref<RVFBlockQueue> queue();

  static Class classObject();
  Class isa() const override;

  /// Puts a step behind the others. It is kept until its turn; it starts nothing.
  void addBlock(Step step);
  /// Whether no step waits for its turn. The one that is running does not count.
  bool empty() const noexcept { return blocks_.empty(); }

  /// What is called once when a run ends, and cleared right after the call: a completion that a
  /// completion sets is lost.
  const Completion& completion() const noexcept { return completion_; }
  void setCompletion(Completion completion);

  /// Starts with the first waiting step. After an error the steps behind the failed one are still
  /// waiting, and this resumes with them. With none waiting, the completion is called within the
  /// call.
  void executeQueue();
  void executeQueueUsingCompletion(Completion completion);

  /// Starts the next step, or ends the run on an error and when no step is left. The done
  /// callbacks call it.
  void blockCompletedWithError(const Ref<NSError>& error);

 private:
  void startNextBlock();
  void endRun(const Ref<NSError>& error);

  std::deque<Step> blocks_;
  Completion completion_;
  std::vector<Ref<RVFBlockQueue>> selfReferences_;  // one for each run that has not ended
};

}  // namespace rvf
