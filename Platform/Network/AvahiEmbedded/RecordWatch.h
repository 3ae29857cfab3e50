// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"

namespace rvf {

/// Asks the network for the records of one name and type, as long as it lives.
class RecordWatch final {
 public:
  /// Called inside the stack: takes notes only, and does not end this watch.
  using Added = std::function<void(const AvahiRecord& record, int interfaceIndex)>;

  RecordWatch(AvahiServer& server, const std::string& name, std::uint16_t type, Added added);
  RecordWatch(const RecordWatch&) = delete;
  RecordWatch& operator=(const RecordWatch&) = delete;

  /// False if the question could not be put.
  bool isRunning() const noexcept { return browser_ != nullptr; }

 private:
  static void received(AvahiSRecordBrowser* browser, AvahiIfIndex interfaceIndex,
                       AvahiProtocol protocol, AvahiBrowserEvent event, AvahiRecord* record,
                       AvahiLookupResultFlags flags, void* watch) noexcept;

  Added added_;
  AvahiHandle<AvahiSRecordBrowser> browser_;
};

}  // namespace rvf
