// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Time/NSCalendar.h"
#include "Platform/Values/NSDate.h"

namespace rvf {

// The boundary days of the periods that reports are about, in a calendar and its time zone:
//
//     const auto from = RVF_firstDayOfPreviousWeekForDate(calendar, NSDate::date());
//     const auto to = RVF_lastDayOfPreviousWeekForDate(calendar, NSDate::date());
//
// Weeks and months keep the date's time of day, as adding to a date does (see
// `dateByAddingComponents`); years begin at 00:00, or at the first moment of a day without it.
// Absent for an absent date or calendar, and beyond the calendar's reach.
//
// Weeks begin with the weekday of number 1, Sunday in the Gregorian calendar, whatever first
// weekday the calendar is set to.

/// The day of number 1 of the date's week.
RVF_EXPORT Ref<NSDate> RVF_firstDayOfWeekForDate(const Ref<NSCalendar>& calendar,
                                                 const Ref<NSDate>& date);
/// That day one week earlier.
RVF_EXPORT Ref<NSDate> RVF_firstDayOfPreviousWeekForDate(const Ref<NSCalendar>& calendar,
                                                         const Ref<NSDate>& date);
/// The day before the date's week.
RVF_EXPORT Ref<NSDate> RVF_lastDayOfPreviousWeekForDate(const Ref<NSCalendar>& calendar,
                                                        const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_firstDayOfNextWeekForDate(const Ref<NSCalendar>& calendar,
                                                     const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_lastDayOfNextWeekForDate(const Ref<NSCalendar>& calendar,
                                                    const Ref<NSDate>& date);

/// The first or last day of the date's month, or of the one before or behind it.
RVF_EXPORT Ref<NSDate> RVF_firstDayOfCurrentMonthForDate(const Ref<NSCalendar>& calendar,
                                                         const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_lastDayOfCurrentMonthForDate(const Ref<NSCalendar>& calendar,
                                                        const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_lastDayOfPreviousMonthForDate(const Ref<NSCalendar>& calendar,
                                                         const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_firstDayOfPreviousMonthForDate(const Ref<NSCalendar>& calendar,
                                                          const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_firstDayOfNextMonthForDate(const Ref<NSCalendar>& calendar,
                                                      const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_lastDayOfNextMonthForDate(const Ref<NSCalendar>& calendar,
                                                     const Ref<NSDate>& date);

/// The first day of the year that lies `delta` years after the date's, across eras; a negative one
/// before it.
RVF_EXPORT Ref<NSDate> RVF_firstDayOfYearWithDelta(const Ref<NSCalendar>& calendar, long delta,
                                                   const Ref<NSDate>& forDate);
RVF_EXPORT Ref<NSDate> RVF_firstDayOfCurrentYearForDate(const Ref<NSCalendar>& calendar,
                                                        const Ref<NSDate>& date);
RVF_EXPORT Ref<NSDate> RVF_firstDayOfNextYearForDate(const Ref<NSCalendar>& calendar,
                                                     const Ref<NSDate>& date);
/// The day before the first one two years on, at the time of day that that one begins with.
RVF_EXPORT Ref<NSDate> RVF_lastDayOfNextYearForDate(const Ref<NSCalendar>& calendar,
                                                    const Ref<NSDate>& date);

}  // namespace rvf
