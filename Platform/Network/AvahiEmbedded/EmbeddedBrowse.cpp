// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/EmbeddedBrowse.h"

#include <avahi-common/domain.h>

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr const char* kLocalDomain = "local";

}  // namespace

EmbeddedBrowse::EmbeddedBrowse(std::shared_ptr<EmbeddedStack> stack, std::string type,
                               const std::string& domain, BrowseEvents events)
    : stack_(std::move(stack)), type_(std::move(type)), outbox_(std::move(events)) {
  if (domain.empty() || avahi_domain_equal(domain.c_str(), kLocalDomain)) {
    stack_->add(*this);
  } else {
    outbox_.send(&BrowseEvents::failed, NSNetServicesError::badArgument);
  }
}

EmbeddedBrowse::~EmbeddedBrowse() {
  stack_->remove(*this);
}

void EmbeddedBrowse::attach(AvahiServer& server) {
  browser_.reset(avahi_s_service_browser_new(&server, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                                             type_.c_str(), kLocalDomain,
                                             static_cast<AvahiLookupFlags>(0), &received, this));
  if (!browser_) {
    outbox_.send(&BrowseEvents::failed, discoveryError(avahi_server_errno(&server)));
  }
}

void EmbeddedBrowse::detach() {
  if (!browser_) return;
  browser_.reset();
  outbox_.send(&BrowseEvents::interrupted);
}

void EmbeddedBrowse::received(AvahiSServiceBrowser*, AvahiIfIndex interfaceIndex,
                              AvahiProtocol protocol, AvahiBrowserEvent event, const char* name,
                              const char* type, const char* domain, AvahiLookupResultFlags,
                              void* browse) noexcept {
  auto& outbox = static_cast<EmbeddedBrowse*>(browse)->outbox_;
  switch (event) {
    case AVAHI_BROWSER_NEW:
    case AVAHI_BROWSER_REMOVE:
      outbox.send(event == AVAHI_BROWSER_NEW ? &BrowseEvents::found : &BrowseEvents::removed,
                  ServiceIdentity{name, withFinalDot(type), withFinalDot(domain)},
                  ServiceLink{interfaceIndex, avahi_proto_to_af(protocol)});
      break;
    case AVAHI_BROWSER_ALL_FOR_NOW:
      outbox.send(&BrowseEvents::settled);
      break;
    case AVAHI_BROWSER_FAILURE:
      outbox.send(&BrowseEvents::failed, NSNetServicesError::unknown);
      break;
    case AVAHI_BROWSER_CACHE_EXHAUSTED:
      break;
  }
}

}  // namespace rvf
