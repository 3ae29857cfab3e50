// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string>
#include <string_view>

namespace rvf {

/// The library's own form of a zone; null if it knows none of this name.
std::unique_ptr<icu::TimeZone> icuTimeZone(std::string_view name);

/// A name that `icuTimeZone` knows for the zone that the device is set to.
std::string icuHostTimeZoneName();

}  // namespace rvf
