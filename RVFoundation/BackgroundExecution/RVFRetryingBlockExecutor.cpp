// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/RVFRetryingBlockExecutor.h"

#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/MainQueue.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFRetryingBlockExecutor::classObject);

/// Whole nanoseconds, the rest cut off; the nearest there are where a double reaches further.
std::chrono::nanoseconds nanoseconds(double seconds) {
  using std::chrono::nanoseconds;
  constexpr double kLimit = 0x1p63;
  const double count = seconds * 1e9;
  if (std::isnan(count)) return nanoseconds::zero();
  if (count >= kLimit) return nanoseconds::max();
  if (count <= -kLimit) return nanoseconds::min();
  return nanoseconds(static_cast<nanoseconds::rep>(count));
}

}  // namespace

struct RVFRetryingBlockExecutor::Work {
  Execution execution;
  Block successHandler;
};

Class RVFRetryingBlockExecutor::classObject() {
  using Executor = RVFRetryingBlockExecutor;
  static const Class kClass =
      ClassBuilder<Executor>("RVFRetryingBlockExecutor", NSObject::classObject())
          .property("retryInterval", "Td,N,V_retryInterval")
          .property("delayedRetryBlock", "T@?,C,N,V_delayedRetryBlock")
          .ivar<&Executor::retryInterval_>("_retryInterval")
          .ivar<&Executor::delayedRetryBlock_>("_delayedRetryBlock")
          .method<&Executor::retryInterval>("retryInterval")
          .method<&Executor::setRetryInterval>("setRetryInterval:")
          .method<&Executor::delayedRetryBlock>("delayedRetryBlock")
          .method<&Executor::setDelayedRetryBlock>("setDelayedRetryBlock:")
          .method<&Executor::executeBlockUntilSuccess>(
              "executeBlockUntilSuccess:usingSuccessHandler:")
          .method<&Executor::hasPendingRetry>("hasPendingRetry")
          .method<&Executor::stopExecuting>("stopExecuting")
          .registered();
  return kClass;
}

Class RVFRetryingBlockExecutor::isa() const {
  return classObject();
}

void RVFRetryingBlockExecutor::setRetryInterval(double seconds) {
  announceChange(*this, "retryInterval", [&] { retryInterval_ = seconds; });
}

void RVFRetryingBlockExecutor::setDelayedRetryBlock(Block block) {
  announceChange(*this, "delayedRetryBlock", [&] { replaceDelayedRetryBlock(std::move(block)); });
}

void RVFRetryingBlockExecutor::replaceDelayedRetryBlock(Block block) {
  // The old one may be what is running, or hold the last reference to this executor.
  if (delayedRetryBlock_) {
    NSAutoreleasePool::addObject(std::make_shared<Block>(std::move(delayedRetryBlock_)));
  }
  delayedRetryBlock_ = std::move(block);
}

void RVFRetryingBlockExecutor::executeBlockUntilSuccess(Execution block,
                                                        Block usingSuccessHandler) {
  attempt(std::make_shared<Work>(Work{std::move(block), std::move(usingSuccessHandler)}));
}

void RVFRetryingBlockExecutor::stopExecuting() {
  setDelayedRetryBlock(nullptr);
}

void RVFRetryingBlockExecutor::attempt(const Ref<const Work>& work) {
  const auto executing = refTo(this);
  setDelayedRetryBlock(nullptr);
  work->execution([self = executing, work](bool succeeded) {
    // What is called may drop the report block, and with it what the block holds.
    const auto [executor, alive] = std::pair(self, work);
    if (!succeeded) return executor->scheduleRetry(alive);
    if (alive->successHandler) alive->successHandler();
  });
}

void RVFRetryingBlockExecutor::scheduleRetry(const Ref<const Work>& work) {
  const auto self = refTo(this);
  setDelayedRetryBlock([self, work] { self->attempt(work); });
  MainQueue::dispatch_after(nanoseconds(retryInterval_), [self] { self->retry(); });
}

void RVFRetryingBlockExecutor::retry() {
  const Block block = delayedRetryBlock_;
  if (!block) return;
  try {
    block();
  } catch (...) {
    replaceDelayedRetryBlock(nullptr);  // untold: the exception is what there is to say
    throw;
  }
  setDelayedRetryBlock(nullptr);
}

}  // namespace rvf
