// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/EmbeddedResolve.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

SocketAddress addressOf(const AvahiIPv4Address& address, std::uint16_t port) {
  return SocketAddress::withIPv4(std::bit_cast<SocketAddress::IPv4Bytes>(address.address), port);
}

/// A link-local address means nothing without the interface that it was heard on.
SocketAddress addressOf(const AvahiIPv6Address& address, std::uint16_t port, int interfaceIndex) {
  SocketAddress::IPv6Bytes bytes;
  std::copy(std::begin(address.address), std::end(address.address), bytes.begin());
  const auto unscoped = SocketAddress::withIPv6(bytes, port);
  if (!unscoped.isLinkLocal()) return unscoped;
  return SocketAddress::withIPv6(bytes, port, static_cast<std::uint32_t>(interfaceIndex));
}

}  // namespace

EmbeddedResolve::EmbeddedResolve(std::shared_ptr<EmbeddedStack> stack,
                                 const ServiceIdentity& identity, ResolveEvents events)
    : stack_(std::move(stack)), identity_(identity), outbox_(std::move(events)) {
  stack_->add(*this);
}

EmbeddedResolve::~EmbeddedResolve() {
  stack_->remove(*this);
}

void EmbeddedResolve::attach(AvahiServer& server) {
  const auto name = fullServiceName(identity_);
  if (!name) return outbox_.send(&ResolveEvents::failed, NSNetServicesError::badArgument);
  watch(service_, server, *name, AVAHI_DNS_TYPE_SRV,
        [this, &server](const AvahiRecord& record, int) { located(server, record); });
}

void EmbeddedResolve::watch(std::optional<RecordWatch>& records, AvahiServer& server,
                            const std::string& name, std::uint16_t type, RecordWatch::Added added) {
  records.emplace(server, name, type, std::move(added), [this](NSNetServicesError error) {
    outbox_.send(&ResolveEvents::failed, error);
  });
}

void EmbeddedResolve::detach() {
  addresses4_.reset();
  addresses6_.reset();
  service_.reset();
  hostName_.clear();
}

/// Told once for each link; only another answer counts. The root as host says that there is none
/// (RFC 2782).
void EmbeddedResolve::located(AvahiServer& server, const AvahiRecord& record) {
  const auto& service = record.data.srv;
  if (withFinalDot(service.name).size() <= 1) return;
  if (hostName_ == service.name && port_ == service.port) return;
  hostName_ = service.name;
  port_ = service.port;
  outbox_.send(&ResolveEvents::located, hostName_, port_);
  watch(addresses4_, server, hostName_, AVAHI_DNS_TYPE_A, [this](const AvahiRecord& found, int) {
    addressFound(addressOf(found.data.a.address, port_));
  });
  watch(addresses6_, server, hostName_, AVAHI_DNS_TYPE_AAAA,
        [this](const AvahiRecord& found, int interfaceIndex) {
          addressFound(addressOf(found.data.aaaa.address, port_, interfaceIndex));
        });
}

void EmbeddedResolve::addressFound(const SocketAddress& address) {
  outbox_.send(&ResolveEvents::addressFound, address.blockBytes());
}

}  // namespace rvf
