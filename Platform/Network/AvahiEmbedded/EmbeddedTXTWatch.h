// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EventOutbox.h"
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"
#include "Platform/Network/NewestRecord.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Watching a TXT record through the embedded stack.
class EmbeddedTXTWatch final : public DiscoveryActivity, private EmbeddedStack::Client {
 public:
  EmbeddedTXTWatch(std::shared_ptr<EmbeddedStack> stack, const ServiceIdentity& identity,
                   TXTRecordEvents events);
  ~EmbeddedTXTWatch() override;

 private:
  using Record = std::vector<std::byte>;

  void attach(AvahiServer& server) override;
  void detach() override;
  /// Tells the newest record, if it was not told last.
  void tell();

  std::shared_ptr<EmbeddedStack> stack_;
  ServiceIdentity identity_;
  EventOutbox<TXTRecordEvents> outbox_;
  NewestRecord<Record> records_;
  std::optional<Record> told_;
  std::optional<RecordWatch> watch_;
};

}  // namespace rvf
