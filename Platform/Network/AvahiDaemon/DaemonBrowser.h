// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "Platform/Network/AvahiDaemon/DaemonObject.h"
#include "Platform/Network/AvahiDaemon/RecordData.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// One of the daemon's browsers, started as soon as it is made. All kinds have the same signals.
class DaemonBrowser final {
 public:
  using ItemHandler = AvahiDaemon::Handler;

  struct Events {
    ItemHandler added;
    ItemHandler removed;
    std::function<void()> settled;
    std::function<void()> cacheExhausted;  ///< what the daemon knew already has been told
    std::function<void(NSNetServicesError)> failed;
  };

  /// Registrations of a type. Items: interface, protocol, name, type, domain, flags ("iisssu").
  static std::unique_ptr<DaemonBrowser> ofServices(AvahiDaemon& daemon, const std::string& type,
                                                   const std::string& domain, Events events);
  /// Domains to browse in. Items: interface, protocol, domain, flags ("iisu").
  static std::unique_ptr<DaemonBrowser> ofDomains(AvahiDaemon& daemon, Events events);
  /// Records of a name. Items: interface, protocol, name, class, type, data, flags ("iisqqayu").
  static std::unique_ptr<DaemonBrowser> ofRecords(AvahiDaemon& daemon, const std::string& name,
                                                  RecordType type, Events events);

  DaemonBrowser(AvahiDaemon& daemon, const char* interface, BusMessage prepare, Events events);

 private:
  void signalArrived(sd_bus_message& signal);

  std::shared_ptr<const Events> events_;
  DaemonObject object_;
};

/// The link that an item names: an interface, and one of Avahi's numbers for protocols.
ServiceLink linkFrom(int interfaceIndex, int protocol) noexcept;

/// What an item of a record browser says.
struct RecordItem {
  ServiceLink link;
  std::span<const std::byte> data;  ///< lives as long as the message
};
/// Reads one; absent if the message is malformed.
std::optional<RecordItem> recordItemFrom(sd_bus_message& item);

}  // namespace rvf
