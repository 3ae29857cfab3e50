// SPDX-License-Identifier: Apache-2.0
//
// Names of services and the data of SRV, A, AAAA and TXT records, as any host on the network may
// send them. A name that is escaped for DNS has its own bytes in a packet again, and what is read
// from a record reads the same after it was written.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/AvahiDaemon/RecordData.h"
#include "Platform/Network/ServiceNames.h"

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint16_t kPort = 9630;
constexpr int kInterface = 2;

void require(bool isTrue) {
  if (!isTrue) std::abort();
}

/// The first label of a name in a packet: a length byte, and as many others.
std::string_view firstLabel(Bytes packet) {
  require(!packet.empty());
  const auto length = std::to_integer<std::size_t>(packet.front());
  require(length < packet.size());
  return {reinterpret_cast<const char*>(packet.data()) + 1, length};
}

void tryName(std::string_view text) {
  const std::string name(text);
  const auto full = rvf::fullServiceName({name, "_till._tcp.", "local."});
  if (!rvf::isInstanceName(text)) return;
  require(full.has_value() && firstLabel(rvf::recordOfPointer(*full)) == text);
  require(rvf::isInstanceName(rvf::nextServiceName(text)));
  require(rvf::isInstanceName(rvf::uniqueServiceName(text)));
}

void tryTypeAndDomain(std::string_view text) {
  const std::string given(text);
  if (rvf::isAskable({"Till", given, "local."})) require(rvf::isServiceType(text));
  if (rvf::isAskable({"Till", "_till._tcp.", given})) require(rvf::isDomain(text));
  const std::string dotted = rvf::withFinalDot(text);
  require(rvf::withFinalDot(dotted) == dotted);
  if (!text.ends_with('.')) require(rvf::withoutFinalDot(dotted) == text);
}

void tryLocation(Bytes data) {
  const auto location = rvf::locationFromRecord(data);
  if (!location || location->host.empty()) return;
  require(rvf::isSendable(location->host) && location->host.ends_with('.'));
  const auto again = rvf::recordOfLocation(*location);
  if (!again.empty()) require(rvf::locationFromRecord(again) == location);
}

void tryAddress(Bytes data) {
  const auto address = rvf::addressFromRecord(data, kPort, kInterface);
  require(address.has_value() == (data.size() == 4 || data.size() == 16));
  if (!address) return;
  require(rvf::SocketAddress::fromDataBlock(address->blockBytes()) == address);
  require(rvf::SocketAddress::fromText(address->addressText(), kPort, address->scope()) == address);
}

/// Whole strings stay whole when one more follows, and are cut by one that is not whole.
void tryText(Bytes data) {
  if (!rvf::isTextRecord(data)) return;
  rvf::RecordBytes longer(data.begin(), data.end());
  longer.push_back(std::byte{1});
  require(!rvf::isTextRecord(longer));
  longer.push_back(std::byte{'x'});
  require(rvf::isTextRecord(longer));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const Bytes bytes = std::as_bytes(std::span(data, size));
  tryName(text);
  tryTypeAndDomain(text);
  tryLocation(bytes);
  tryAddress(bytes);
  tryText(bytes);
  return 0;
}
