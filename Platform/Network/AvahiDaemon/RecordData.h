// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/SocketAddress.h"

/// The data part of DNS records (RFC 1035, 3.3; RFC 2782; RFC 3596) as the daemon takes and gives
/// it: wire form, without compression.
namespace rvf {

using RecordBytes = std::vector<std::byte>;

/// Record types by their registered numbers.
enum class RecordType : std::uint16_t { a = 1, ptr = 12, txt = 16, aaaa = 28, srv = 33 };

struct ServiceLocation {
  std::string host;  ///< escaped, with the final dot
  std::uint16_t port = 0;
  friend bool operator==(const ServiceLocation&, const ServiceLocation&) = default;
};

/// Reads the data of an SRV record; absent if it is malformed.
RVF_EXPORT std::optional<ServiceLocation> locationFromRecord(std::span<const std::byte> data);
/// The data of an SRV record; empty if the host is no DNS name.
RVF_EXPORT RecordBytes recordOfLocation(const ServiceLocation& location);
/// The data of a PTR record; empty if the name is no DNS name.
RVF_EXPORT RecordBytes recordOfPointer(const std::string& name);

/// Reads the data of an A (4 bytes) or AAAA record (16 bytes). A link-local IPv6 address belongs
/// to the interface that it was seen on. Absent for another length.
RVF_EXPORT std::optional<SocketAddress> addressFromRecord(std::span<const std::byte> data,
                                                          std::uint16_t port, int interfaceIndex);

/// Whether the data of a TXT record consists of whole strings (RFC 6763, 6.1).
RVF_EXPORT bool isTextRecord(std::span<const std::byte> data) noexcept;

}  // namespace rvf
