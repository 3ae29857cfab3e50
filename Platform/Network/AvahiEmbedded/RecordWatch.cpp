// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"

namespace rvf {

RecordWatch::RecordWatch(AvahiServer& server, const std::string& name, std::uint16_t type,
                         Events events)
    : server_(server),
      events_(std::move(events)),
      browser_(avahi_s_record_browser_new(&server, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                                          makeKey(name, type).get(), AVAHI_LOOKUP_USE_MULTICAST,
                                          &received, this)) {
  if (!browser_) fail();
}

void RecordWatch::fail() const {
  if (events_.failed) events_.failed(discoveryError(avahi_server_errno(&server_)));
}

void RecordWatch::received(AvahiSRecordBrowser*, AvahiIfIndex interfaceIndex,
                           AvahiProtocol protocol, AvahiBrowserEvent event, AvahiRecord* record,
                           AvahiLookupResultFlags, void* watch) noexcept {
  const auto& self = *static_cast<RecordWatch*>(watch);
  const Events& events = self.events_;
  const ServiceLink link{interfaceIndex, avahi_proto_to_af(protocol)};
  if (event == AVAHI_BROWSER_NEW && events.added) events.added(*record, link);
  if (event == AVAHI_BROWSER_REMOVE && events.removed) events.removed(*record, link);
  if (event == AVAHI_BROWSER_CACHE_EXHAUSTED && events.cacheExhausted) events.cacheExhausted();
  if (event == AVAHI_BROWSER_FAILURE) self.fail();
}

}  // namespace rvf
