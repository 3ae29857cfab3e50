// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Platform/Export.h"

namespace rvf {

/// What says which time zone a device is set to; tests name others.
struct RVF_EXPORT HostTimeZoneSources {
  /// Those of the device, with the environment as it is now.
  static HostTimeZoneSources ofDevice();

  std::optional<std::string> variable;  ///< TZ
  std::string localTime = "/etc/localtime";
  std::string nameFile = "/etc/timezone";
  std::string zones = "/usr/share/zoneinfo";  ///< the folder of the zones' files
  /// The distance from UTC of now, seconds, as the C library has it.
  std::function<std::int32_t()> distanceOfNow;
};

/// A name that `icuTimeZone` knows for the zone that the device is set to:
///
/// - What TZ says, without a leading ":": a name, or the path of a zone's file. Empty is "GMT".
/// - Without TZ, the zone that /etc/localtime is a link to.
/// - Of a copied file, the zone with the same bytes. Of several it is the one that /etc/timezone
///   names; else the one that zone1970.tab lists, the time zone database's main name for a region;
///   else one that Unicode's data call canonical ("Etc/UTC", not "Zulu"); and among equals the
///   first in the order of names. The folders "posix" and "right" repeat the others, so they count
///   last.
/// - Else, and for the rules of POSIX ("EST5EDT,M3.2.0,M11.1.0"), "GMT" with the distance of now.
///
/// Looking for the same bytes takes milliseconds; that is done once, until the file is another.
/// Thread-safe. The C library's own zone is left as it is.
RVF_EXPORT std::string hostTimeZoneName(const HostTimeZoneSources& sources);

}  // namespace rvf
