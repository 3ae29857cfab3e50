// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonPublication.h"

#include <avahi-common/address.h>
#include <avahi-common/defs.h>

#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiError.h"
#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr std::uint32_t kUsualLifetimeSeconds = 120;
constexpr std::uint32_t kShared = 0;

/// `AvahiEntryGroupState` as it goes over the bus.
enum GroupState { kEstablished = 2, kCollision = 3, kFailure = 4 };

}  // namespace

DaemonPublication::DaemonPublication(Publication publication, PublishEvents events)
    : publication_(std::move(publication)), events_(std::move(events)) {
  auto& identity = publication_.identity;
  identity.type = withFinalDot(identity.type);
  identity.domain = identity.domain.empty() ? "local." : withFinalDot(identity.domain);
  if (publication_.lifetimeSeconds == 0) publication_.lifetimeSeconds = kUsualLifetimeSeconds;
}

bool DaemonPublication::isAskable() const {
  return rvf::isAskable(publication_.identity) && isTextRecord(publication_.txtRecord);
}

bool DaemonPublication::canWork(DaemonState state) const {
  return state == DaemonState::running;
}

void DaemonPublication::drop() {
  ++attempt_;
  isCommitted_ = false;
  group_.reset();
}

void DaemonPublication::reportFailure(NSNetServicesError error) {
  if (error != NSNetServicesError::collision) {
    if (events_.failed) events_.failed(error);
  } else if (events_.collided) {
    events_.collided();
  }
}

void DaemonPublication::begin() {
  daemon().send(
      daemon().newCall(AvahiDaemon::kServerPath, AvahiDaemon::kServerInterface, "GetHostNameFqdn"),
      whileAlive([this, attempt = attempt_](sd_bus_message& reply) {
        if (attempt == attempt_) hostAnswered(reply);
      }));
}

void DaemonPublication::hostAnswered(sd_bus_message& reply) {
  const char* host = nullptr;
  if (sd_bus_message_is_method_error(&reply, nullptr) > 0 ||
      sd_bus_message_read(&reply, "s", &host) < 0) {
    return fail(NSNetServicesError::unknown);
  }
  host_ = host;
  DaemonObject::Events events;
  events.made = whileAlive([this] { groupMade(); });
  events.signal = whileAlive([this](sd_bus_message& signal) { groupChanged(signal); });
  events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  group_ = std::make_unique<DaemonObject>(
      daemon(), "org.freedesktop.Avahi.EntryGroup",
      daemon().newCall(AvahiDaemon::kServerPath, AvahiDaemon::kServerInterface, "EntryGroupNew"),
      std::move(events));
}

/// All in one go; the daemon answers in the same order, and the first error ends it.
void DaemonPublication::groupMade() {
  const auto& identity = publication_.identity;
  const std::string fullName = fullServiceName(identity).value();
  const std::string typeName = withoutFinalDot(identity.type + identity.domain);
  addRecord("_services._dns-sd._udp." + withoutFinalDot(identity.domain), RecordType::ptr,
            recordOfPointer(typeName), kShared);
  addRecord(typeName, RecordType::ptr, recordOfPointer(fullName), kShared);
  addRecord(fullName, RecordType::srv, recordOfLocation({host_, publication_.port}), uniqueFlags());
  addTextRecord(uniqueFlags());
  group_->send(group_->newCall("Commit"));
  isCommitted_ = true;
}

std::uint32_t DaemonPublication::uniqueFlags() const noexcept {
  constexpr std::uint32_t kProbed = AVAHI_PUBLISH_UNIQUE;
  constexpr std::uint32_t kUnprobed = AVAHI_PUBLISH_UNIQUE | AVAHI_PUBLISH_NO_PROBE;
  return publication_.isUnique ? kUnprobed : kProbed;
}

void DaemonPublication::addTextRecord(std::uint32_t flags) {
  const RecordBytes nothing{std::byte{0}};
  const RecordBytes& data = publication_.txtRecord.empty() ? nothing : publication_.txtRecord;
  addRecord(fullServiceName(publication_.identity).value(), RecordType::txt, data, flags);
}

void DaemonPublication::addRecord(const std::string& name, RecordType type, const RecordBytes& data,
                                  std::uint32_t flags) {
  constexpr int kAnyInterface = AVAHI_IF_UNSPEC;
  constexpr int kAnyProtocol = AVAHI_PROTO_UNSPEC;
  BusMessage call = group_->newCall("AddRecord", "iiusqqu", kAnyInterface, kAnyProtocol, flags,
                                    name.c_str(), static_cast<int>(AVAHI_DNS_CLASS_IN),
                                    static_cast<int>(type), publication_.lifetimeSeconds);
  if (call) sd_bus_message_append_array(call.get(), 'y', data.data(), data.size());
  group_->send(std::move(call));
}

void DaemonPublication::groupChanged(sd_bus_message& signal) {
  if (sd_bus_message_is_signal(&signal, nullptr, "StateChanged") <= 0) return;
  int state = 0;
  const char* error = nullptr;
  if (sd_bus_message_read(&signal, "is", &state, &error) < 0) return;
  if (state == kEstablished) {
    if (events_.established) events_.established();
  } else if (state == kCollision) {
    fail(NSNetServicesError::collision);
  } else if (state == kFailure) {
    fail(errorForAvahiName(error));
  }
}

void DaemonPublication::updateTXTRecord(std::vector<std::byte> txtRecord) {
  if (isEnded()) return;
  publication_.txtRecord = std::move(txtRecord);
  if (!isTextRecord(publication_.txtRecord)) {
    drop();
    return failLater(NSNetServicesError::badArgument);
  }
  if (isCommitted_) addTextRecord(uniqueFlags() | AVAHI_PUBLISH_UPDATE);
}

}  // namespace rvf
