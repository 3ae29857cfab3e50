// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Network/AvahiDaemon/DaemonActivity.h"
#include "Platform/Network/AvahiDaemon/DaemonObject.h"
#include "Platform/Network/AvahiDaemon/RecordData.h"

namespace rvf {

/// One registration with the daemon, as an entry group of its own.
///
/// The four records of a registration (RFC 6763, 4 to 6 and 9) are made here: the daemon's own
/// service operation fixes their lifetimes at 75 minutes, and probes for names that are known to
/// be unique. The host name in them is therefore ours to follow: when it changes the daemon's
/// server leaves the running state, and the records are made anew when it is back.
class DaemonPublication final : public DaemonActivity {
 public:
  DaemonPublication(Publication publication, PublishEvents events);

  void updateTXTRecord(std::vector<std::byte> txtRecord);

 private:
  bool isAskable() const override;
  bool canWork(DaemonState state) const override;
  void begin() override;
  void drop() override;
  void reportFailure(NSNetServicesError error) override;

  void hostAnswered(sd_bus_message& reply);
  void groupMade();
  void addRecord(const std::string& name, RecordType type, const RecordBytes& data,
                 std::uint32_t flags);
  void addTextRecord(std::uint32_t flags);
  void groupChanged(sd_bus_message& signal);
  std::uint32_t uniqueFlags() const noexcept;

  Publication publication_;
  PublishEvents events_;
  std::string host_;
  std::unique_ptr<DaemonObject> group_;
  bool isCommitted_ = false;
  std::uint64_t attempt_ = 0;
};

}  // namespace rvf
