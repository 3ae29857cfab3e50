// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Asks the network for the records of one name and type, as long as it lives.
class RVF_EXPORT RecordWatch final {
 public:
  /// Called inside the stack: they take notes only, and do not end this watch.
  struct Events {
    std::function<void(const AvahiRecord& record, ServiceLink link)> added;
    std::function<void(const AvahiRecord& record, ServiceLink link)> removed;
    /// What was known already has been told.
    std::function<void()> cacheExhausted;
    /// The question cannot be put, then from within the constructor, or not any longer.
    std::function<void(NSNetServicesError error)> failed;
  };

  RecordWatch(AvahiServer& server, const std::string& name, std::uint16_t type, Events events);
  RecordWatch(const RecordWatch&) = delete;
  RecordWatch& operator=(const RecordWatch&) = delete;

 private:
  static void received(AvahiSRecordBrowser* browser, AvahiIfIndex interfaceIndex,
                       AvahiProtocol protocol, AvahiBrowserEvent event, AvahiRecord* record,
                       AvahiLookupResultFlags flags, void* watch) noexcept;

  void fail() const;

  AvahiServer& server_;
  Events events_;
  AvahiHandle<AvahiSRecordBrowser> browser_;
};

}  // namespace rvf
