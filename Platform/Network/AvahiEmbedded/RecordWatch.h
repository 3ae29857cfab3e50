// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/NSNetServicesError.h"

namespace rvf {

/// Asks the network for the records of one name and type, as long as it lives.
class RVF_EXPORT RecordWatch final {
 public:
  /// Called inside the stack: takes notes only, and does not end this watch.
  using Added = std::function<void(const AvahiRecord& record, int interfaceIndex)>;
  /// The same for a question that cannot be put, then from within the constructor, or any longer.
  using Failed = std::function<void(NSNetServicesError error)>;

  RecordWatch(AvahiServer& server, const std::string& name, std::uint16_t type, Added added,
              Failed failed);
  RecordWatch(const RecordWatch&) = delete;
  RecordWatch& operator=(const RecordWatch&) = delete;

 private:
  static void received(AvahiSRecordBrowser* browser, AvahiIfIndex interfaceIndex,
                       AvahiProtocol protocol, AvahiBrowserEvent event, AvahiRecord* record,
                       AvahiLookupResultFlags flags, void* watch) noexcept;

  void fail() const;

  AvahiServer& server_;
  Added added_;
  Failed failed_;
  AvahiHandle<AvahiSRecordBrowser> browser_;
};

}  // namespace rvf
