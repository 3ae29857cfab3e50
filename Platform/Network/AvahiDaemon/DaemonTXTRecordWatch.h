// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "Platform/Network/AvahiDaemon/DaemonActivity.h"
#include "Platform/Network/AvahiDaemon/DaemonBrowser.h"
#include "Platform/Network/NewestRecord.h"

namespace rvf {

/// Follows the TXT record of one registration. What several interfaces show alike is reported
/// once.
class DaemonTXTRecordWatch final : public DaemonActivity {
 public:
  DaemonTXTRecordWatch(ServiceIdentity identity, TXTRecordEvents events);

 private:
  bool isAskable() const override;
  void begin() override;
  void drop() override;
  void reportFailure(NSNetServicesError error) override;

  using Record = std::vector<std::byte>;

  void recordAdded(sd_bus_message& item);
  void recordRemoved(sd_bus_message& item);
  /// Tells the newest record, if it was not told last.
  void tell();

  ServiceIdentity identity_;
  TXTRecordEvents events_;
  std::unique_ptr<DaemonBrowser> browser_;
  NewestRecord<Record> records_;
  std::optional<Record> told_;
};

}  // namespace rvf
