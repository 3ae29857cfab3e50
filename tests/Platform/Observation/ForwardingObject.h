// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A root of its own: everything goes to the target, as with a proxy.
class ForwardingObject final : public NSObject {
 public:
  explicit ForwardingObject(id target) : target_(std::move(target)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<ForwardingObject>("TestForwardingObject", nullptr).registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override {
    return target_->methodSignatureForSelector(selector);
  }
  void forwardInvocation(NSInvocation& invocation) override {
    invocation.invokeWithTarget(target_);
  }

 private:
  id target_;
};

}  // namespace rvf
