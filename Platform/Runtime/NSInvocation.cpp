// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSInvocation.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

constexpr std::ptrdiff_t kFirstArgument = 2;  // after receiver and selector

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
  values_.resize(signature_->numberOfArguments());
}

void NSInvocation::checkIndex(std::size_t index) const {
  if (index < values_.size()) return;
  NSException::raise(NSInvalidArgumentException, "argument index " + std::to_string(index) +
                                                     " beyond bounds [0 .. " +
                                                     std::to_string(values_.size() - 1) + "]");
}

const std::any& NSInvocation::value(std::size_t index) const {
  checkIndex(index);
  return values_[index];
}

void NSInvocation::setValue(std::any value, std::size_t index) {
  checkIndex(index);
  values_[index] = std::move(value);
}

void NSInvocation::setArguments(std::vector<std::any> arguments) {
  if (arguments.size() != values_.size() - kFirstArgument) {
    raiseArgumentCountMismatch(target().get(), selector(), arguments.size(),
                               values_.size() - kFirstArgument);
  }
  std::ranges::move(arguments, values_.begin() + kFirstArgument);
}

void NSInvocation::invoke() {
  const auto alive = weak_from_this().lock();
  const id receiver = target();
  const std::vector<std::any> arguments(values_.begin() + kFirstArgument, values_.end());
  result_ = receiver ? sendWithArguments(*receiver, selector(), arguments) : std::any();
}

void NSInvocation::invokeWithTarget(id target) {
  setTarget(std::move(target));
  invoke();
}

}  // namespace rvf
