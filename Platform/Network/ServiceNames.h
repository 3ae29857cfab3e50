// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

/// The texts that make up a DNS-SD registration (RFC 6763, 4.1).
namespace rvf {

/// The most bytes that a registration's name can have (one DNS label).
inline constexpr std::size_t kLongestServiceName = 63;

/// The text with a final dot; empty stays empty.
RVF_EXPORT std::string withFinalDot(std::string_view text);

/// Whether the text is "_service._tcp" or "_service._udp", or a subtype "_x._sub._service._tcp",
/// with or without the final dot.
RVF_EXPORT bool isServiceType(std::string_view text) noexcept;

/// The DNS name of a registration, "Till\0321._till._tcp.local": the name escaped, no final dot, an
/// empty domain as "local". Absent if a part is malformed, or is not what Avahi takes.
RVF_EXPORT std::optional<std::string> fullServiceName(const ServiceIdentity& identity);

/// The first `limit` bytes at most, cut where a character ends.
RVF_EXPORT std::string_view cutToBytes(std::string_view text, std::size_t limit) noexcept;

/// The name to try when `name` is taken: "Till" becomes "Till (2)", "Till (2)" becomes "Till (3)".
/// A long name is cut so that the result has at most 63 bytes.
RVF_EXPORT std::string nextServiceName(std::string_view name);

/// A name that nobody else has, ever: "Till" becomes "Till-5xq0c7k1m9b2h4wz", 80 random bits. A
/// long name is cut so that the result has at most 63 bytes.
RVF_EXPORT std::string uniqueServiceName(std::string_view name);

}  // namespace rvf
