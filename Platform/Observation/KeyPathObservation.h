// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Observation/ObservationLink.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// One registration of an observer for a key path of a target. Owned by the target's
/// `ObservedObject`.
class KeyPathObservation final : public std::enable_shared_from_this<KeyPathObservation> {
 public:
  KeyPathObservation(NSObject& target, const id& observer, std::string_view keyPath,
                     NSKeyValueObservingOptions options, void* context);

  /// Starts to observe.
  void begin();
  /// Ends it. Nothing is told from now on. Thread-safe.
  void cancel() noexcept;

  /// Tells the observer, unless the registration has ended, the observer is dead, or the target is
  /// being destroyed.
  void tell(const Ref<NSDictionary>& change);

  bool isCancelled() const noexcept { return isCancelled_; }
  bool has(NSKeyValueObservingOptions option) const noexcept { return (options_ & option) != 0; }
  NSKeyValueObservingOptions options() const noexcept { return options_; }
  NSObject& target() const noexcept { return *target_; }
  const std::string& keyPath() const noexcept { return keyPath_; }
  void* context() const noexcept { return context_; }
  std::uint64_t registration() const noexcept { return registration_; }

  /// The observer as an identity, which nothing else has, also when it is dead.
  const NSObject* observerAddress() const noexcept { return observerAddress_; }
  bool isObservedBy(const std::weak_ptr<const NSObject>& observer) const noexcept;
  bool isObserverDead() const noexcept { return observer_.expired(); }
  /// "<Class 0x…>", also when they are gone.
  std::string observerText() const;
  std::string targetText() const;

  /// For a new link of this registration.
  ObservationLink::Order nextOrder() noexcept { return {registration_, linkCount_++}; }

 private:
  NSObject* const target_;  // valid until cancelled
  const Class targetClass_;
  const std::weak_ptr<NSObject> observer_;
  const NSObject* const observerAddress_;
  const Class observerClass_;
  const std::string keyPath_;
  const NSKeyValueObservingOptions options_;
  void* const context_;
  const std::uint64_t registration_;  // counted in the process
  std::uint64_t linkCount_ = 0;
  std::atomic<bool> isCancelled_{false};
  std::shared_ptr<ObservationLink> root_;
};

}  // namespace rvf
