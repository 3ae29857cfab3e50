// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RWFBindingHelperProxy.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperKVOInfo.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperNotificationInfo.h"

namespace rvf {
namespace {

using Proxy = RWFBindingHelperProxy;
using ObserveKeyPath = void (Proxy::*)(const id&, std::string_view, NSKeyValueObservingOptions,
                                       void*);
using ObserveNotification = void (Proxy::*)(const id&, SEL, const std::optional<std::string>&,
                                            const id&);

constexpr std::string_view kAddKeyPathObserver = "addObserver:forKeyPath:options:context:";
constexpr std::string_view kAddObserver = "addObserver:selector:name:object:";
constexpr std::string_view kBind = "bind:toObject:withKeyPath:options:";
constexpr std::string_view kUnbind = "unbind:";

const ClassRegistration kRegistration(&Proxy::classObject);

void removeRecorded(const id& target, const RWFBindingHelperKVOInfo& record) {
  send(target, SEL("removeObserver:forKeyPath:"), record.observer(),
       std::string_view(record.keyPath()));
}

/// An object that is gone posts nothing more; without it, the removal would take away the
/// registrations for other objects.
void removeRecorded(const id& target, const RWFBindingHelperNotificationInfo& record) {
  if (record.hasLostObject()) return;
  send(target, SEL("removeObserver:name:object:"), record.observer(), record.name(),
       record.object());
}

}  // namespace

Ref<Proxy> Proxy::initWithObject(const id& object) {
  return std::make_shared<Proxy>(object);
}

Proxy::RWFBindingHelperProxy(const id& object) : object_(object) {}

Class Proxy::classObject() {
  static const Class kClass =
      ClassBuilder<Proxy>("RWFBindingHelperProxy", NSProxy::classObject())
          .ivar("object", "@")
          .ivar("kvoInfo", "@")
          .ivar("bindingNames", "@")
          .ivar("notificationInfo", "@")
          .method<static_cast<ObserveKeyPath>(&Proxy::addObserver)>(kAddKeyPathObserver)
          .method<static_cast<ObserveNotification>(&Proxy::addObserver)>(kAddObserver)
          .method<&Proxy::bind>(kBind)
          .method<&Proxy::unbind>(kUnbind)
          .method<&Proxy::bindingHelperReset>("_RWFBindingHelperReset")
          .registered();
  return kClass;
}

Class Proxy::isa() const {
  return classObject();
}

Ref<NSMethodSignature> Proxy::methodSignatureForSelector(SEL selector) const {
  const id target = object_.lock();
  return target ? target->methodSignatureForSelector(selector) : nullptr;
}

void Proxy::forwardInvocation(NSInvocation& invocation) {
  invocation.invokeWithTarget(object_.lock());
}

void Proxy::addObserver(const id& observer, std::string_view forKeyPath,
                        NSKeyValueObservingOptions options, void* context) {
  const auto record = std::make_shared<RWFBindingHelperKVOInfo>();
  record->setObserver(observer);
  record->setKeyPath(forKeyPath);
  kvoInfo_->addObject(record);
  send(object_.lock(), SEL(kAddKeyPathObserver), observer, forKeyPath, options, context);
}

void Proxy::addObserver(const id& observer, SEL selector, const std::optional<std::string>& name,
                        const id& object) {
  const auto record = std::make_shared<RWFBindingHelperNotificationInfo>();
  record->setObserver(observer);
  record->setName(name);
  record->setObject(object);
  notificationInfo_->addObject(record);
  send(object_.lock(), SEL(kAddObserver), observer, selector, name, object);
}

void Proxy::bind(std::string_view name, const id& toObject, std::string_view withKeyPath,
                 const Ref<NSDictionary>& options) {
  bindingNames_->addObject(box(name));
  send(object_.lock(), SEL(kBind), name, toObject, withKeyPath, options);
}

void Proxy::unbind(std::string_view name) {
  const id key = box(name);  // the name may go with what is unbound
  send(object_.lock(), SEL(kUnbind), name);
  bindingNames_->removeObject(key);
}

void Proxy::bindingHelperReset() {
  const auto alive = shared_from_this();
  const id target = object_.lock();
  const Ref<NSArray> observations = kvoInfo();
  for (const id& record : *observations)
    removeRecorded(target, static_cast<const RWFBindingHelperKVOInfo&>(*record));
  const Ref<NSArray> notifications = notificationInfo();
  for (const id& record : *notifications)
    removeRecorded(target, static_cast<const RWFBindingHelperNotificationInfo&>(*record));
  const Ref<NSArray> bindings = bindingNames();
  for (const id& name : *bindings)
    send(target, SEL(kUnbind), name);
  kvoInfo_->removeAllObjects();
  bindingNames_->removeAllObjects();
  notificationInfo_->removeAllObjects();
}

}  // namespace rvf
