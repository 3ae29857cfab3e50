// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbeddedBackend.h"

#include <utility>

#include "Platform/Network/AvahiEmbedded/EmbeddedBrowse.h"
#include "Platform/Network/AvahiEmbedded/EmbeddedPublication.h"
#include "Platform/Network/AvahiEmbedded/EmbeddedResolve.h"
#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"
#include "Platform/Network/AvahiEmbedded/EmbeddedTXTWatch.h"
#include "Platform/Network/HostName.h"

namespace rvf {

AvahiEmbeddedBackend::AvahiEmbeddedBackend() : stack_(std::make_shared<EmbeddedStack>()) {}
AvahiEmbeddedBackend::~AvahiEmbeddedBackend() = default;

std::unique_ptr<DiscoveryActivity> AvahiEmbeddedBackend::browse(const std::string& type,
                                                                const std::string& domain,
                                                                BrowseEvents events) {
  return std::make_unique<EmbeddedBrowse>(stack_, type, domain, std::move(events));
}

std::unique_ptr<DiscoveryActivity> AvahiEmbeddedBackend::watchTXTRecord(
    const ServiceIdentity& identity, TXTRecordEvents events) {
  return std::make_unique<EmbeddedTXTWatch>(stack_, identity, std::move(events));
}

std::unique_ptr<DiscoveryActivity> AvahiEmbeddedBackend::resolve(const ServiceIdentity& identity,
                                                                 ResolveEvents events) {
  return std::make_unique<EmbeddedResolve>(stack_, identity, std::move(events));
}

std::unique_ptr<PublishActivity> AvahiEmbeddedBackend::publish(const Publication& publication,
                                                               PublishEvents events) {
  return std::make_unique<EmbeddedPublication>(stack_, publication, std::move(events));
}

bool AvahiEmbeddedBackend::isResponding() const {
  return stack_->isRunning();
}

std::string AvahiEmbeddedBackend::defaultServiceName() {
  return computerName();
}

}  // namespace rvf
