// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/timezone.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace rvf {

/// The library's own form of a zone; null if it knows none of this name.
std::unique_ptr<icu::TimeZone> icuTimeZone(std::string_view name);

/// Whether the library knows the zone by this name above all others: "Etc/UTC", not "Zulu".
bool isCanonicalZoneName(std::string_view name);

/// The name of the zone at a distance of less than a day from UTC: "GMT", "GMT-03:30",
/// "GMT+00:19:32".
std::string timeZoneNameForOffset(std::int32_t seconds);

}  // namespace rvf
