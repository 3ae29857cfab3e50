// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// The root of objects that stand in for another one and hand its messages on.
///
/// A subclass answers the target's signature from `methodSignatureForSelector` and passes the
/// message on in `forwardInvocation`:
///
///     class Recorder final : public NSProxy {
///       Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override {
///         return target_->methodSignatureForSelector(selector);
///       }
///       void forwardInvocation(NSInvocation& invocation) override {
///         invocation.invokeWithTarget(target_);
///       }
///       …
///     };
///
/// The proxy itself answers its identity, hash and class. Everything else reaches the target, what
/// kind of object it is included; results, exceptions and what out-pointers point to pass through
/// untouched. A target may be a proxy again. Its class has no superclass: "NSProxy" is a root.
///
/// A proxy answers messages (`send`), never C++ calls of the target's own functions.
///
/// Thread: as the subclass and its target allow. Lifetime: whether the target is kept is the
/// subclass's choice.
class RVF_EXPORT NSProxy : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  bool isKindOfClass(Class aClass) const override;
  bool isMemberOfClass(Class aClass) const override;
  bool conformsToProtocol(std::string_view protocolName) const override;
  bool respondsToSelector(SEL selector) const override;
  std::string description() const override;

  /// A proxy that overrides neither knows no target: the first answers none, so that every message
  /// raises as unrecognized.
  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override;

 protected:
  NSProxy() = default;
};

}  // namespace rvf
