// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EventOutbox.h"
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"
#include "Platform/Network/NewestRecord.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"
#include "Platform/Network/SocketAddress.h"

namespace rvf {

/// Resolving through the embedded stack: the SRV record tells host and port, and every address
/// record of that host, of both families and on every link, an address.
class EmbeddedResolve final : public DiscoveryActivity, private EmbeddedStack::Client {
 public:
  EmbeddedResolve(std::shared_ptr<EmbeddedStack> stack, const ServiceIdentity& identity,
                  ResolveEvents events);
  ~EmbeddedResolve() override;

 private:
  struct Location {
    std::string hostName;
    std::uint16_t port = 0;
    friend bool operator==(const Location&, const Location&) = default;
  };
  static Location locationOf(const AvahiRecord& record);

  void attach(AvahiServer& server) override;
  void detach() override;
  void watchAddresses(AvahiServer& server);
  /// Looks for the addresses of the newest location, if it is another one than before.
  void follow(AvahiServer& server);
  void fail(NSNetServicesError error);
  void addressFound(const SocketAddress& address);

  std::shared_ptr<EmbeddedStack> stack_;
  ServiceIdentity identity_;
  EventOutbox<ResolveEvents> outbox_;
  NewestRecord<Location> locations_;
  Location location_;  ///< the one followed while there are address watches
  std::optional<RecordWatch> service_;
  std::optional<RecordWatch> addresses4_;
  std::optional<RecordWatch> addresses6_;
};

}  // namespace rvf
