// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonTXTRecordWatch.h"

#include <algorithm>
#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {

DaemonTXTRecordWatch::DaemonTXTRecordWatch(ServiceIdentity identity, TXTRecordEvents events)
    : identity_(std::move(identity)), events_(std::move(events)) {}

bool DaemonTXTRecordWatch::isAskable() const {
  return rvf::isAskable(identity_);
}

void DaemonTXTRecordWatch::begin() {
  DaemonBrowser::Events events;
  events.added = whileAlive([this](sd_bus_message& item) { recordAdded(item); });
  events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  records_ = DaemonBrowser::ofRecords(daemon(), fullServiceName(identity_).value(), RecordType::txt,
                                      std::move(events));
}

void DaemonTXTRecordWatch::drop() {
  records_.reset();
}

void DaemonTXTRecordWatch::reportFailure(NSNetServicesError error) {
  if (events_.failed) events_.failed(error);
}

void DaemonTXTRecordWatch::recordAdded(sd_bus_message& item) {
  const auto record = recordItemFrom(item);
  if (!record || std::ranges::equal(record->data, latest_)) return;
  latest_.assign(record->data.begin(), record->data.end());
  if (events_.updated) events_.updated(latest_);
}

}  // namespace rvf
