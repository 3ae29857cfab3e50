// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/ObservationLink.h"

#include <utility>

#include "Platform/Observation/AffectingKeys.h"
#include "Platform/Observation/KeyPathObservation.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueMessages.h"
#include "Platform/Observation/ObservedObject.h"

namespace rvf {

ObservationLink::ObservationLink(KeyPathObservation& observation, std::string_view keyPath,
                                 ObservationLink* parent)
    : observation_(observation.weak_from_this()),
      order_(observation.nextOrder()),
      keyPath_(keyPath),
      parent_(parent) {}

std::string_view ObservationLink::key() const noexcept {
  return std::string_view(keyPath_).substr(0, keyPath_.find('.'));
}

std::string_view ObservationLink::rest() const noexcept {
  const std::size_t point = keyPath_.find('.');
  return point == std::string::npos ? std::string_view()
                                    : std::string_view(keyPath_).substr(point + 1);
}

void ObservationLink::attach(NSObject& object) {
  const id alive = object.weak_from_this().lock();
  AffectingKeys affecting = affectingKeysOf(object, key());
  object_ = &object;
  affectingKeys_ = std::move(affecting.keys);
  host_ = ObservedObject::addLink(object, shared_from_this());
  isAttached_ = true;
  attachDependencies(object, affecting.keyPaths);
  followFromHere();
}

/// A key may depend on a path that leads back to itself.
bool ObservationLink::repeatsAParent(const NSObject& object) const noexcept {
  for (const ObservationLink* link = parent_; link; link = link->parent_) {
    if (link->object_ == &object && link->keyPath_ == keyPath_) return true;
  }
  return false;
}

void ObservationLink::attachDependencies(NSObject& object,
                                         const std::vector<std::string>& keyPaths) {
  const auto observation = observation_.lock();
  for (const std::string& keyPath : keyPaths) {
    auto link = std::make_shared<ObservationLink>(*observation, keyPath, this);
    link->isDependency_ = true;
    if (link->repeatsAParent(object)) continue;
    dependencies_.push_back(link);
    link->attach(object);
  }
}

void ObservationLink::followFromHere() {
  const auto observation = observation_.lock();
  if (!isAttached_ || !observation || rest().empty()) return;
  const id alive = object_->weak_from_this().lock();
  id value = valueForKey(*object_, key());
  if (id behind = value ? receiverBehind(*value) : nullptr) value = std::move(behind);
  if (!isAttached_) return;  // the accessor ended the registration
  if (next_ && next_->isAttached_ && next_->object_ == value.get()) return;
  if (const auto former = std::exchange(next_, nullptr)) former->detach();
  if (!value) return;
  next_ = std::make_shared<ObservationLink>(*observation, rest(), this);
  next_->attach(*value);
}

void ObservationLink::follow() {
  auto link = shared_from_this();
  followFromHere();
  // What depends on this path may lead elsewhere now. The accessors may end the registration.
  while (link->isAttached_ && link->parent_) {
    const auto parent = link->parent_->shared_from_this();
    if (link->isDependency_) parent->followFromHere();
    link = parent;
  }
}

void ObservationLink::detachBehind() noexcept {
  if (const auto next = std::exchange(next_, nullptr)) next->detach();
  for (const auto& link : std::exchange(dependencies_, {}))
    link->detach();
}

void ObservationLink::detach() noexcept {
  if (isAttached_.exchange(false)) {
    if (const auto host = host_.lock()) host->removeLink(*this);
  }
  detachBehind();
}

void ObservationLink::forgetObject() noexcept {
  isAttached_ = false;
  detachBehind();
}

}  // namespace rvf
