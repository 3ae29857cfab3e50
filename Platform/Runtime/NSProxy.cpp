// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSProxy.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSMethodSignature.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSProxy::classObject);

id selfOf(NSObject& self, SEL) {
  return refTo(&self);
}

bool isEqualToObject(NSObject& self, SEL, id other) {
  return self.isEqual(other.get());
}

/// Passes a question on to the target. Asking changes no proxy, but messages go to objects that
/// may change.
template <class Answer, class... Args>
Answer forwarded(const NSProxy& proxy, std::string_view selector, const Args&... arguments) {
  return send<Answer>(const_cast<NSProxy&>(proxy), SEL(selector), arguments...);
}

}  // namespace

Class NSProxy::classObject() {
  static const Class kClass = ClassBuilder<NSProxy>("NSProxy", nullptr)
                                  .conformsTo("NSObject")
                                  .method<&NSProxy::isa>("class")
                                  .method("self", IMP(&selfOf))
                                  .method("isEqual:", IMP(&isEqualToObject))
                                  .method<&NSProxy::hash>("hash")
                                  .registered();
  return kClass;
}

Class NSProxy::isa() const {
  return classObject();
}

bool NSProxy::isKindOfClass(Class aClass) const {
  return forwarded<bool>(*this, "isKindOfClass:", aClass);
}

bool NSProxy::isMemberOfClass(Class aClass) const {
  return forwarded<bool>(*this, "isMemberOfClass:", aClass);
}

bool NSProxy::conformsToProtocol(std::string_view protocolName) const {
  return forwarded<bool>(*this, "conformsToProtocol:", protocolName);
}

bool NSProxy::respondsToSelector(SEL selector) const {
  return forwarded<bool>(*this, "respondsToSelector:", selector);
}

std::string NSProxy::description() const {
  return forwarded<std::string>(*this, "description");
}

Ref<NSMethodSignature> NSProxy::methodSignatureForSelector(SEL) const {
  return nullptr;
}

}  // namespace rvf
