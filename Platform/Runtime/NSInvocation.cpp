// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSInvocation.h"

#include <string>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSInvocation::classObject);

}  // namespace

Class NSInvocation::classObject() {
  static const Class kClass = ClassBuilder<NSInvocation>("NSInvocation", NSObject::classObject())
                                  .method<&NSInvocation::invoke>("invoke")
                                  .registered();
  return kClass;
}

Class NSInvocation::isa() const {
  return classObject();
}

Ref<NSInvocation> NSInvocation::invocationWithMethodSignature(Ref<NSMethodSignature> signature) {
  return std::make_shared<NSInvocation>(std::move(signature));
}

NSInvocation::NSInvocation(Ref<NSMethodSignature> signature) : signature_(std::move(signature)) {
  if (!signature_) {
    NSException::raise(NSInvalidArgumentException, "invocation without a method signature");
  }
  arguments_.resize(signature_->numberOfArguments() - kFirstArgument);
}

void NSInvocation::checkIndex(std::size_t index) const {
  if (index < kFirstArgument || index >= signature_->numberOfArguments()) {
    NSException::raise(NSInvalidArgumentException,
                       "argument index " + std::to_string(index) + " out of bounds [2 .. " +
                           std::to_string(signature_->numberOfArguments()) + ")");
  }
}

void NSInvocation::setArguments(std::vector<std::any> arguments) {
  if (arguments.size() != arguments_.size()) {
    NSException::raise(
        NSInvalidArgumentException,
        std::to_string(arguments.size()) + " arguments for " + NSStringFromSelector(selector_));
  }
  arguments_ = std::move(arguments);
}

void NSInvocation::invoke() {
  const id target = target_;  // survives what it does to this invocation
  result_ = target ? sendWithArguments(*target, selector_, arguments_) : std::any();
}

void NSInvocation::invokeWithTarget(id target) {
  setTarget(std::move(target));
  invoke();
}

}  // namespace rvf
