// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EventOutbox.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// A publication through the embedded stack, made of records of our own, because the library's
/// services live 75 minutes when their publisher dies.
class EmbeddedPublication final : public PublishActivity, private EmbeddedStack::Client {
 public:
  EmbeddedPublication(std::shared_ptr<EmbeddedStack> stack, Publication publication,
                      PublishEvents events);
  ~EmbeddedPublication() override;

  void updateTXTRecord(std::vector<std::byte> txtRecord) override;

 private:
  void attach(AvahiServer& server) override;
  void detach() override;
  void announce();
  void followState();
  void fail(int avahiError);
  // These answer an error of the library, or 0.
  int addRecords(const std::string& name);
  int addServiceRecord(const std::string& name);
  int addTXTRecord(const std::string& name, int moreFlags);
  int addPointer(const std::string& from, const std::string& to);
  int addRecord(AvahiRecord& record, int flags);
  int uniqueFlags() const;
  static void stateChanged(AvahiServer* server, AvahiSEntryGroup* group, AvahiEntryGroupState state,
                           void* publication) noexcept;

  std::shared_ptr<EmbeddedStack> stack_;
  Publication publication_;
  EventOutbox<PublishEvents> outbox_;
  AvahiServer* server_ = nullptr;
  AvahiHandle<AvahiSEntryGroup> group_;
};

}  // namespace rvf
