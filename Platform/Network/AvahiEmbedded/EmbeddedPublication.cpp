// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/EmbeddedPublication.h"

#include <avahi-common/domain.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr const char* kLocalDomain = "local.";
constexpr std::string_view kTypeEnumerator = "_services._dns-sd._udp.";  // RFC 6763, 9

}  // namespace

EmbeddedPublication::EmbeddedPublication(std::shared_ptr<EmbeddedStack> stack,
                                         Publication publication, PublishEvents events)
    : stack_(std::move(stack)), publication_(std::move(publication)), outbox_(std::move(events)) {
  std::string& domain = publication_.identity.domain;
  if (domain.empty()) domain = kLocalDomain;
  if (avahi_domain_equal(domain.c_str(), kLocalDomain)) {
    stack_->add(*this);
  } else {
    outbox_.send(&PublishEvents::failed, NSNetServicesError::badArgument);
  }
}

EmbeddedPublication::~EmbeddedPublication() {
  stack_->remove(*this);
}

void EmbeddedPublication::attach(AvahiServer& server) {
  server_ = &server;
  announce();
}

void EmbeddedPublication::detach() {
  group_.reset();
  server_ = nullptr;
}

int EmbeddedPublication::addRecord(AvahiRecord& record, int flags) {
  return avahi_server_add(server_, group_.get(), AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                          static_cast<AvahiPublishFlags>(flags), &record);
}

int EmbeddedPublication::uniqueFlags() const {
  return AVAHI_PUBLISH_UNIQUE | (publication_.isUnique ? AVAHI_PUBLISH_NO_PROBE : 0);
}

int EmbeddedPublication::addServiceRecord(const std::string& name) {
  const auto record = makeRecord(name, AVAHI_DNS_TYPE_SRV, publication_.lifetimeSeconds);
  record->data.srv.priority = 0;
  record->data.srv.weight = 0;
  record->data.srv.port = publication_.port;
  record->data.srv.name = avahi_strdup(stack_->hostName().c_str());
  return addRecord(*record, uniqueFlags());
}

int EmbeddedPublication::addTXTRecord(const std::string& name, int moreFlags) {
  const auto record = makeRecord(name, AVAHI_DNS_TYPE_TXT, publication_.lifetimeSeconds);
  const auto& data = publication_.txtRecord;
  // No strings are written as one zero byte.
  if (!data.empty() &&
      avahi_string_list_parse(data.data(), data.size(), &record->data.txt.string_list) < 0) {
    return AVAHI_ERR_INVALID_RDATA;
  }
  return addRecord(*record, uniqueFlags() | moreFlags);
}

int EmbeddedPublication::addPointer(const std::string& from, const std::string& to) {
  const auto record = makeRecord(from, AVAHI_DNS_TYPE_PTR, publication_.lifetimeSeconds);
  record->data.ptr.name = avahi_strdup(to.c_str());
  return addRecord(*record, 0);
}

int EmbeddedPublication::addRecords(const std::string& name) {
  const std::string type = publication_.identity.type + publication_.identity.domain;
  const std::string enumerator = std::string(kTypeEnumerator) + publication_.identity.domain;
  int error = addServiceRecord(name);
  if (error >= 0) error = addTXTRecord(name, 0);
  if (error >= 0) error = addPointer(type, name);
  if (error >= 0) error = addPointer(enumerator, type);
  return error;
}

void EmbeddedPublication::announce() {
  const auto name = fullServiceName(publication_.identity);
  if (!name) return fail(AVAHI_ERR_INVALID_SERVICE_NAME);
  group_.reset(avahi_s_entry_group_new(server_, &stateChanged, this));
  if (!group_) return fail(avahi_server_errno(server_));
  int error = addRecords(*name);
  if (error >= 0) error = avahi_s_entry_group_commit(group_.get());
  if (error < 0) fail(error);
}

/// Called inside the stack, where the group must not be freed. So the consequences are drawn
/// later, by the state that the group has then.
void EmbeddedPublication::stateChanged(AvahiServer*, AvahiSEntryGroup*, AvahiEntryGroupState,
                                       void* publication) noexcept {
  auto& self = *static_cast<EmbeddedPublication*>(publication);
  self.outbox_.later([&self] { self.followState(); });
}

void EmbeddedPublication::followState() {
  if (!group_) return;
  const AvahiEntryGroupState state = avahi_s_entry_group_get_state(group_.get());
  if (state == AVAHI_ENTRY_GROUP_ESTABLISHED) return outbox_.send(&PublishEvents::established);
  if (state == AVAHI_ENTRY_GROUP_COLLISION) return fail(AVAHI_ERR_COLLISION);
  if (state == AVAHI_ENTRY_GROUP_FAILURE) return fail(avahi_server_errno(server_));
}

void EmbeddedPublication::fail(int avahiError) {
  group_.reset();
  if (avahiError == AVAHI_ERR_COLLISION) return outbox_.send(&PublishEvents::collided);
  outbox_.send(&PublishEvents::failed, discoveryError(avahiError));
}

void EmbeddedPublication::updateTXTRecord(std::vector<std::byte> txtRecord) {
  publication_.txtRecord = std::move(txtRecord);
  if (!group_) return;
  const auto name = fullServiceName(publication_.identity);
  const int error = addTXTRecord(name.value_or(""), AVAHI_PUBLISH_UPDATE);
  if (error < 0) fail(error);
}

}  // namespace rvf
