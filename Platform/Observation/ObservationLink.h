// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

class KeyPathObservation;
class ObservedObject;

/// One key of an observed path, at the object where it is observed now: the root link at the
/// target, the next one at the object that the key leads to, and further ones for the paths that
/// the key depends on. A change at any link is a change of the whole path.
class ObservationLink final : public std::enable_shared_from_this<ObservationLink> {
 public:
  /// Where a link stands among all that are told of one key.
  struct Order {
    std::uint64_t registration;
    std::uint64_t link;
    auto operator<=>(const Order&) const = default;
  };

  /// `parent` is null for the root link; else it owns this one.
  ObservationLink(KeyPathObservation& observation, std::string_view keyPath,
                  ObservationLink* parent);

  /// Observes the path at `object` and on from there. What an accessor raises comes out; then the
  /// link is to be detached.
  void attach(NSObject& object);
  /// Follows the path anew, after what the key leads to may have changed.
  void follow();
  /// Ends this link and those behind it.
  void detach() noexcept;
  /// The same if the object is gone and knows of it.
  void forgetObject() noexcept;

  std::shared_ptr<KeyPathObservation> observation() const noexcept { return observation_.lock(); }
  Order order() const noexcept { return order_; }
  /// The keys whose announcement is a change at this link.
  const std::vector<std::string>& affectingKeys() const noexcept { return affectingKeys_; }

 private:
  std::string_view key() const noexcept;
  std::string_view rest() const noexcept;
  bool repeatsAParent(const NSObject& object) const noexcept;
  void attachDependencies(NSObject& object, const std::vector<std::string>& keyPaths);
  void followFromHere();
  void detachBehind() noexcept;

  const std::weak_ptr<KeyPathObservation> observation_;
  const Order order_;
  const std::string keyPath_;
  ObservationLink* const parent_;  // valid while this link is attached
  bool isDependency_ = false;  // the parent's key depends on this path, else leads to its object
  std::atomic<bool> isAttached_{false};
  NSObject* object_ = nullptr;
  std::weak_ptr<ObservedObject> host_;
  std::vector<std::string> affectingKeys_;
  std::shared_ptr<ObservationLink> next_;
  std::vector<std::shared_ptr<ObservationLink>> dependencies_;
};

}  // namespace rvf
