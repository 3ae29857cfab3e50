// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/NotificationRegistrations.h"

#include <algorithm>
#include <utility>

namespace rvf {
namespace {

constexpr std::uint64_t kLeadingNumber = 0;

bool haveSameOwner(const std::weak_ptr<NSObject>& a, const std::weak_ptr<const NSObject>& b) {
  return !a.owner_before(b) && !b.owner_before(a);
}

}  // namespace

NotificationRegistrations::Snapshot::Snapshot(const NotificationRegistrations& registrations,
                                              std::string_view name)
    : registrations_(registrations) {
  const std::lock_guard lock(registrations_.mutex_);
  const auto bucket = registrations_.named_.find(name);
  if (bucket != registrations_.named_.end()) named_.begin(bucket->second.list);
  anyNamed_.begin(registrations_.anyNamed_.list);
}

NotificationRegistrations::Snapshot::~Snapshot() {
  const std::lock_guard lock(registrations_.mutex_);
  named_.drop();
  anyNamed_.drop();
}

NotificationRegistrations::List& NotificationRegistrations::Bucket::changeable() {
  if (!list) {
    list = std::make_shared<List>();
  } else if (list.use_count() > 1) {
    list = std::make_shared<List>(*list);
  }
  return *list;
}

void NotificationRegistrations::Bucket::insert(
    std::shared_ptr<NotificationRegistration> registration, Place place) {
  List& all = changeable();
  const auto isOrdinary = [](const auto& known) { return known->number != kLeadingNumber; };
  const auto position = place == Place::last ? all.end() : std::ranges::find_if(all, isOrdinary);
  all.insert(position, std::move(registration));
}

void NotificationRegistrations::Bucket::noteRemoval() {
  if (++removedCount * 2 < list->size()) return;
  std::erase_if(changeable(),
                [](const auto& registration) { return registration->isRemoved.load(); });
  removedCount = 0;
}

void NotificationRegistrations::add(const id& observer, SEL selector,
                                    const std::optional<std::string>& name, const id& object,
                                    Place place) {
  const std::lock_guard lock(mutex_);
  sweepIfDue();
  const std::uint64_t number = place == Place::leading ? kLeadingNumber : nextNumber_++;
  auto registration =
      std::make_shared<NotificationRegistration>(number, observer, selector, name, object);
  byObserver_[observer.get()].push_back(registration);
  Bucket& bucket = name ? named_[*name] : anyNamed_;
  bucket.insert(std::move(registration), place);
}

/// Looks at all when as many have been added as were left the last time: what dies unheard is
/// bounded, and adding stays cheap.
void NotificationRegistrations::sweepIfDue() {
  constexpr std::size_t kFewest = 64;
  if (++addedSinceSweep_ < std::max(kFewest, keptBySweep_)) return;
  addedSinceSweep_ = 0;
  keptBySweep_ = 0;
  for (auto entry = byObserver_.begin(); entry != byObserver_.end();) {
    std::erase_if(entry->second, [this](const auto& registration) {
      if (!registration->isDead()) return false;
      markRemoved(*registration);
      return true;
    });
    keptBySweep_ += entry->second.size();
    entry = entry->second.empty() ? byObserver_.erase(entry) : std::next(entry);
  }
}

void NotificationRegistrations::markRemoved(NotificationRegistration& registration) {
  registration.isRemoved = true;
  if (!registration.name) {
    anyNamed_.noteRemoval();
    return;
  }
  const auto bucket = named_.find(*registration.name);
  bucket->second.noteRemoval();
  if (bucket->second.list->empty()) named_.erase(bucket);
}

void NotificationRegistrations::remove(const NSObject& observer,
                                       const std::optional<std::string>& name, const id& object) {
  const std::weak_ptr<const NSObject> owner = observer.weak_from_this();
  const std::lock_guard lock(mutex_);
  const auto found = byObserver_.find(&observer);
  if (found == byObserver_.end()) return;
  std::erase_if(found->second, [&](const std::shared_ptr<NotificationRegistration>& registration) {
    if (!haveSameOwner(registration->observer, owner)) return false;
    if (name && registration->name != name) return false;
    if (object && (!registration->objectAddress || !registration->matchesObject(object))) {
      return false;
    }
    const auto alive = registration;
    markRemoved(*alive);
    return true;
  });
  if (found->second.empty()) byObserver_.erase(found);
}

void NotificationRegistrations::forgetByObserver(const NotificationRegistration& registration) {
  const auto found = byObserver_.find(registration.observerAddress);
  if (found == byObserver_.end()) return;
  std::erase_if(found->second, [&](const auto& known) { return known.get() == &registration; });
  if (found->second.empty()) byObserver_.erase(found);
}

void NotificationRegistrations::removeTheDead(std::string_view name) {
  const std::lock_guard lock(mutex_);
  List dead;
  const auto collect = [&dead](const std::shared_ptr<List>& list) {
    if (!list) return;
    std::ranges::copy_if(*list, std::back_inserter(dead), [](const auto& registration) {
      return !registration->isRemoved && registration->isDead();
    });
  };
  if (const auto bucket = named_.find(name); bucket != named_.end()) collect(bucket->second.list);
  collect(anyNamed_.list);
  for (const auto& registration : dead) {
    forgetByObserver(*registration);
    markRemoved(*registration);
  }
}

}  // namespace rvf
