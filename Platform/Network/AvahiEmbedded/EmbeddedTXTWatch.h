// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>

#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EventOutbox.h"
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Watching a TXT record through the embedded stack.
class EmbeddedTXTWatch final : public DiscoveryActivity, private EmbeddedStack::Client {
 public:
  EmbeddedTXTWatch(std::shared_ptr<EmbeddedStack> stack, const ServiceIdentity& identity,
                   TXTRecordEvents events);
  ~EmbeddedTXTWatch() override;

 private:
  void attach(AvahiServer& server) override;
  void detach() override;

  std::shared_ptr<EmbeddedStack> stack_;
  ServiceIdentity identity_;
  EventOutbox<TXTRecordEvents> outbox_;
  std::optional<RecordWatch> watch_;
};

}  // namespace rvf
