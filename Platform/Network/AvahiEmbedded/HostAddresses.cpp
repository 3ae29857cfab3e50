// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/HostAddresses.h"

#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace rvf {
namespace {

int openChangeSocket() {
  const int descriptor =
      ::socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE);
  if (descriptor < 0) return descriptor;
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
  if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    return descriptor;
  }
  ::close(descriptor);
  return -1;
}

std::size_t lengthOf(const sockaddr& address) {
  return address.sa_family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
}

std::optional<HostAddress> hostAddress(const ifaddrs& entry) {
  if (!entry.ifa_addr || (entry.ifa_flags & IFF_UP) == 0) return std::nullopt;
  const auto address = SocketAddress::fromSockaddr(entry.ifa_addr, lengthOf(*entry.ifa_addr));
  const auto index = static_cast<int>(::if_nametoindex(entry.ifa_name));
  if (!address || index == 0) return std::nullopt;
  return HostAddress{index, *address};
}

bool isFarReaching(const SocketAddress& address) {
  const std::string text = address.addressText();
  return !address.isLinkLocal() && text != "::1" && !std::string_view(text).starts_with("127.");
}

}  // namespace

std::set<HostAddress> hostAddresses() {
  std::set<HostAddress> all;
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0) return all;
  for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
    if (auto address = hostAddress(*entry)) all.insert(*address);
  }
  ::freeifaddrs(list);
  std::set<HostAddress> offered;
  std::ranges::copy_if(all, std::inserter(offered, offered.end()), [&](const HostAddress& one) {
    return isFarReaching(one.address) || std::ranges::none_of(all, [&](const HostAddress& other) {
             return other.interfaceIndex == one.interfaceIndex &&
                    other.address.family() == one.address.family() && isFarReaching(other.address);
           });
  });
  return offered;
}

HostAddressWatch::HostAddressWatch(NSRunLoop& loop, std::function<void()> changed)
    : changed_(std::move(changed)), socket_(openChangeSocket()) {
  if (!socket_) return;
  DescriptorEvents wanted;
  wanted.readable = true;
  source_ = loop.watchDescriptor(socket_.get(), wanted, {std::string(NSRunLoopCommonModes)},
                                 [this](DescriptorEvents) { drain(); });
}

/// What the messages say is not read: lost ones (ENOBUFS) make no difference then.
void HostAddressWatch::drain() {
  std::array<char, 8192> buffer;
  for (;;) {
    const ssize_t length = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    if (length <= 0 && !(length < 0 && errno == ENOBUFS)) break;
  }
  const auto changed = changed_;
  changed();
}

}  // namespace rvf
