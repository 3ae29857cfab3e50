// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/Observation/KeyPathObservation.h"
#include "Platform/Observation/ObservationLink.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// What a change is for one of the links that it reaches.
struct ObservedChange {
  std::shared_ptr<KeyPathObservation> observation;
  std::shared_ptr<ObservationLink> link;
  id oldValue;
};

/// What is registered on one object, and which of its changes are under way. There is one only as
/// long as there is something of that. Thread-safe; calls nothing that is not of this room.
class ObservedObject final {
 public:
  explicit ObservedObject(NSObject& object) : object_(object) {}

  /// That of this object, or null.
  static std::shared_ptr<ObservedObject> of(const NSObject& object) { return at(&object); }
  /// That of the object which is at this address now, or null.
  static std::shared_ptr<ObservedObject> at(const NSObject* address);
  /// Takes away what belongs to an object that is being destroyed.
  static std::shared_ptr<ObservedObject> take(const NSObject& object);

  static std::shared_ptr<ObservedObject> addLink(NSObject& object,
                                                 const std::shared_ptr<ObservationLink>& link);
  static void addObservation(const std::shared_ptr<KeyPathObservation>& observation);

  void removeLink(const ObservationLink& link) noexcept;
  /// Takes away the newest registration that fits, or returns null. `observer` is an address and
  /// its owner: the address alone may have been another object's before.
  std::shared_ptr<KeyPathObservation> removeObservation(
      const NSObject* address, const std::weak_ptr<const NSObject>& observer,
      std::string_view keyPath, void* const* context);
  /// The same for the newest registration whose observer is dead.
  std::shared_ptr<KeyPathObservation> removeObservationOfTheDead(std::string_view keyPath,
                                                                 void* const* context);

  /// Whom a change of this key reaches, in the order of registration; the links of one
  /// registration are neighbours.
  std::vector<ObservedChange> changesOfKey(std::string_view key) const;
  void beginChange(std::string_view key, std::vector<ObservedChange> changes);
  /// The changes of the newest "will" of this thread that has no "did" yet; empty without one.
  std::vector<ObservedChange> endChange(std::string_view key);

  std::vector<std::shared_ptr<KeyPathObservation>> observations() const;
  std::vector<std::shared_ptr<ObservationLink>> links() const;

 private:
  using Observations = std::vector<std::shared_ptr<KeyPathObservation>>;  // oldest first
  using Links = std::map<ObservationLink::Order, std::shared_ptr<ObservationLink>>;
  struct PendingChange {
    std::thread::id thread;
    std::string key;
    std::vector<ObservedChange> changes;

    bool reachesSomebody() const noexcept;
  };

  std::shared_ptr<KeyPathObservation> takeNewest(Observations& candidates, auto isWanted);
  void dropIfIdle() noexcept;

  NSObject& object_;
  mutable std::mutex mutex_;
  std::map<std::string, Links, std::less<>> links_;  // by affecting key
  std::map<std::pair<std::string, const NSObject*>, Observations> observations_;
  std::vector<PendingChange> pending_;
};

}  // namespace rvf
