// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

/// DNS records and names in libavahi-core's form.
namespace rvf {

/// A record of class IN without its data. Null never: out of memory ends the process.
AvahiHandle<AvahiRecord> makeRecord(const std::string& name, std::uint16_t type,
                                    std::uint32_t lifetimeSeconds);
AvahiHandle<AvahiKey> makeKey(const std::string& name, std::uint16_t type);

/// The data of a TXT record as it stands in a packet. The library keeps the strings in reverse.
std::vector<std::byte> txtRecordData(const AvahiRecord& record);

/// What a failing call of the library means.
NSNetServicesError discoveryError(int avahiError) noexcept;

}  // namespace rvf
