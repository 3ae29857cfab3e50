// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/NSNotificationCenter.h"

#include "Platform/Observation/NotificationRegistrations.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassChanges.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNotificationCenter::classObject);

/// Sends a notification to one receiver after the other. Receivers of one class, which often follow
/// each other, share one look-up of the method, as long as no class changes.
class Receivers final {
 public:
  void deliver(NSObject& receiver, SEL selector, const Ref<NSNotification>& notification) {
    const Class receiversClass = receiver.isa();
    const std::uint64_t changes = classChangeCount();
    if (receiversClass != class_ || selector != selector_ || changes != classChanges_) {
      classChanges_ = changes;
      class_ = receiversClass;
      selector_ = selector;
      method_ = receiversClass->method(selector);
    }
    if (method_) {
      method_->implementation.callByReference<void>(receiver, selector, notification);
    } else {
      send(receiver, selector, notification);  // forwards it
    }
  }

 private:
  Class class_ = nullptr;
  SEL selector_;
  std::uint64_t classChanges_ = 0;
  const Method* method_ = nullptr;
};

void requireObserver(const id& observer, SEL selector) {
  if (!observer || !selector)
    NSException::raise(NSInvalidArgumentException, "absent observer or selector");
}

NSNotificationCenter& centerOf(NSObject& self) {
  return static_cast<NSNotificationCenter&>(self);
}

void removeMethod(NSObject& self, SEL, id observer) {
  centerOf(self).removeObserver(observer);
}

// A message's arguments are values.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void removeMatchingMethod(NSObject& self, SEL, id observer, std::optional<std::string> name,
                          id object) {
  centerOf(self).removeObserver(observer, name, object);
}

void postNameMethod(NSObject& self, SEL, std::string_view name, id object) {
  centerOf(self).postNotificationName(name, object);
}

}  // namespace

NSNotificationCenter::NSNotificationCenter()
    : registrations_(std::make_unique<NotificationRegistrations>()) {}

NSNotificationCenter::~NSNotificationCenter() = default;

Ref<NSNotificationCenter> NSNotificationCenter::defaultCenter() {
  // Never destroyed: observers may remove themselves until the last static destructor has run.
  static const auto& kCenter =
      *new Ref<NSNotificationCenter>(std::make_shared<NSNotificationCenter>());
  return kCenter;
}

Class NSNotificationCenter::classObject() {
  static const Class kClass =
      ClassBuilder<NSNotificationCenter>("NSNotificationCenter", NSObject::classObject())
          .method<&NSNotificationCenter::addObserver>("addObserver:selector:name:object:")
          .method("removeObserver:", IMP(&removeMethod))
          .method("removeObserver:name:object:", IMP(&removeMatchingMethod))
          .method<&NSNotificationCenter::postNotification>("postNotification:")
          .method("postNotificationName:object:", IMP(&postNameMethod))
          .method<&NSNotificationCenter::postNotificationName>(
              "postNotificationName:object:userInfo:")
          .registered();
  return kClass;
}

Class NSNotificationCenter::isa() const {
  return classObject();
}

void NSNotificationCenter::addObserver(const id& observer, SEL selector,
                                       const std::optional<std::string>& name, const id& object) {
  requireObserver(observer, selector);
  registrations_->add(observer, selector, name, object);
}

void NSNotificationCenter::addLeadingObserver(const id& observer, SEL selector,
                                              const std::optional<std::string>& name,
                                              const id& object) {
  requireObserver(observer, selector);
  registrations_->add(observer, selector, name, object, NotificationRegistrations::Place::leading);
}

void NSNotificationCenter::removeObserver(const id& observer,
                                          const std::optional<std::string>& name,
                                          const id& object) {
  if (observer) removeObserver(*observer, name, object);
}

void NSNotificationCenter::removeObserver(const NSObject& observer,
                                          const std::optional<std::string>& name,
                                          const id& object) {
  registrations_->remove(observer, name, object);
}

void NSNotificationCenter::postNotification(const Ref<NSNotification>& notification) {
  if (!notification) NSException::raise(NSInvalidArgumentException, "absent notification");
  const auto alive = weak_from_this().lock();
  const Ref<NSNotification> posted = notification;  // nothing else can change this one
  bool hasSeenTheDead = false;
  {
    Receivers receivers;
    NotificationRegistrations::Snapshot snapshot(*registrations_, posted->name());
    while (const NotificationRegistration* registration = snapshot.next()) {
      if (registration->isRemoved || !registration->matchesObject(posted->object())) continue;
      const id observer = registration->observer.lock();
      if (observer) receivers.deliver(*observer, registration->selector, posted);
      hasSeenTheDead = hasSeenTheDead || !observer;
    }
  }
  if (hasSeenTheDead) registrations_->removeTheDead(posted->name());
}

void NSNotificationCenter::postNotificationName(std::string_view name, const id& object,
                                                const Ref<NSDictionary>& userInfo) {
  postNotification(NSNotification::notificationWithName(name, object, userInfo));
}

}  // namespace rvf
