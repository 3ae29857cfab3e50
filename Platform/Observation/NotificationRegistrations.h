// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

/// One registration with a notification center.
struct NotificationRegistration {
  NotificationRegistration(std::uint64_t registrationNumber, const id& observing, SEL sent,
                           const std::optional<std::string>& wantedName, const id& wantedObject)
      : observer(observing),
        selector(sent),
        objectAddress(wantedObject.get()),
        number(registrationNumber),
        observerAddress(observing.get()),
        object(wantedObject),
        name(wantedName) {}

  // What every delivery looks at comes first: with the count of references, one cache line.
  const std::weak_ptr<NSObject> observer;
  const SEL selector;
  const NSObject* const objectAddress;  // null for any object
  const std::uint64_t number;           // in the order of registration; 0 of all leading ones
  std::atomic<bool> isRemoved{false};
  const NSObject* const observerAddress;
  const std::weak_ptr<NSObject> object;
  const std::optional<std::string> name;

  /// Nothing will be delivered to it any more.
  bool isDead() const noexcept { return observer.expired() || (objectAddress && object.expired()); }
  /// Whether it is for this object or for any. Addresses are used again, but not while their object
  /// lives.
  bool matchesObject(const id& posted) const noexcept {
    return !objectAddress || (objectAddress == posted.get() && !object.expired());
  }
};

/// The registrations of one notification center, by name and by observer. Thread-safe; calls
/// nobody.
///
/// A post walks the list of a name as it is at that moment: a list is copied when it is changed
/// while a post holds it, and changed in place otherwise. What is removed is marked at once, and
/// leaves its list when half of the list is gone, so that removing costs the same however many
/// there are.
class NotificationRegistrations {
 public:
  using List = std::vector<std::shared_ptr<NotificationRegistration>>;

  /// What was registered for one name and for any, at one moment. The registrations outlive it.
  class Snapshot final {
   public:
    Snapshot(const NotificationRegistrations& registrations, std::string_view name);
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// In the order of registration; null at the end.
    const NotificationRegistration* next() noexcept {
      if (named_.isAtEnd()) return anyNamed_.next();
      if (anyNamed_.isAtEnd() || named_.first().number < anyNamed_.first().number) {
        return named_.next();
      }
      return anyNamed_.next();
    }

   private:
    /// What is left of one list.
    class Rest final {
     public:
      void begin(const std::shared_ptr<List>& list) {
        if (!list) return;
        list_ = list;
        next_ = list->data();
        end_ = next_ + list->size();
      }
      void drop() noexcept { list_.reset(); }
      bool isAtEnd() const noexcept { return next_ == end_; }
      const NotificationRegistration& first() const noexcept { return **next_; }
      const NotificationRegistration* next() noexcept {
        return isAtEnd() ? nullptr : (next_++)->get();
      }

     private:
      std::shared_ptr<const List> list_;
      const std::shared_ptr<NotificationRegistration>* next_ = nullptr;
      const std::shared_ptr<NotificationRegistration>* end_ = nullptr;
    };

    const NotificationRegistrations& registrations_;
    Rest named_;
    Rest anyNamed_;
  };

  /// Leading ones stand before all others, among themselves in the order of registration.
  enum class Place { leading, last };

  void add(const id& observer, SEL selector, const std::optional<std::string>& name,
           const id& object, Place place = Place::last);
  void remove(const NSObject& observer, const std::optional<std::string>& name, const id& object);
  /// Takes away those for this or any name that are dead. The others go as new ones are added.
  void removeTheDead(std::string_view name);

 private:
  struct Bucket {
    std::shared_ptr<List> list;  // shared with snapshots, which come and go under the lock
    std::size_t removedCount = 0;

    List& changeable();
    void insert(std::shared_ptr<NotificationRegistration> registration, Place place);
    void noteRemoval();
  };

  void sweepIfDue();
  void markRemoved(NotificationRegistration& registration);
  void forgetByObserver(const NotificationRegistration& registration);

  mutable std::mutex mutex_;
  std::uint64_t nextNumber_ = 1;
  std::size_t addedSinceSweep_ = 0;
  std::size_t keptBySweep_ = 0;
  std::map<std::string, Bucket, std::less<>> named_;
  Bucket anyNamed_;
  std::unordered_map<const NSObject*, List> byObserver_;
};

}  // namespace rvf
