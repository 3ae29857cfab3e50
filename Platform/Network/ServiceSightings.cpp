// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceSightings.h"

#include <utility>

namespace rvf {

Ref<NSNetService> ServiceSightings::found(const ServiceIdentity& identity, ServiceLink link) {
  Sighting& sighting = sightings_[identity];
  sighting.links.insert(link);
  if (sighting.service) return nullptr;
  sighting.service = NSNetService::initWithDomain(identity.domain, identity.type, identity.name);
  return sighting.service;
}

Ref<NSNetService> ServiceSightings::removed(const ServiceIdentity& identity, ServiceLink link) {
  const auto known = sightings_.find(identity);
  if (known == sightings_.end()) return nullptr;
  known->second.links.erase(link);
  if (isInterrupted_ || !known->second.links.empty()) return nullptr;
  Ref<NSNetService> service = std::move(known->second.service);
  sightings_.erase(known);
  return service;
}

void ServiceSightings::interrupted() {
  isInterrupted_ = true;
  for (auto& [identity, sighting] : sightings_)
    sighting.links.clear();
}

std::vector<Ref<NSNetService>> ServiceSightings::settled() {
  std::vector<Ref<NSNetService>> gone;
  if (!std::exchange(isInterrupted_, false)) return gone;
  std::erase_if(sightings_, [&gone](auto& entry) {
    if (!entry.second.links.empty()) return false;
    gone.push_back(std::move(entry.second.service));
    return true;
  });
  return gone;
}

}  // namespace rvf
