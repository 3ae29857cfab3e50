// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EventOutbox.h"
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"
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
  void attach(AvahiServer& server) override;
  void detach() override;
  void watch(std::optional<RecordWatch>& records, AvahiServer& server, const std::string& name,
             std::uint16_t type, RecordWatch::Added added);
  void located(AvahiServer& server, const AvahiRecord& record);
  void addressFound(const SocketAddress& address);

  std::shared_ptr<EmbeddedStack> stack_;
  ServiceIdentity identity_;
  EventOutbox<ResolveEvents> outbox_;
  std::string hostName_;
  std::uint16_t port_ = 0;
  std::optional<RecordWatch> service_;
  std::optional<RecordWatch> addresses4_;
  std::optional<RecordWatch> addresses6_;
};

}  // namespace rvf
