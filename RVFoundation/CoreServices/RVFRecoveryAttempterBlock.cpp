// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CoreServices/RVFRecoveryAttempterBlock.h"

#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFRecoveryAttempterBlock::classObject);

using ModalForm = bool (RVFRecoveryAttempterBlock::*)(const Ref<NSError>&, std::size_t);
using SheetForm = void (RVFRecoveryAttempterBlock::*)(const Ref<NSError>&, std::size_t, const id&,
                                                      SEL, const void*);

constexpr std::size_t kDidRecoverArgument = 2;
constexpr std::size_t kRecoveryErrorArgument = 3;

}  // namespace

Ref<RVFRecoveryAttempterBlock> RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
    Handler handler) {
  auto attempter = std::make_shared<RVFRecoveryAttempterBlock>();
  attempter->setHandler(std::move(handler));
  return autorelease(std::move(attempter));
}

Class RVFRecoveryAttempterBlock::classObject() {
  static const Class kClass =
      ClassBuilder<RVFRecoveryAttempterBlock>("RVFRecoveryAttempterBlock", NSObject::classObject())
          .property("handler", "T@?,C,N,V_handler")
          .ivar<&RVFRecoveryAttempterBlock::handler_>("_handler")
          .method<&RVFRecoveryAttempterBlock::handler>("handler")
          .method<&RVFRecoveryAttempterBlock::setHandler>("setHandler:")
          .method<static_cast<ModalForm>(&RVFRecoveryAttempterBlock::attemptRecoveryFromError)>(
              "attemptRecoveryFromError:optionIndex:")
          .method<static_cast<SheetForm>(&RVFRecoveryAttempterBlock::attemptRecoveryFromError)>(
              "attemptRecoveryFromError:optionIndex:delegate:didRecoverSelector:contextInfo:")
          .registered();
  return kClass;
}

Class RVFRecoveryAttempterBlock::isa() const {
  return classObject();
}

void RVFRecoveryAttempterBlock::setHandler(Handler handler) {
  announceChange(*this, "handler", [&] { handler_ = std::move(handler); });
}

bool RVFRecoveryAttempterBlock::attemptRecoveryFromError(const Ref<NSError>& error,
                                                         std::size_t optionIndex) {
  const Handler handler = handler_;  // may replace itself, or drop its owner
  return handler(error, optionIndex, nullptr);
}

void RVFRecoveryAttempterBlock::attemptRecoveryFromError(const Ref<NSError>& error,
                                                         std::size_t optionIndex,
                                                         const id& delegate, SEL didRecoverSelector,
                                                         const void* /*contextInfo*/) {
  const Handler handler = handler_;
  Ref<NSError> recoveryError;
  const bool didRecover = handler(error, optionIndex, &recoveryError);
  const auto invocation = NSInvocation::invocationWithMethodSignature(
      delegate ? delegate->methodSignatureForSelector(didRecoverSelector) : nullptr);
  invocation->setSelector(didRecoverSelector);
  invocation->setArgument(didRecover, kDidRecoverArgument);
  if (recoveryError) invocation->setArgument(recoveryError, kRecoveryErrorArgument);
  invocation->invokeWithTarget(delegate);
}

}  // namespace rvf
