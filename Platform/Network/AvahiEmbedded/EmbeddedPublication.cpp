// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/EmbeddedPublication.h"

#include <avahi-common/error.h>
#include <avahi-common/malloc.h>

#include <utility>

#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr std::string_view kLocalDomain = "local.";
constexpr std::string_view kTypeEnumerator = "_services._dns-sd._udp.";  // RFC 6763, 9

int addRecord(AvahiServer& server, AvahiSEntryGroup& group, AvahiRecord& record, int flags) {
  return avahi_server_add(&server, &group, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                          static_cast<AvahiPublishFlags>(flags), &record);
}

}  // namespace

EmbeddedPublication::EmbeddedPublication(std::shared_ptr<EmbeddedStack> stack,
                                         Publication publication, PublishEvents events)
    : stack_(std::move(stack)), publication_(std::move(publication)), outbox_(std::move(events)) {
  if (publication_.identity.domain.empty()) publication_.identity.domain = kLocalDomain;
  stack_->add(*this);
}

EmbeddedPublication::~EmbeddedPublication() {
  stack_->remove(*this);
}

void EmbeddedPublication::attach(AvahiServer& server) {
  server_ = &server;
  announceService();
}

void EmbeddedPublication::detach() {
  pointers_.reset();
  service_.reset();
  server_ = nullptr;
}

int EmbeddedPublication::uniqueFlags() const {
  return AVAHI_PUBLISH_UNIQUE | (publication_.isUnique ? AVAHI_PUBLISH_NO_PROBE : 0);
}

int EmbeddedPublication::addService(AvahiSEntryGroup& group, const std::string& name) {
  const auto record = makeRecord(name, AVAHI_DNS_TYPE_SRV, publication_.lifetimeSeconds);
  record->data.srv.priority = 0;
  record->data.srv.weight = 0;
  record->data.srv.port = publication_.port;
  record->data.srv.name = avahi_strdup(stack_->hostName().c_str());
  return addRecord(*server_, group, *record, uniqueFlags());
}

int EmbeddedPublication::addTXTRecord(AvahiSEntryGroup& group, const std::string& name,
                                      int moreFlags) {
  const auto record = makeRecord(name, AVAHI_DNS_TYPE_TXT, publication_.lifetimeSeconds);
  const auto& data = publication_.txtRecord;
  // No strings are written as one zero byte.
  if (!data.empty() &&
      avahi_string_list_parse(data.data(), data.size(), &record->data.txt.string_list) < 0) {
    return AVAHI_ERR_INVALID_RDATA;
  }
  return addRecord(*server_, group, *record, uniqueFlags() | moreFlags);
}

int EmbeddedPublication::addPointer(AvahiSEntryGroup& group, const std::string& from,
                                    const std::string& to) {
  const auto record = makeRecord(from, AVAHI_DNS_TYPE_PTR, publication_.lifetimeSeconds);
  record->data.ptr.name = avahi_strdup(to.c_str());
  return addRecord(*server_, group, *record, 0);
}

void EmbeddedPublication::announceService() {
  const auto name = fullServiceName(publication_.identity);
  if (!name) return fail(AVAHI_ERR_INVALID_SERVICE_NAME);
  service_.reset(avahi_s_entry_group_new(server_, &serviceStateChanged, this));
  if (!service_) return fail(avahi_server_errno(server_));
  int error = addService(*service_, *name);
  if (error >= 0) error = addTXTRecord(*service_, *name, 0);
  if (error >= 0) error = avahi_s_entry_group_commit(service_.get());
  if (error < 0) fail(error);
}

void EmbeddedPublication::announcePointers() {
  if (!service_ || pointers_) return;
  const auto& [name, type, domain] = publication_.identity;
  pointers_.reset(avahi_s_entry_group_new(server_, &pointersStateChanged, this));
  if (!pointers_) return fail(avahi_server_errno(server_));
  int error =
      addPointer(*pointers_, type + domain, fullServiceName(publication_.identity).value_or(""));
  if (error >= 0) {
    error = addPointer(*pointers_, std::string(kTypeEnumerator) + domain, type + domain);
  }
  if (error >= 0) error = avahi_s_entry_group_commit(pointers_.get());
  if (error < 0) fail(error);
}

void EmbeddedPublication::fail(int avahiError) {
  pointers_.reset();
  service_.reset();
  if (avahiError == AVAHI_ERR_COLLISION) return outbox_.send(&PublishEvents::collided);
  outbox_.send(&PublishEvents::failed, discoveryError(avahiError));
}

/// Groups are not made or freed inside the stack's own frames, so the next step is taken later, by
/// the state that the group has then.
void EmbeddedPublication::serviceStateChanged(AvahiServer*, AvahiSEntryGroup*, AvahiEntryGroupState,
                                              void* publication) noexcept {
  auto& self = *static_cast<EmbeddedPublication*>(publication);
  self.outbox_.later([&self] { self.followState(self.service_.get()); });
}

void EmbeddedPublication::pointersStateChanged(AvahiServer*, AvahiSEntryGroup*,
                                               AvahiEntryGroupState, void* publication) noexcept {
  auto& self = *static_cast<EmbeddedPublication*>(publication);
  self.outbox_.later([&self] { self.followState(self.pointers_.get()); });
}

void EmbeddedPublication::followState(AvahiSEntryGroup* group) {
  if (!group) return;
  switch (avahi_s_entry_group_get_state(group)) {
    case AVAHI_ENTRY_GROUP_ESTABLISHED:
      return group == service_.get() ? announcePointers() : reportEstablished();
    case AVAHI_ENTRY_GROUP_COLLISION:
      return fail(AVAHI_ERR_COLLISION);
    case AVAHI_ENTRY_GROUP_FAILURE:
      return fail(avahi_server_errno(server_));
    case AVAHI_ENTRY_GROUP_UNCOMMITED:
    case AVAHI_ENTRY_GROUP_REGISTERING:
      return;
  }
}

void EmbeddedPublication::reportEstablished() {
  outbox_.send(&PublishEvents::established);
}

void EmbeddedPublication::updateTXTRecord(std::vector<std::byte> txtRecord) {
  publication_.txtRecord = std::move(txtRecord);
  if (!service_) return;
  const auto name = fullServiceName(publication_.identity);
  const int error = addTXTRecord(*service_, name.value_or(""), AVAHI_PUBLISH_UPDATE);
  if (error < 0) fail(error);
}

}  // namespace rvf
