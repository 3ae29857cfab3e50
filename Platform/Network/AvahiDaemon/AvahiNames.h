// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

/// The spelling of names on both sides of the daemon's interface: ours end in a dot, Avahi's do
/// not.
namespace rvf {

/// "local." and "local" give "local".
RVF_EXPORT std::string withoutFinalDot(std::string_view name);

/// Whether the text can be handed to the daemon at all: UTF-8 without a zero byte. D-Bus ends the
/// connection of a client that sends anything else.
RVF_EXPORT bool isSendable(std::string_view text) noexcept;
/// Whether it is a sendable label of 1 to 63 bytes (RFC 6763, 4.1.1).
RVF_EXPORT bool isInstanceName(std::string_view name) noexcept;
/// Whether it is a domain, or empty for the default one.
RVF_EXPORT bool isDomain(std::string_view domain) noexcept;
/// Whether name, type and domain make a registration that the daemon can be asked for.
RVF_EXPORT bool isAskable(const ServiceIdentity& identity);

}  // namespace rvf
