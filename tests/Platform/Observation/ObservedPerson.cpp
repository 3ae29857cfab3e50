// SPDX-License-Identifier: Apache-2.0
#include "tests/Platform/Observation/ObservedPerson.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"

namespace rvf {

Class ObservedPerson::classObject() {
  static const Class kClass =
      ClassBuilder<ObservedPerson>("ObservedPerson", NSObject::classObject())
          .ivar<&ObservedPerson::quiet_>("_variable")
          .method<&ObservedPerson::name>("name")
          .method<&ObservedPerson::setName>("setName:")
          .method<&ObservedPerson::visits>("visits")
          .method<&ObservedPerson::setVisits>("setVisits:")
          .method<&ObservedPerson::quiet>("quiet")
          .method<&ObservedPerson::setQuiet>("setQuiet:")
          .method<&ObservedPerson::partner>("partner")
          .method<&ObservedPerson::setPartner>("setPartner:")
          .method<&ObservedPerson::label>("label")
          .method<&ObservedPerson::badge>("badge")
          .method<&ObservedPerson::pair>("pair")
          .method<&ObservedPerson::oracle>("oracle")
          .method<&ObservedPerson::companion>("companion")
          .method("keyPathsForValuesAffectingLabel",
                  dependentKeyImplementation<&ObservedPerson::keyPathsForValuesAffectingLabel>())
          .method("keyPathsForValuesAffectingBadge",
                  dependentKeyImplementation<&ObservedPerson::keyPathsForValuesAffectingBadge>())
          .method("keyPathsForValuesAffectingPair",
                  dependentKeyImplementation<&ObservedPerson::keyPathsForValuesAffectingPair>())
          .method("keyPathsForValuesAffectingOracle",
                  dependentKeyImplementation<&ObservedPerson::keyPathsForValuesAffectingOracle>())
          .method(
              "keyPathsForValuesAffectingCompanion",
              dependentKeyImplementation<&ObservedPerson::keyPathsForValuesAffectingCompanion>())
          .registered();
  return kClass;
}

Ref<ObservedPerson> personNamed(std::string_view name) {
  const auto person = std::make_shared<ObservedPerson>();
  person->setName(std::string(name));
  return person;
}

Ref<NSMethodSignature> PassingProxy::methodSignatureForSelector(SEL selector) const {
  const id target = target_.lock();
  return target ? target->methodSignatureForSelector(selector) : nullptr;
}

void PassingProxy::forwardInvocation(NSInvocation& invocation) {
  invocation.invokeWithTarget(target_.lock());
}

void dropQuietly(Ref<ObservedPerson>& person) {
  testing::internal::CaptureStderr();
  person.reset();
  testing::internal::GetCapturedStderr();
}

Class ChangeRecorder::classObject() {
  static const Class kClass =
      ClassBuilder<ChangeRecorder>("ChangeRecorder", NSObject::classObject())
          .method<&ChangeRecorder::observeValueForKeyPath>(
              "observeValueForKeyPath:ofObject:change:context:")
          .registered();
  return kClass;
}

void ChangeRecorder::observeValueForKeyPath(std::string_view keyPath, const id& object,
                                            const Ref<NSDictionary>& change, void* context) {
  std::string line(keyPath);
  const id before = change->objectForKey("old");
  const id after = change->objectForKey("new");
  if (change->objectForKey("notificationIsPrior")) line += " prior";
  if (before) line += " " + before->description();
  if (after) line += ">" + after->description();
  told.push_back(line);
  objects.push_back(object.get());
  contexts.push_back(context);
  lastChange = change;
  if (const auto now = action) now();
}

}  // namespace rvf
