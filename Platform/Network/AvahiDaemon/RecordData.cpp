// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/RecordData.h"

#include <avahi-common/defs.h>
#include <avahi-common/malloc.h>
#include <avahi-core/rr.h>

#include <algorithm>
#include <array>
#include <memory>

#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr std::size_t kLongestRecord = 512;
/// Priority, weight, port and the root name.
constexpr std::size_t kShortestLocation = 7;

struct RecordUnref {
  void operator()(AvahiRecord* record) const noexcept { avahi_record_unref(record); }
};
using Record = std::unique_ptr<AvahiRecord, RecordUnref>;

Record emptyRecord(RecordType type) {
  constexpr std::uint32_t kAnyLifetime = 0;
  return Record(avahi_record_new_full("local", AVAHI_DNS_CLASS_IN, static_cast<std::uint16_t>(type),
                                      kAnyLifetime));
}

RecordBytes serialized(AvahiRecord* record) {
  RecordBytes data(kLongestRecord);
  const std::size_t length = avahi_rdata_serialize(record, data.data(), data.size());
  data.resize(length <= kLongestRecord ? length : 0);  // (size_t)-1: it does not fit
  return data;
}

template <std::size_t kSize>
std::array<std::uint8_t, kSize> octets(std::span<const std::byte> data) {
  std::array<std::uint8_t, kSize> result{};
  std::ranges::transform(data, result.begin(), [](std::byte b) { return std::uint8_t(b); });
  return result;
}

}  // namespace

std::optional<ServiceLocation> locationFromRecord(std::span<const std::byte> data) {
  const Record record = emptyRecord(RecordType::srv);
  if (data.size() < kShortestLocation || !record) return std::nullopt;
  if (avahi_rdata_parse(record.get(), data.data(), data.size()) < 0) return std::nullopt;
  const auto& srv = record->data.srv;
  return ServiceLocation{withFinalDot(srv.name), srv.port};
}

RecordBytes recordOfLocation(const ServiceLocation& location) {
  const Record record = emptyRecord(RecordType::srv);
  if (!record || location.host.empty() || !isDomain(location.host)) return {};
  record->data.srv.port = location.port;
  record->data.srv.name = avahi_strdup(withoutFinalDot(location.host).c_str());
  return serialized(record.get());
}

RecordBytes recordOfPointer(const std::string& name) {
  const Record record = emptyRecord(RecordType::ptr);
  if (!record || name.empty() || !isDomain(name)) return {};
  record->data.ptr.name = avahi_strdup(withoutFinalDot(name).c_str());
  return serialized(record.get());
}

std::optional<SocketAddress> addressFromRecord(std::span<const std::byte> data, std::uint16_t port,
                                               int interfaceIndex) {
  if (data.size() == 4) return SocketAddress::withIPv4(octets<4>(data), port);
  if (data.size() != 16) return std::nullopt;
  const auto address = SocketAddress::withIPv6(octets<16>(data), port);
  if (!address.isLinkLocal()) return address;
  return SocketAddress::withIPv6(octets<16>(data), port,
                                 static_cast<std::uint32_t>(std::max(interfaceIndex, 0)));
}

bool isTextRecord(std::span<const std::byte> data) noexcept {
  while (!data.empty()) {
    const std::size_t length = 1 + std::to_integer<std::size_t>(data.front());
    if (length > data.size()) return false;
    data = data.subspan(length);
  }
  return true;
}

}  // namespace rvf
