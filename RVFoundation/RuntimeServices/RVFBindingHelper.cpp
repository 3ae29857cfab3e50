// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFBindingHelper.h"

#include <memory>

#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Values/NSValue.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFBindingHelper::classObject);

}  // namespace

Ref<RVFBindingHelper> RVFBindingHelper::init() {
  return std::make_shared<RVFBindingHelper>();
}

RVFBindingHelper::~RVFBindingHelper() {
  reportBindingsLeft(SEL("dealloc"), 126);
}

Class RVFBindingHelper::classObject() {
  static const Class kClass =
      ClassBuilder<RVFBindingHelper>("RVFBindingHelper", NSObject::classObject())
          .ivar("proxies", "@")
          .method<&RVFBindingHelper::finalize>("finalize")
          .method<&RVFBindingHelper::proxyForObject>("proxyForObject:")
          .method<&RVFBindingHelper::defaultCenter>("defaultCenter")
          .method<&RVFBindingHelper::reset>("reset")
          .registered();
  return kClass;
}

Class RVFBindingHelper::isa() const {
  return classObject();
}

void RVFBindingHelper::finalize() const {
  reportBindingsLeft(SEL("finalize"), 132);
}

void RVFBindingHelper::reportBindingsLeft(SEL selector, int line) const {
  if (proxies_->count() == 0) return;
  NSAssertionHandler::currentHandler()->handleFailureInMethod(
      selector, this, "RVFoundation/RVFBindingHelper", line, "Deallocated with bindings left.");
}

Ref<RWFBindingHelperProxy> RVFBindingHelper::proxyForObject(const id& object) {
  const id key = NSValue::valueWithNonretainedObject(object);
  if (const id known = proxies_->objectForKey(key)) {
    return std::static_pointer_cast<RWFBindingHelperProxy>(known);
  }
  auto proxy = RWFBindingHelperProxy::initWithObject(object);
  proxies_->setObject(proxy, key);
  return proxy;
}

Ref<RWFBindingHelperProxy> RVFBindingHelper::defaultCenter() {
  return proxyForObject(NSNotificationCenter::defaultCenter());
}

void RVFBindingHelper::reset() {
  // Removing may call out, to what may ask for proxies or drop this helper's last reference.
  const auto alive = weak_from_this().lock();
  const Ref<NSDictionary> proxies = proxies_->copy();
  for (const auto& [target, proxy] : *proxies)
    static_cast<RWFBindingHelperProxy&>(*proxy).bindingHelperReset();
  proxies_->removeAllObjects();
}

}  // namespace rvf
