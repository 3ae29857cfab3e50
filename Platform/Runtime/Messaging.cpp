// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Messaging.h"

#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"

namespace rvf {

std::any forwardMessage(NSObject& receiver, SEL selector, std::vector<std::any> arguments) {
  Ref<NSMethodSignature> signature = receiver.methodSignatureForSelector(selector);
  if (!signature) receiver.doesNotRecognizeSelector(selector);
  const auto invocation = NSInvocation::invocationWithMethodSignature(std::move(signature));
  invocation->setTarget(receiver.weak_from_this().lock());
  invocation->setSelector(selector);
  invocation->setArguments(std::move(arguments));
  receiver.forwardInvocation(*invocation);
  return invocation->result();
}

std::any sendWithArguments(NSObject& receiver, SEL selector, std::span<const std::any> arguments) {
  if (const Method* method = receiver.isa()->method(selector)) {
    return method->implementation.callWithArguments(receiver, selector, arguments);
  }
  // With parentheses: braces would make the two iterators the arguments.
  return forwardMessage(receiver, selector,
                        std::vector<std::any>(arguments.begin(), arguments.end()));
}

}  // namespace rvf
