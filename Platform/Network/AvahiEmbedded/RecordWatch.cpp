// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"

namespace rvf {

RecordWatch::RecordWatch(AvahiServer& server, const std::string& name, std::uint16_t type,
                         Added added, Failed failed)
    : server_(server),
      added_(std::move(added)),
      failed_(std::move(failed)),
      browser_(avahi_s_record_browser_new(&server, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                                          makeKey(name, type).get(), AVAHI_LOOKUP_USE_MULTICAST,
                                          &received, this)) {
  if (!browser_) fail();
}

void RecordWatch::fail() const {
  failed_(discoveryError(avahi_server_errno(&server_)));
}

void RecordWatch::received(AvahiSRecordBrowser*, AvahiIfIndex interfaceIndex, AvahiProtocol,
                           AvahiBrowserEvent event, AvahiRecord* record, AvahiLookupResultFlags,
                           void* watch) noexcept {
  const auto& self = *static_cast<RecordWatch*>(watch);
  if (event == AVAHI_BROWSER_NEW) self.added_(*record, interfaceIndex);
  if (event == AVAHI_BROWSER_FAILURE) self.fail();
}

}  // namespace rvf
