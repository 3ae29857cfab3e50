// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EventOutbox.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Browsing through the embedded stack, which knows "local." only.
class EmbeddedBrowse final : public DiscoveryActivity, private EmbeddedStack::Client {
 public:
  EmbeddedBrowse(std::shared_ptr<EmbeddedStack> stack, std::string type, const std::string& domain,
                 BrowseEvents events);
  ~EmbeddedBrowse() override;

 private:
  void attach(AvahiServer& server) override;
  void detach() override;
  static void received(AvahiSServiceBrowser* browser, AvahiIfIndex interfaceIndex,
                       AvahiProtocol protocol, AvahiBrowserEvent event, const char* name,
                       const char* type, const char* domain, AvahiLookupResultFlags flags,
                       void* browse) noexcept;

  std::shared_ptr<EmbeddedStack> stack_;
  std::string type_;
  EventOutbox<BrowseEvents> outbox_;
  AvahiHandle<AvahiSServiceBrowser> browser_;
};

}  // namespace rvf
