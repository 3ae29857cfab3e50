// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <avahi-core/core.h>
#include <avahi-core/lookup.h>
#include <avahi-core/publish.h>
#include <avahi-core/rr.h>

#include <memory>

namespace rvf {

/// Frees what libavahi-core hands out.
struct AvahiRelease {
  void operator()(AvahiServer* server) const noexcept { avahi_server_free(server); }
  void operator()(AvahiSServiceBrowser* browser) const noexcept {
    avahi_s_service_browser_free(browser);
  }
  void operator()(AvahiSRecordBrowser* browser) const noexcept {
    avahi_s_record_browser_free(browser);
  }
  void operator()(AvahiSEntryGroup* group) const noexcept { avahi_s_entry_group_free(group); }
  void operator()(AvahiRecord* record) const noexcept { avahi_record_unref(record); }
  void operator()(AvahiKey* key) const noexcept { avahi_key_unref(key); }
};

template <class T>
using AvahiHandle = std::unique_ptr<T, AvahiRelease>;

}  // namespace rvf
