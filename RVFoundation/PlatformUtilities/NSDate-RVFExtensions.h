// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Values/NSDate.h"

namespace rvf {

/// Operations of the date class itself.
///
/// Thread: any. Lifetime: keeps nothing.
struct RVF_EXPORT NSDate_RVFExtensions {
  /// Today at 00:00 in the user's current calendar and time zone, or at the first moment of a day
  /// without it.
  static Ref<NSDate> RVF_today();
};

// An absent receiver answers absent or false, and an absent other date is neither before nor after.

/// The last whole second of the reference date's count that is not later.
RVF_EXPORT Ref<NSDate> RVF_dateWithNoFractionalSeconds(const Ref<NSDate>& date);

/// 86400 seconds earlier, where the clock was changed at another time of day.
RVF_EXPORT Ref<NSDate> RVF_dayBeforeDate(const Ref<NSDate>& date);
/// 86400 seconds later, likewise.
RVF_EXPORT Ref<NSDate> RVF_dayAfterDate(const Ref<NSDate>& date);

/// Strictly: a date is not before itself.
RVF_EXPORT bool RVF_isBefore(const Ref<NSDate>& date, const Ref<NSDate>& other);
RVF_EXPORT bool RVF_isAfter(const Ref<NSDate>& date, const Ref<NSDate>& other);

/// Whether a day has passed since: one of the user's current calendar and time zone, at whose end
/// the clock shows the same time again. A date is valid until then. One in the infinite past is
/// expired; one that is no number is not.
RVF_EXPORT bool RVF_isExpired(const Ref<NSDate>& date);

}  // namespace rvf
