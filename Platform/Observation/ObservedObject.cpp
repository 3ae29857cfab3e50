// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/ObservedObject.h"

#include <algorithm>
#include <iterator>

#include "Platform/Runtime/KeyValueHooks.h"

namespace rvf {
namespace {

/// Locked before any `ObservedObject`, never after.
struct Table {
  std::mutex mutex;
  std::unordered_map<const NSObject*, std::shared_ptr<ObservedObject>> objects;
};

/// Never destroyed: observed objects may outlive every static.
Table& table() {
  static Table& instance = *new Table;
  return instance;
}

/// Only with the table locked, so that it cannot be dropped as idle before it is filled.
std::shared_ptr<ObservedObject>& entryOf(NSObject& object) {
  std::shared_ptr<ObservedObject>& entry = table().objects[&object];
  if (!entry) entry = std::make_shared<ObservedObject>(object);
  KeyValueHooks::setObserved(object, true);
  return entry;
}

}  // namespace

std::shared_ptr<ObservedObject> ObservedObject::at(const NSObject* address) {
  const std::lock_guard lock(table().mutex);
  const auto found = table().objects.find(address);
  return found == table().objects.end() ? nullptr : found->second;
}

std::shared_ptr<ObservedObject> ObservedObject::take(const NSObject& object) {
  const std::lock_guard lock(table().mutex);
  const auto found = table().objects.find(&object);
  if (found == table().objects.end()) return nullptr;
  const std::shared_ptr<ObservedObject> taken = std::move(found->second);
  table().objects.erase(found);
  return taken;
}

std::shared_ptr<ObservedObject> ObservedObject::addLink(
    NSObject& object, const std::shared_ptr<ObservationLink>& link) {
  const std::lock_guard lock(table().mutex);
  const std::shared_ptr<ObservedObject> observed = entryOf(object);
  const std::lock_guard objectLock(observed->mutex_);
  for (const std::string& key : link->affectingKeys()) {
    observed->links_[key].emplace(link->order(), link);
  }
  return observed;
}

void ObservedObject::addObservation(const std::shared_ptr<KeyPathObservation>& observation) {
  const std::lock_guard lock(table().mutex);
  ObservedObject& observed = *entryOf(observation->target());
  const std::lock_guard objectLock(observed.mutex_);
  observed.observations_[{observation->keyPath(), observation->observerAddress()}].push_back(
      observation);
}

bool ObservedObject::PendingChange::reachesSomebody() const noexcept {
  return std::ranges::any_of(
      changes, [](const ObservedChange& change) { return !change.observation->isCancelled(); });
}

/// What is open only for registrations that have ended is dropped: its "did" may never come.
void ObservedObject::removeLink(const ObservationLink& link) noexcept {
  Links gone;  // when the lock is open again
  std::vector<PendingChange> goneChanges;
  {
    const std::lock_guard lock(mutex_);
    for (const std::string& key : link.affectingKeys()) {
      const auto links = links_.find(key);
      if (links == links_.end()) continue;
      gone.insert(links->second.extract(link.order()));
      if (links->second.empty()) links_.erase(links);
    }
    const auto firstGone =
        std::stable_partition(pending_.begin(), pending_.end(),
                              [](const PendingChange& change) { return change.reachesSomebody(); });
    std::move(firstGone, pending_.end(), std::back_inserter(goneChanges));
    pending_.erase(firstGone, pending_.end());
    if (!links_.empty()) return;
  }
  dropIfIdle();
}

std::shared_ptr<KeyPathObservation> ObservedObject::takeNewest(Observations& candidates,
                                                               auto isWanted) {
  const auto newest = std::ranges::find_if(candidates.rbegin(), candidates.rend(), isWanted);
  if (newest == candidates.rend()) return nullptr;
  std::shared_ptr<KeyPathObservation> taken = std::move(*newest);
  candidates.erase(std::prev(newest.base()));
  return taken;
}

std::shared_ptr<KeyPathObservation> ObservedObject::removeObservation(
    const NSObject* address, const std::weak_ptr<const NSObject>& observer,
    std::string_view keyPath, void* const* context) {
  const std::lock_guard lock(mutex_);
  const auto found = observations_.find({std::string(keyPath), address});
  if (found == observations_.end()) return nullptr;
  const auto taken = takeNewest(found->second, [&](const auto& candidate) {
    return candidate->isObservedBy(observer) && (!context || candidate->context() == *context);
  });
  if (found->second.empty()) observations_.erase(found);
  return taken;
}

std::shared_ptr<KeyPathObservation> ObservedObject::removeObservationOfTheDead(
    std::string_view keyPath, void* const* context) {
  const std::lock_guard lock(mutex_);
  const auto isWanted = [&](const auto& candidate) {
    return candidate->isObserverDead() && (!context || candidate->context() == *context);
  };
  auto newest = observations_.end();
  std::uint64_t registration = 0;
  for (auto entry = observations_.lower_bound({std::string(keyPath), nullptr});
       entry != observations_.end() && entry->first.first == keyPath; ++entry) {
    const auto candidate =
        std::ranges::find_if(entry->second.rbegin(), entry->second.rend(), isWanted);
    if (candidate == entry->second.rend() || (*candidate)->registration() < registration) continue;
    newest = entry;
    registration = (*candidate)->registration();
  }
  if (newest == observations_.end()) return nullptr;
  const auto taken = takeNewest(newest->second, isWanted);
  if (newest->second.empty()) observations_.erase(newest);
  return taken;
}

std::vector<ObservedChange> ObservedObject::changesOfKey(std::string_view key) const {
  std::vector<ObservedChange> changes;
  const std::lock_guard lock(mutex_);
  const auto links = links_.find(key);
  if (links == links_.end()) return changes;
  changes.reserve(links->second.size());
  for (const auto& [order, link] : links->second) {
    if (auto observation = link->observation()) {
      changes.push_back({std::move(observation), link, nullptr});
    }
  }
  return changes;
}

void ObservedObject::beginChange(std::string_view key, std::vector<ObservedChange> changes) {
  const std::lock_guard lock(mutex_);
  pending_.push_back({std::this_thread::get_id(), std::string(key), std::move(changes)});
}

std::vector<ObservedChange> ObservedObject::endChange(std::string_view key) {
  std::vector<ObservedChange> changes;
  {
    const std::lock_guard lock(mutex_);
    const auto newest =
        std::find_if(pending_.rbegin(), pending_.rend(), [&](const PendingChange& change) {
          return change.thread == std::this_thread::get_id() && change.key == key;
        });
    if (newest == pending_.rend()) return changes;
    changes = std::move(newest->changes);
    pending_.erase(std::prev(newest.base()));
    if (!links_.empty() || !pending_.empty()) return changes;
  }
  dropIfIdle();
  return changes;
}

std::vector<std::shared_ptr<KeyPathObservation>> ObservedObject::observations() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<KeyPathObservation>> all;
  for (const auto& [identity, some] : observations_)
    all.insert(all.end(), some.begin(), some.end());
  return all;
}

std::vector<std::shared_ptr<ObservationLink>> ObservedObject::links() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<ObservationLink>> all;
  for (const auto& [key, links] : links_) {
    for (const auto& [order, link] : links)
      all.push_back(link);
  }
  return all;
}

/// The object is unobserved again, and as cheap as before.
void ObservedObject::dropIfIdle() noexcept {
  std::shared_ptr<ObservedObject> gone;
  const std::lock_guard lock(table().mutex);
  const std::lock_guard objectLock(mutex_);
  if (!links_.empty() || !observations_.empty() || !pending_.empty()) return;
  const auto found = table().objects.find(&object_);
  if (found == table().objects.end() || found->second.get() != this) return;
  gone = std::move(found->second);
  table().objects.erase(found);
  KeyValueHooks::setObserved(object_, false);
}

}  // namespace rvf
