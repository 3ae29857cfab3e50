// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// DNS-SD through the machine's Avahi daemon, over its D-Bus interface on the system bus
/// (`DBUS_SYSTEM_BUS_ADDRESS`, else the usual socket).
///
/// All activities of a thread share one bus connection, which lives from the first to the last of
/// them (the daemon's limits for one: 1024 browsers and registrations). Without a bus or a daemon
/// an activity waits for one and reports nothing; one that goes away while it is used is waited
/// for in the same way. A daemon that hangs delays events, never a call. An installed daemon that
/// does not run is never started.
///
/// The address of the bus must not be a "tcp:" one: looking its host up could block.
///
/// Thread: that of its activities. Lifetime: activities share the connection, which ends with the
/// last of them.
class RVF_EXPORT AvahiDaemonBackend final : public ServiceDiscoveryBackend {
 public:
  std::unique_ptr<DiscoveryActivity> browse(const std::string& type, const std::string& domain,
                                            BrowseEvents events) override;
  std::unique_ptr<DiscoveryActivity> watchTXTRecord(const ServiceIdentity& identity,
                                                    TXTRecordEvents events) override;
  std::unique_ptr<DiscoveryActivity> resolve(const ServiceIdentity& identity,
                                             ResolveEvents events) override;
  std::unique_ptr<PublishActivity> publish(const Publication& publication,
                                           PublishEvents events) override;
  bool isResponding() const override;
  std::string defaultServiceName() override;
};

}  // namespace rvf
