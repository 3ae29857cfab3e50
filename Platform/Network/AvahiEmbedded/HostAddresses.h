// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <compare>
#include <functional>
#include <memory>
#include <set>

#include "Platform/Network/AvahiEmbedded/Descriptor.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// An address of this host on one of its interfaces.
struct HostAddress {
  int interfaceIndex = 0;
  SocketAddress address;
  friend auto operator<=>(const HostAddress&, const HostAddress&) = default;
};

/// The addresses that this host offers services on: those of every interface that is up. A
/// link-local or loopback one counts only where its interface has no better one of its family.
std::set<HostAddress> hostAddresses();

/// Calls back when interfaces or addresses of this host changed (rtnetlink(7)), once for changes
/// that come together.
class HostAddressWatch final {
 public:
  HostAddressWatch(NSRunLoop& loop, std::function<void()> changed);

 private:
  void drain();

  std::function<void()> changed_;
  Descriptor socket_;
  std::unique_ptr<RunLoopSource> source_;
};

}  // namespace rvf
