// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/EmbeddedTXTWatch.h"

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {

EmbeddedTXTWatch::EmbeddedTXTWatch(std::shared_ptr<EmbeddedStack> stack,
                                   const ServiceIdentity& identity, TXTRecordEvents events)
    : stack_(std::move(stack)), identity_(identity), outbox_(std::move(events)) {
  stack_->add(*this);
}

EmbeddedTXTWatch::~EmbeddedTXTWatch() {
  stack_->remove(*this);
}

void EmbeddedTXTWatch::attach(AvahiServer& server) {
  const auto name = fullServiceName(identity_);
  if (!name) return outbox_.send(&TXTRecordEvents::failed, NSNetServicesError::badArgument);
  RecordWatch::Events events;
  events.added = [this](const AvahiRecord& record, ServiceLink link) {
    records_.add(txtRecordData(record), link);
    tell();
  };
  events.removed = [this](const AvahiRecord& record, ServiceLink link) {
    records_.remove(txtRecordData(record), link);
    tell();
  };
  events.cacheExhausted = [this] { records_.cacheExhausted(); };
  events.failed = [this](NSNetServicesError error) {
    outbox_.send(&TXTRecordEvents::failed, error);
  };
  watch_.emplace(server, *name, AVAHI_DNS_TYPE_TXT, std::move(events));
}

void EmbeddedTXTWatch::detach() {
  watch_.reset();
  records_ = {};
}

void EmbeddedTXTWatch::tell() {
  const Record* const newest = records_.newest();
  if (!newest || *newest == told_) return;
  told_ = *newest;
  outbox_.send(&TXTRecordEvents::updated, *newest);
}

}  // namespace rvf
