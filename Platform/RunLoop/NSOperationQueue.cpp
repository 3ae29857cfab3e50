// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSOperationQueue.h"

#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/RunLoop/OperationQueueCore.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSOperationQueue::classObject);

using Kind = OperationQueueCore::Kind;

}  // namespace

NSOperationQueue::NSOperationQueue()
    : core_(std::make_shared<OperationQueueCore>(Kind::kWorkerThreads)) {}

NSOperationQueue::NSOperationQueue(Main)
    : core_(std::make_shared<OperationQueueCore>(Kind::kMainThread)) {}

NSOperationQueue::~NSOperationQueue() = default;

Class NSOperationQueue::classObject() {
  static const Class kClass =
      ClassBuilder<NSOperationQueue>("NSOperationQueue", NSObject::classObject())
          .property("maxConcurrentOperationCount", "Tq")
          .method<&NSOperationQueue::addOperation>("addOperation:")
          .method<&NSOperationQueue::addOperationWithBlock>("addOperationWithBlock:")
          .method<&NSOperationQueue::maxConcurrentOperationCount>("maxConcurrentOperationCount")
          .method<&NSOperationQueue::setMaxConcurrentOperationCount>(
              "setMaxConcurrentOperationCount:")
          .method<&NSOperationQueue::waitUntilAllOperationsAreFinished>(
              "waitUntilAllOperationsAreFinished")
          .registered();
  return kClass;
}

Class NSOperationQueue::isa() const {
  return classObject();
}

Ref<NSOperationQueue> NSOperationQueue::mainQueue() {
  // Never destroyed: threads may still add to it while the process exits.
  static const auto& kQueue =
      *new Ref<NSOperationQueue>(std::make_shared<NSOperationQueue>(Main()));
  return kQueue;
}

void NSOperationQueue::addOperation(const Ref<NSOperation>& operation) {
  core_->add(operation);
}

void NSOperationQueue::addOperationWithBlock(std::function<void()> block) {
  core_->add(std::make_shared<NSBlockOperation>(std::move(block)));
}

std::vector<Ref<NSOperation>> NSOperationQueue::operations() const {
  return core_->operations();
}

long NSOperationQueue::maxConcurrentOperationCount() const {
  return core_->limit();
}

void NSOperationQueue::setMaxConcurrentOperationCount(long count) {
  if (count < 0 && count != NSOperationQueueDefaultMaxConcurrentOperationCount) {
    NSException::raise(NSInvalidArgumentException, "a queue runs no negative number at once");
  }
  announceChange(*this, "maxConcurrentOperationCount", [&] { core_->setLimit(count); });
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() {
  core_->wait();
}

}  // namespace rvf
