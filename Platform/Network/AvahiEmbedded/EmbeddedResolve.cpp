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

/// The root as host says that the service is not available (RFC 2782).
bool namesHost(const AvahiRecord& location) {
  return withFinalDot(location.data.srv.name).size() > 1;
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

EmbeddedResolve::Location EmbeddedResolve::locationOf(const AvahiRecord& record) {
  return {record.data.srv.name, record.data.srv.port};
}

void EmbeddedResolve::attach(AvahiServer& server) {
  const auto name = fullServiceName(identity_);
  if (!name) return outbox_.send(&ResolveEvents::failed, NSNetServicesError::badArgument);
  RecordWatch::Events events;
  events.added = [this, &server](const AvahiRecord& record, ServiceLink link) {
    if (!namesHost(record)) return;
    locations_.add(locationOf(record), link);
    follow(server);
  };
  events.removed = [this, &server](const AvahiRecord& record, ServiceLink link) {
    locations_.remove(locationOf(record), link);
    follow(server);
  };
  events.cacheExhausted = [this] { locations_.cacheExhausted(); };
  events.failed = [this](NSNetServicesError error) { fail(error); };
  service_.emplace(server, *name, AVAHI_DNS_TYPE_SRV, std::move(events));
}

void EmbeddedResolve::detach() {
  addresses4_.reset();
  addresses6_.reset();
  service_.reset();
  locations_ = {};
}

void EmbeddedResolve::follow(AvahiServer& server) {
  const Location* const newest = locations_.newest();
  if (!newest || (addresses4_ && *newest == location_)) return;
  location_ = *newest;
  outbox_.send(&ResolveEvents::located, location_.hostName, location_.port);
  watchAddresses(server);
}

void EmbeddedResolve::watchAddresses(AvahiServer& server) {
  RecordWatch::Events events;
  events.failed = [this](NSNetServicesError error) { fail(error); };
  events.added = [this](const AvahiRecord& found, ServiceLink) {
    addressFound(addressOf(found.data.a.address, location_.port));
  };
  addresses4_.emplace(server, location_.hostName, AVAHI_DNS_TYPE_A, events);
  events.added = [this](const AvahiRecord& found, ServiceLink link) {
    addressFound(addressOf(found.data.aaaa.address, location_.port, link.interfaceIndex));
  };
  addresses6_.emplace(server, location_.hostName, AVAHI_DNS_TYPE_AAAA, std::move(events));
}

void EmbeddedResolve::fail(NSNetServicesError error) {
  outbox_.send(&ResolveEvents::failed, error);
}

void EmbeddedResolve::addressFound(const SocketAddress& address) {
  outbox_.send(&ResolveEvents::addressFound, address.blockBytes());
}

}  // namespace rvf
