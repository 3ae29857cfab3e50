// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/QueuedOperation.h"

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"

namespace rvf {
namespace {

constexpr std::string_view kIsReady = "isReady";

}  // namespace

Class QueuedOperation::classObject() {
  static const Class kClass =
      ClassBuilder<QueuedOperation>("_QueuedOperation", NSObject::classObject())
          .method<&QueuedOperation::observeValue>("observeValueForKeyPath:ofObject:change:context:")
          .registered();
  return kClass;
}

Class QueuedOperation::isa() const {
  return classObject();
}

bool QueuedOperation::attach() {
  if (!operation_->setQueued(refTo(this))) return false;
  if (!operation_->isReady() && operation_->hasToBeObserved()) observeReadiness();
  if (operation_->isReady()) becameReady();
  return true;
}

void QueuedOperation::becameReady() {
  queue_->becameReady(refTo(this));
  endObserving();
}

void QueuedOperation::becameFinished() {
  queue_->becameFinished(refTo(this));
  endObserving();
}

void QueuedOperation::observeReadiness() {
  addObserverForKeyPath(*operation_, refTo(this), kIsReady);
  isObserving_ = true;
  if (operation_->isFinished()) endObserving();
}

void QueuedOperation::endObserving() {
  if (isObserving_.exchange(false)) removeObserverForKeyPath(*operation_, refTo(this), kIsReady);
}

void QueuedOperation::observeValue(std::string_view, const id&, const Ref<NSDictionary>&, void*) {
  if (operation_->isReady()) becameReady();
}

}  // namespace rvf
