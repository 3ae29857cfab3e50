// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include "Platform/Network/AvahiDaemon/DaemonActivity.h"
#include "Platform/Network/AvahiDaemon/DaemonBrowser.h"

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

  void recordAdded(sd_bus_message& item);

  ServiceIdentity identity_;
  TXTRecordEvents events_;
  std::unique_ptr<DaemonBrowser> records_;
  std::vector<std::byte> latest_;
};

}  // namespace rvf
