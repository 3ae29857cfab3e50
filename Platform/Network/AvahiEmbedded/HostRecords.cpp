// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/HostRecords.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstring>
#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"

namespace rvf {
namespace {

AvahiHandle<AvahiRecord> addressRecord(const std::string& hostName, const SocketAddress& address) {
  const std::string text = address.addressText();
  if (address.isIPv6()) {
    auto record = makeRecord(hostName, AVAHI_DNS_TYPE_AAAA, AVAHI_DEFAULT_TTL_HOST_NAME);
    ::inet_pton(AF_INET6, text.c_str(), record->data.aaaa.address.address);
    return record;
  }
  auto record = makeRecord(hostName, AVAHI_DNS_TYPE_A, AVAHI_DEFAULT_TTL_HOST_NAME);
  ::inet_pton(AF_INET, text.c_str(), &record->data.a.address.address);
  return record;
}

}  // namespace

HostRecords::HostRecords(AvahiServer& server, std::string hostName)
    : server_(server), hostName_(std::move(hostName)) {}

void HostRecords::update() {
  const std::set<HostAddress> wanted = hostAddresses();
  std::erase_if(groups_, [&](const auto& entry) { return !wanted.contains(entry.first); });
  for (const HostAddress& address : wanted) {
    auto& group = groups_[address];
    if (!group) group = announced(address);
  }
}

/// Null on failure; the next change of an address tries again.
AvahiHandle<AvahiSEntryGroup> HostRecords::announced(const HostAddress& address) {
  AvahiHandle<AvahiSEntryGroup> group(avahi_s_entry_group_new(
      &server_, [](AvahiServer*, AvahiSEntryGroup*, AvahiEntryGroupState, void*) {}, nullptr));
  if (!group) return nullptr;
  const auto record = addressRecord(hostName_, address.address);
  const auto flags = static_cast<AvahiPublishFlags>(AVAHI_PUBLISH_UNIQUE | AVAHI_PUBLISH_NO_PROBE |
                                                    AVAHI_PUBLISH_ALLOW_MULTIPLE);
  if (avahi_server_add(&server_, group.get(), address.interfaceIndex, AVAHI_PROTO_UNSPEC, flags,
                       record.get()) < 0 ||
      avahi_s_entry_group_commit(group.get()) < 0) {
    return nullptr;
  }
  return group;
}

}  // namespace rvf
