// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyPathObservation.h"

#include "Platform/Observation/CodingAnnouncement.h"
#include "Platform/Observation/ObjectText.h"
#include "Platform/Runtime/Messaging.h"

namespace rvf {
namespace {

std::atomic<std::uint64_t> registrationCount{0};

/// Objects that were never held by a reference are used as they are.
bool isBeingDestroyed(const NSObject& object) {
  const std::weak_ptr<const NSObject> self = object.weak_from_this();
  const std::weak_ptr<const NSObject> none;
  return self.expired() && (self.owner_before(none) || none.owner_before(self));
}

}  // namespace

KeyPathObservation::KeyPathObservation(NSObject& target, const id& observer,
                                       std::string_view keyPath, NSKeyValueObservingOptions options,
                                       void* context)
    : target_(&target),
      targetClass_(target.isa()),
      observer_(observer),
      observerAddress_(observer.get()),
      observerClass_(observer->isa()),
      keyPath_(keyPath),
      options_(options),
      context_(context),
      registration_(++registrationCount) {}

void KeyPathObservation::begin() {
  root_ = std::make_shared<ObservationLink>(*this, keyPath_, nullptr);
  root_->attach(*target_);
}

void KeyPathObservation::cancel() noexcept {
  if (!isCancelled_.exchange(true) && root_) root_->detach();
}

void KeyPathObservation::tell(const Ref<NSDictionary>& change) {
  static const SEL kSelector("observeValueForKeyPath:ofObject:change:context:");
  if (isCancelled_ || isBeingDestroyed(*target_)) return;
  if (CodingAnnouncement::covers(*target_, keyPath_)) return;  // coding tells of it in the end
  const id target = target_->weak_from_this().lock();
  const id observer = observer_.lock();
  if (!observer) return;
  const CodingAnnouncement::Suspension suspension;
  sendByReference(*observer, kSelector, std::string_view(keyPath_), target, change, context_);
}

bool KeyPathObservation::isObservedBy(
    const std::weak_ptr<const NSObject>& observer) const noexcept {
  return !observer_.owner_before(observer) && !observer.owner_before(observer_);
}

std::string KeyPathObservation::observerText() const {
  return objectText(observerClass_, observerAddress_);
}

std::string KeyPathObservation::targetText() const {
  return objectText(targetClass_, target_);
}

}  // namespace rvf
