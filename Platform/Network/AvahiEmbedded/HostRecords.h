// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/AvahiEmbedded/HostAddresses.h"

namespace rvf {

/// Keeps a server's address records at what this host's interfaces have now, each on its own
/// interface only. The host name is the server's alone, so they are announced without probing.
class HostRecords final {
 public:
  HostRecords(AvahiServer& server, std::string hostName);

  /// Adds what is new and withdraws what has gone.
  void update();

 private:
  AvahiHandle<AvahiSEntryGroup> announced(const HostAddress& address);

  AvahiServer& server_;
  std::string hostName_;
  std::map<HostAddress, AvahiHandle<AvahiSEntryGroup>> groups_;
};

}  // namespace rvf
