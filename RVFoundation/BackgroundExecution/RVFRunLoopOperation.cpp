// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/RVFRunLoopOperation.h"

#include <memory>
#include <string_view>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFRunLoopOperation::classObject);

constexpr std::string_view kIsExecuting = "isExecuting";
constexpr std::string_view kIsFinished = "isFinished";

constexpr std::int64_t kNotStarted = 0;
constexpr std::int64_t kExecuting = 1;
constexpr std::int64_t kFinished = 2;

constexpr int kNotOnMainThreadLine = 29;
constexpr int kStartedTwiceLine = 30;
constexpr int kNoBlockLine = 31;
constexpr int kNotForwardLine = 66;

/// Returns if the assertion holds, or if this thread's handler lets a failure pass.
void assertThat(bool holds, SEL method, const NSObject& object, int line) {
  if (holds) return;
  NSAssertionHandler::currentHandler()->handleFailureInMethod(
      method, &object, "RVFoundation/RVFRunLoopOperation", line, "");
}

}  // namespace

RVFRunLoopOperation::RVFRunLoopOperation() : NSOperation(Learning::kByBeingTold) {}

Class RVFRunLoopOperation::classObject() {
  static const Class kClass =
      ClassBuilder<RVFRunLoopOperation>("RVFRunLoopOperation", NSOperation::classObject())
          .property("state", "Tq,N,V_state")
          .property("executionBlock", "T@?,C,N,V_executionBlock")
          .property("error", "T@\"NSError\",&,N,V_error")
          .ivar("_state", "q")
          .ivar<&RVFRunLoopOperation::executionBlock_>("_executionBlock")
          .ivar<&RVFRunLoopOperation::error_>("_error")
          .method<&RVFRunLoopOperation::state>("state")
          .method<&RVFRunLoopOperation::setState>("setState:")
          .method<&RVFRunLoopOperation::executionBlock>("executionBlock")
          .method<&RVFRunLoopOperation::setExecutionBlock>("setExecutionBlock:")
          .method<&RVFRunLoopOperation::error>("error")
          .method<&RVFRunLoopOperation::setError>("setError:")
          .method<&RVFRunLoopOperation::start>("start")
          .method<&RVFRunLoopOperation::finishWithError>("finishWithError:")
          .method<&RVFRunLoopOperation::isConcurrent>("isConcurrent")
          .method<&RVFRunLoopOperation::isExecuting>("isExecuting")
          .method<&RVFRunLoopOperation::isFinished>("isFinished")
          .registered();
  return kClass;
}

Class RVFRunLoopOperation::isa() const {
  return classObject();
}

void RVFRunLoopOperation::setExecutionBlock(Block block) {
  announceChange(*this, "executionBlock", [&] {
    if (executionBlock_) {
      NSAutoreleasePool::addObject(std::make_shared<Block>(std::move(executionBlock_)));
    }
    executionBlock_ = std::move(block);
  });
}

void RVFRunLoopOperation::setError(Ref<NSError> error) {
  announceChange(*this, "error", [&] { error_ = std::move(error); });
}

void RVFRunLoopOperation::start() {
  static const SEL kStart("start");
  assertThat(NSThread::isMainThread(), kStart, *this, kNotOnMainThreadLine);
  assertThat(state_ == kNotStarted, kStart, *this, kStartedTwiceLine);
  assertThat(static_cast<bool>(executionBlock_), kStart, *this, kNoBlockLine);
  if (isCancelled()) return finishWithError(nullptr);
  const auto alive = refTo(this);
  setState(kExecuting);
  const Block block = executionBlock_;
  if (block) block();
}

void RVFRunLoopOperation::finishWithError(Ref<NSError> error) {
  const auto alive = refTo(this);
  setError(std::move(error));
  setState(kFinished);
  setExecutionBlock(nullptr);
}

bool RVFRunLoopOperation::isConcurrent() const {
  return false;
}

bool RVFRunLoopOperation::isExecuting() const {
  return state_ == kExecuting;
}

bool RVFRunLoopOperation::isFinished() const {
  return state_ == kFinished;
}

void RVFRunLoopOperation::setState(std::int64_t state) {
  static const SEL kSetState("setState:");
  assertThat(state > state_ && state_ != kFinished, kSetState, *this, kNotForwardLine);
  announceChange(*this, "state", [&] { moveToState(state); });
}

void RVFRunLoopOperation::moveToState(std::int64_t state) {
  const auto move = [this, state] {
    if (state != kFinished) {
      state_ = state;
      return;
    }
    announceChange(*this, kIsFinished, [this] { state_ = kFinished; });
    tellFinished();
  };
  if (state_ == kExecuting || state == kExecuting) {
    announceChange(*this, kIsExecuting, move);
  } else {
    move();
  }
}

}  // namespace rvf
