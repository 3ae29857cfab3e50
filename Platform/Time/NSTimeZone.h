// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A time zone, known by its name in the IANA database ("Europe/Berlin") or by its distance from
/// UTC ("GMT+05:30").
///
/// Thread: any; immutable. Lifetime: refers to nothing.
class RVF_EXPORT NSTimeZone final : public NSObject {
 public:
  /// Absent if no zone has this name.
  static Ref<NSTimeZone> timeZoneWithName(std::string_view name);
  /// The one at this distance from UTC, east of it being positive; absent for a day or more.
  static Ref<NSTimeZone> timeZoneForSecondsFromGMT(long seconds);
  /// The device's, read anew each time: the environment variable TZ, a name or the path of a zone's
  /// file, else /etc/localtime. Where that has no name, as a rule of POSIX has none
  /// ("EST5EDT,M3.2.0,M11.1.0"), it is the one at the distance of now. Thread-safe.
  static Ref<NSTimeZone> systemTimeZone();
  /// What new calendars get: the device's, unless the program set another.
  static Ref<NSTimeZone> defaultTimeZone();
  /// For the whole process; absent goes back to the device's. Thread-safe. Neither the environment
  /// nor the C library's zone is changed.
  static void setDefaultTimeZone(Ref<NSTimeZone> zone);

  static Class classObject();
  Class isa() const override;

  /// "Europe/Berlin", or "GMT+05:30" of one that is known by its distance.
  const std::string& name() const noexcept { return name_; }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override { return name_; }

 private:
  explicit NSTimeZone(std::string name) : name_(std::move(name)) {}

  std::string name_;
};

}  // namespace rvf
