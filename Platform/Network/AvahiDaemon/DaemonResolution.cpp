// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonResolution.h"

#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

struct LocationSighting {
  ServiceLocation location;
  ServiceLink link;
};

/// Absent for what no address could be asked for.
std::optional<LocationSighting> sightingFrom(sd_bus_message& message) {
  const auto item = recordItemFrom(message);
  if (!item) return std::nullopt;
  const auto location = locationFromRecord(item->data);
  if (!location || location->host.empty() || !isSendable(location->host)) return std::nullopt;
  return LocationSighting{*location, item->link};
}

}  // namespace

DaemonResolution::DaemonResolution(ServiceIdentity identity, ResolveEvents events)
    : identity_(std::move(identity)), events_(std::move(events)) {}

bool DaemonResolution::isAskable() const {
  return rvf::isAskable(identity_);
}

void DaemonResolution::begin() {
  DaemonBrowser::Events events;
  events.added = whileAlive([this](sd_bus_message& message) {
    const auto seen = sightingFrom(message);
    if (seen) locations_.add(seen->location, seen->link);
    follow();
  });
  events.removed = whileAlive([this](sd_bus_message& message) {
    const auto seen = sightingFrom(message);
    if (seen) locations_.remove(seen->location, seen->link);
    follow();
  });
  events.cacheExhausted = whileAlive([this] { locations_.cacheExhausted(); });
  events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  browser_ = DaemonBrowser::ofRecords(daemon(), fullServiceName(identity_).value(), RecordType::srv,
                                      std::move(events));
}

void DaemonResolution::drop() {
  browser_.reset();
  locations_ = {};
  addressesV4_.reset();
  addressesV6_.reset();
}

void DaemonResolution::reportFailure(NSNetServicesError error) {
  if (events_.failed) events_.failed(error);
}

/// The same location is shown by every interface, and again by a daemon that came back.
void DaemonResolution::follow() {
  const ServiceLocation* const newest = locations_.newest();
  if (!newest) return;
  const bool isNew = *newest != location_;
  if (!isNew && addressesV4_) return;
  location_ = *newest;
  if (isNew) addresses_.clear();
  addressesV4_ = watchAddresses(RecordType::a);
  addressesV6_ = watchAddresses(RecordType::aaaa);
  if (isNew && events_.located) events_.located(location_->host, location_->port);
}

std::unique_ptr<DaemonBrowser> DaemonResolution::watchAddresses(RecordType type) {
  DaemonBrowser::Events events;
  events.added = whileAlive([this](sd_bus_message& message) {
    const auto item = recordItemFrom(message);
    if (item) addressAdded(*item);
  });
  events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  return DaemonBrowser::ofRecords(daemon(), withoutFinalDot(location_->host), type,
                                  std::move(events));
}

void DaemonResolution::addressAdded(const RecordItem& item) {
  const auto address = addressFromRecord(item.data, location_->port, item.link.interfaceIndex);
  if (!address) return;
  const auto [bytes, isNew] = addresses_.insert(address->blockBytes());
  const SocketAddressBytes block = *bytes;  // the handler may end this
  if (isNew && events_.addressFound) events_.addressFound(block);
}

}  // namespace rvf
