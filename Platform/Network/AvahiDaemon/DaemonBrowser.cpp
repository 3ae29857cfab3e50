// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonBrowser.h"

#include <avahi-common/address.h>
#include <avahi-common/defs.h>
#include <sys/socket.h>

#include <string_view>
#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiError.h"

namespace rvf {
namespace {

constexpr int kAnyInterface = AVAHI_IF_UNSPEC;
constexpr int kAnyProtocol = AVAHI_PROTO_UNSPEC;
constexpr unsigned kNoFlags = 0;

}  // namespace

std::unique_ptr<DaemonBrowser> DaemonBrowser::ofServices(AvahiDaemon& daemon,
                                                         const std::string& type,
                                                         const std::string& domain, Events events) {
  return std::make_unique<DaemonBrowser>(
      daemon, "org.freedesktop.Avahi.ServiceBrowser",
      daemon.newCall(AvahiDaemon::kServerPath, AvahiDaemon::kServerInterface,
                     "ServiceBrowserPrepare", "iissu", kAnyInterface, kAnyProtocol, type.c_str(),
                     domain.c_str(), kNoFlags),
      std::move(events));
}

std::unique_ptr<DaemonBrowser> DaemonBrowser::ofDomains(AvahiDaemon& daemon, Events events) {
  return std::make_unique<DaemonBrowser>(
      daemon, "org.freedesktop.Avahi.DomainBrowser",
      daemon.newCall(AvahiDaemon::kServerPath, AvahiDaemon::kServerInterface,
                     "DomainBrowserPrepare", "iisiu", kAnyInterface, kAnyProtocol, "",
                     static_cast<int>(AVAHI_DOMAIN_BROWSER_BROWSE), kNoFlags),
      std::move(events));
}

std::unique_ptr<DaemonBrowser> DaemonBrowser::ofRecords(AvahiDaemon& daemon,
                                                        const std::string& name, RecordType type,
                                                        Events events) {
  return std::make_unique<DaemonBrowser>(
      daemon, "org.freedesktop.Avahi.RecordBrowser",
      daemon.newCall(AvahiDaemon::kServerPath, AvahiDaemon::kServerInterface,
                     "RecordBrowserPrepare", "iisqqu", kAnyInterface, kAnyProtocol, name.c_str(),
                     static_cast<int>(AVAHI_DNS_CLASS_IN), static_cast<int>(type), kNoFlags),
      std::move(events));
}

/// Its members' handlers capture `this`: they are gone with `object_`.
DaemonBrowser::DaemonBrowser(AvahiDaemon& daemon, const char* interface, BusMessage prepare,
                             Events events)
    : events_(std::make_shared<const Events>(std::move(events))),
      object_(daemon, interface, std::move(prepare),
              {.made = [this] { object_.send(object_.newCall("Start")); },
               .signal = [this](sd_bus_message& signal) { signalArrived(signal); },
               .failed = events_->failed}) {}

void DaemonBrowser::signalArrived(sd_bus_message& signal) {
  const std::shared_ptr<const Events> events = events_;  // a handler may destroy this browser
  const char* const member = sd_bus_message_get_member(&signal);
  const std::string_view name = member == nullptr ? "" : member;
  if (name == "ItemNew") {
    if (events->added) events->added(signal);
  } else if (name == "ItemRemove") {
    if (events->removed) events->removed(signal);
  } else if (name == "AllForNow") {
    if (events->settled) events->settled();
  } else if (name == "CacheExhausted") {
    if (events->cacheExhausted) events->cacheExhausted();
  } else if (name == "Failure") {
    const char* error = nullptr;
    sd_bus_message_read(&signal, "s", &error);
    if (events->failed) events->failed(errorForAvahiName(error == nullptr ? "" : error));
  }
}

ServiceLink linkFrom(int interfaceIndex, int protocol) noexcept {
  switch (protocol) {
    case AVAHI_PROTO_INET:
      return {interfaceIndex, AF_INET};
    case AVAHI_PROTO_INET6:
      return {interfaceIndex, AF_INET6};
    default:
      return {interfaceIndex, AF_UNSPEC};
  }
}

std::optional<RecordItem> recordItemFrom(sd_bus_message& item) {
  RecordItem record;
  int interfaceIndex = 0;
  int protocol = 0;
  const char* name = nullptr;
  std::uint16_t recordClass = 0;
  std::uint16_t type = 0;
  const void* data = nullptr;
  std::size_t length = 0;
  if (sd_bus_message_read(&item, "iisqq", &interfaceIndex, &protocol, &name, &recordClass, &type) <
          0 ||
      sd_bus_message_read_array(&item, 'y', &data, &length) < 0) {
    return std::nullopt;
  }
  record.link = linkFrom(interfaceIndex, protocol);
  record.data = {static_cast<const std::byte*>(data), length};
  return record;
}

}  // namespace rvf
