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
  watch_.emplace(
      server, *name, AVAHI_DNS_TYPE_TXT,
      [this](const AvahiRecord& record, int) {
        outbox_.send(&TXTRecordEvents::updated, txtRecordData(record));
      },
      [this](NSNetServicesError error) { outbox_.send(&TXTRecordEvents::failed, error); });
}

void EmbeddedTXTWatch::detach() {
  watch_.reset();
}

}  // namespace rvf
