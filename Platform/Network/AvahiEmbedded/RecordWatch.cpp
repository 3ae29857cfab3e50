// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"

namespace rvf {

RecordWatch::RecordWatch(AvahiServer& server, const std::string& name, std::uint16_t type,
                         Added added)
    : added_(std::move(added)),
      browser_(avahi_s_record_browser_new(&server, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                                          makeKey(name, type).get(), AVAHI_LOOKUP_USE_MULTICAST,
                                          &received, this)) {}

void RecordWatch::received(AvahiSRecordBrowser*, AvahiIfIndex interfaceIndex, AvahiProtocol,
                           AvahiBrowserEvent event, AvahiRecord* record, AvahiLookupResultFlags,
                           void* watch) noexcept {
  if (event == AVAHI_BROWSER_NEW) {
    static_cast<RecordWatch*>(watch)->added_(*record, interfaceIndex);
  }
}

}  // namespace rvf
