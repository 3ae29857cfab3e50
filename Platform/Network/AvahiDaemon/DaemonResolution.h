// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <set>

#include "Platform/Network/AvahiDaemon/DaemonActivity.h"
#include "Platform/Network/AvahiDaemon/DaemonBrowser.h"
#include "Platform/Network/AvahiDaemon/RecordData.h"
#include "Platform/Network/NewestRecord.h"

namespace rvf {

/// Finds the host, the port and every address of one registration. It watches records, because
/// the daemon's resolver answers one address for each interface and protocol, and gives up after
/// five seconds.
class DaemonResolution final : public DaemonActivity {
 public:
  DaemonResolution(ServiceIdentity identity, ResolveEvents events);

 private:
  bool isAskable() const override;
  void begin() override;
  void drop() override;
  void reportFailure(NSNetServicesError error) override;

  std::unique_ptr<DaemonBrowser> watchAddresses(RecordType type);
  /// Looks for the addresses of the newest location, if it is another one than before.
  void follow();
  void addressAdded(const RecordItem& item);

  ServiceIdentity identity_;
  ResolveEvents events_;
  std::unique_ptr<DaemonBrowser> browser_;  ///< of locations
  NewestRecord<ServiceLocation> locations_;
  std::unique_ptr<DaemonBrowser> addressesV4_;
  std::unique_ptr<DaemonBrowser> addressesV6_;
  std::optional<ServiceLocation> location_;  ///< the latest one reported
  std::set<SocketAddressBytes> addresses_;   ///< those reported for it
};

}  // namespace rvf
