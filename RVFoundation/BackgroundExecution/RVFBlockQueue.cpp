// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/RVFBlockQueue.h"

#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/ScopeExit.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFBlockQueue::classObject);

}  // namespace

Ref<RVFBlockQueue> RVFBlockQueue::queue() {
  return autorelease(std::make_shared<RVFBlockQueue>());
}

Class RVFBlockQueue::classObject() {
  static const Class kClass =
      ClassBuilder<RVFBlockQueue>("RVFBlockQueue", NSObject::classObject())
          .property("completion", "T@?,C,N,V_completion")
          .ivar("_blocks", "@")
          .ivar<&RVFBlockQueue::completion_>("_completion")
          .method<&RVFBlockQueue::completion>("completion")
          .method<&RVFBlockQueue::setCompletion>("setCompletion:")
          .method<&RVFBlockQueue::addBlock>("addBlock:")
          .method<&RVFBlockQueue::empty>("empty")
          .method<&RVFBlockQueue::executeQueue>("executeQueue")
          .method<&RVFBlockQueue::executeQueueUsingCompletion>("executeQueueUsingCompletion:")
          .method<&RVFBlockQueue::blockCompletedWithError>("blockCompletedWithError:")
          .registered();
  return kClass;
}

Class RVFBlockQueue::isa() const {
  return classObject();
}

void RVFBlockQueue::setCompletion(Completion completion) {
  announceChange(*this, "completion", [&] { completion_ = std::move(completion); });
}

void RVFBlockQueue::addBlock(Step step) {
  blocks_.push_back(std::move(step));
}

void RVFBlockQueue::executeQueue() {
  selfReferences_.push_back(refTo(this));
  blockCompletedWithError(nullptr);
}

void RVFBlockQueue::executeQueueUsingCompletion(Completion completion) {
  const auto self = refTo(this);
  setCompletion(std::move(completion));
  executeQueue();
}

void RVFBlockQueue::blockCompletedWithError(const Ref<NSError>& error) {
  if (!error && !blocks_.empty()) {
    startNextBlock();
  } else {
    endRun(error);
  }
}

void RVFBlockQueue::startNextBlock() {
  const Step step = std::move(blocks_.front());
  blocks_.pop_front();
  const auto self = refTo(this);
  step(self, [self](const Ref<NSError>& error) { self->blockCompletedWithError(error); });
}

void RVFBlockQueue::endRun(const Ref<NSError>& error) {
  const auto self = refTo(this);
  const ScopeExit ended([this] {
    // A done callback that is called once too often has no run to end.
    if (selfReferences_.empty()) return;
    autorelease(std::move(selfReferences_.back()));
    selfReferences_.pop_back();
  });
  const Completion completion = completion_;
  if (!completion) return;
  try {
    completion(error);
  } catch (...) {
    completion_ = nullptr;  // untold: the exception is what there is to say
    throw;
  }
  setCompletion(nullptr);
}

}  // namespace rvf
