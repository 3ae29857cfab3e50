// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonTXTRecordWatch.h"

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
  events.removed = whileAlive([this](sd_bus_message& item) { recordRemoved(item); });
  events.cacheExhausted = whileAlive([this] { records_.cacheExhausted(); });
  events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  browser_ = DaemonBrowser::ofRecords(daemon(), fullServiceName(identity_).value(), RecordType::txt,
                                      std::move(events));
}

void DaemonTXTRecordWatch::drop() {
  browser_.reset();
  records_ = {};
}

void DaemonTXTRecordWatch::reportFailure(NSNetServicesError error) {
  if (events_.failed) events_.failed(error);
}

void DaemonTXTRecordWatch::recordAdded(sd_bus_message& item) {
  const auto record = recordItemFrom(item);
  if (!record) return;
  records_.add({record->data.begin(), record->data.end()}, record->link);
  tell();
}

void DaemonTXTRecordWatch::recordRemoved(sd_bus_message& item) {
  const auto record = recordItemFrom(item);
  if (!record) return;
  records_.remove({record->data.begin(), record->data.end()}, record->link);
  tell();
}

void DaemonTXTRecordWatch::tell() {
  const Record* const newest = records_.newest();
  if (!newest || *newest == told_) return;
  told_ = *newest;
  if (events_.updated) events_.updated(*told_);
}

}  // namespace rvf
