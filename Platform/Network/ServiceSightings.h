// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <set>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/NSNetService.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Merges what a back end sees on each interface and protocol into one appearance and one
/// disappearance of each registration, both told by the same object.
///
/// After an interruption everything known is unconfirmed; nothing disappears until the back end
/// has settled again, and then what it did not report again has gone. A registration that is seen
/// on one link after another therefore never flaps.
class RVF_EXPORT ServiceSightings final {
 public:
  /// The registration's object if it was not known, else absent.
  Ref<NSNetService> found(const ServiceIdentity& identity, ServiceLink link);
  /// The registration's object if this was its last link, else absent.
  Ref<NSNetService> removed(const ServiceIdentity& identity, ServiceLink link);
  void interrupted();
  /// The registrations that an interruption took away, in the order of their names.
  std::vector<Ref<NSNetService>> settled();

 private:
  struct Sighting {
    Ref<NSNetService> service;
    std::set<ServiceLink> links;
  };
  std::map<ServiceIdentity, Sighting> sightings_;
  bool isInterrupted_ = false;
};

}  // namespace rvf
