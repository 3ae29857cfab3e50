// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Time/NSDateFormatter.h"

namespace rvf {

/// Operations of the date formatter class itself.
///
/// Thread: any; a formatter that is got serves one at a time. Lifetime: each formatter is the
/// caller's own.
struct RVF_EXPORT NSDateFormatter_RVFExtensions {
  /// A new formatter for timestamps in UTC with whole seconds, the form "2024-03-01T14:05:09Z" of
  /// RFC 3339. It depends on neither the user's locale nor the time zone, and reads no other form:
  /// no fractions of a second, no distances from UTC, no leap seconds.
  ///
  /// RFC 3339 ends with the year 9999; later years are written and read with five or six digits. It
  /// begins with the year 0 of a Gregorian calendar without end; here 4 October 1582 was one of the
  /// Julian calendar, and a year before the common era is written as its number within that era and
  /// read as one of this.
  static Ref<NSDateFormatter> RVF_RFC3339DateFormatter();
};

}  // namespace rvf
