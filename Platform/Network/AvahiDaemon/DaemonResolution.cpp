// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonResolution.h"

#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {

DaemonResolution::DaemonResolution(ServiceIdentity identity, ResolveEvents events)
    : identity_(std::move(identity)), events_(std::move(events)) {}

bool DaemonResolution::isAskable() const {
  return rvf::isAskable(identity_);
}

void DaemonResolution::begin() {
  locations_ = watchRecords(fullServiceName(identity_).value(), RecordType::srv,
                            &DaemonResolution::locationAdded);
}

void DaemonResolution::drop() {
  locations_.reset();
  addressesV4_.reset();
  addressesV6_.reset();
}

void DaemonResolution::reportFailure(NSNetServicesError error) {
  if (events_.failed) events_.failed(error);
}

std::unique_ptr<DaemonBrowser> DaemonResolution::watchRecords(
    const std::string& name, RecordType type, void (DaemonResolution::*added)(const RecordItem&)) {
  DaemonBrowser::Events events;
  events.added = whileAlive([this, added](sd_bus_message& item) {
    const auto record = recordItemFrom(item);
    if (record) (this->*added)(*record);
  });
  events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  return DaemonBrowser::ofRecords(daemon(), name, type, std::move(events));
}

/// The same location is shown by every interface, and again by a daemon that came back.
void DaemonResolution::locationAdded(const RecordItem& item) {
  const auto location = locationFromRecord(item.data);
  if (!location || location->host.empty() || !isSendable(location->host)) return;
  const bool isNew = location != location_;
  if (!isNew && addressesV4_) return;
  location_ = location;
  if (isNew) addresses_.clear();
  const std::string host = withoutFinalDot(location->host);
  addressesV4_ = watchRecords(host, RecordType::a, &DaemonResolution::addressAdded);
  addressesV6_ = watchRecords(host, RecordType::aaaa, &DaemonResolution::addressAdded);
  if (isNew && events_.located) events_.located(location->host, location->port);
}

void DaemonResolution::addressAdded(const RecordItem& item) {
  const auto address = addressFromRecord(item.data, location_->port, item.interfaceIndex);
  if (!address) return;
  const auto [bytes, isNew] = addresses_.insert(address->blockBytes());
  const SocketAddressBytes block = *bytes;  // the handler may end this
  if (isNew && events_.addressFound) events_.addressFound(block);
}

}  // namespace rvf
