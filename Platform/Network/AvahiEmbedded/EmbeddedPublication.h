// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
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
///
/// SRV and TXT record are announced first. Only when the name is ours the pointers to it follow,
/// so nobody finds what cannot be resolved yet, or a name that turns out to be taken.
class EmbeddedPublication final : public PublishActivity, private EmbeddedStack::Client {
 public:
  EmbeddedPublication(std::shared_ptr<EmbeddedStack> stack, Publication publication,
                      PublishEvents events);
  ~EmbeddedPublication() override;

  void updateTXTRecord(std::vector<std::byte> txtRecord) override;

 private:
  using Group = AvahiHandle<AvahiSEntryGroup>;

  void attach(AvahiServer& server) override;
  void detach() override;
  void announceService();
  void announcePointers();
  void followState(AvahiSEntryGroup* group);
  void reportEstablished();
  void fail(int avahiError);
  int addService(AvahiSEntryGroup& group, const std::string& name);
  int addTXTRecord(AvahiSEntryGroup& group, const std::string& name, int moreFlags);
  int addPointer(AvahiSEntryGroup& group, const std::string& from, const std::string& to);
  int uniqueFlags() const;
  static void serviceStateChanged(AvahiServer* server, AvahiSEntryGroup* group,
                                  AvahiEntryGroupState state, void* publication) noexcept;
  static void pointersStateChanged(AvahiServer* server, AvahiSEntryGroup* group,
                                   AvahiEntryGroupState state, void* publication) noexcept;

  std::shared_ptr<EmbeddedStack> stack_;
  Publication publication_;
  EventOutbox<PublishEvents> outbox_;
  AvahiServer* server_ = nullptr;
  Group service_;
  Group pointers_;
};

}  // namespace rvf
