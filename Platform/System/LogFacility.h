// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string_view>

namespace rvf {

/// The number that syslog has for a facility (RFC 5424, 6.2.1), by the names of `syslog.conf`;
/// absent for others. "kern" belongs to the kernel and answers as "user".
std::optional<int> logFacilityNumber(std::string_view name);

}  // namespace rvf
