// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSCalendar-RVFExtensions.h"

#include "Platform/Values/NSArray.h"

namespace rvf {
namespace {

Ref<NSDate> adding(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date, long days,
                   long weeks = 0) {
  if (!calendar) return nullptr;
  const auto components = std::make_shared<NSDateComponents>();
  components->setDay(days);
  components->setWeekOfYear(weeks);
  return calendar->dateByAddingComponents(components, date);
}

long field(const Ref<NSCalendar>& calendar, NSCalendarUnit unit, const Ref<NSDate>& date) {
  return calendar ? calendar->component(unit, date) : 0;
}

long weekday(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  return field(calendar, NSCalendarUnitWeekday, date);
}

long dayOfMonth(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  return field(calendar, NSCalendarUnitDay, date);
}

/// 0 for an absent date.
long daysInMonth(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  if (!calendar) return 0;
  const NSRange days = calendar->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, date);
  return days.location == NSNotFound ? 0 : static_cast<long>(days.length);
}

/// The era belongs to it: there is a year 22 of every Japanese one.
Ref<NSDate> firstDayOfYear(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  const auto year = calendar->components(NSCalendarUnitEra | NSCalendarUnitYear, date);
  if (!year) return nullptr;
  year->setMonth(1);
  year->setDay(1);
  return calendar->dateFromComponents(year);
}

}  // namespace

Ref<NSDate> RVF_firstDayOfWeekForDate(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  return adding(calendar, date, 1 - weekday(calendar, date));
}

Ref<NSDate> RVF_firstDayOfPreviousWeekForDate(const Ref<NSCalendar>& calendar,
                                              const Ref<NSDate>& date) {
  return adding(calendar, date, 1 - weekday(calendar, date), -1);
}

Ref<NSDate> RVF_lastDayOfPreviousWeekForDate(const Ref<NSCalendar>& calendar,
                                             const Ref<NSDate>& date) {
  return adding(calendar, date, -weekday(calendar, date));
}

Ref<NSDate> RVF_firstDayOfNextWeekForDate(const Ref<NSCalendar>& calendar,
                                          const Ref<NSDate>& date) {
  return adding(calendar, date, 1 - weekday(calendar, date), 1);
}

Ref<NSDate> RVF_lastDayOfNextWeekForDate(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  return adding(calendar, RVF_firstDayOfNextWeekForDate(calendar, date), -1, 1);
}

Ref<NSDate> RVF_firstDayOfCurrentMonthForDate(const Ref<NSCalendar>& calendar,
                                              const Ref<NSDate>& date) {
  return adding(calendar, date, 1 - dayOfMonth(calendar, date));
}

Ref<NSDate> RVF_lastDayOfCurrentMonthForDate(const Ref<NSCalendar>& calendar,
                                             const Ref<NSDate>& date) {
  return adding(calendar, date, daysInMonth(calendar, date) - dayOfMonth(calendar, date));
}

Ref<NSDate> RVF_lastDayOfPreviousMonthForDate(const Ref<NSCalendar>& calendar,
                                              const Ref<NSDate>& date) {
  return adding(calendar, date, -dayOfMonth(calendar, date));
}

Ref<NSDate> RVF_firstDayOfPreviousMonthForDate(const Ref<NSCalendar>& calendar,
                                               const Ref<NSDate>& date) {
  return RVF_firstDayOfCurrentMonthForDate(calendar,
                                           RVF_lastDayOfPreviousMonthForDate(calendar, date));
}

Ref<NSDate> RVF_firstDayOfNextMonthForDate(const Ref<NSCalendar>& calendar,
                                           const Ref<NSDate>& date) {
  return adding(calendar, date, daysInMonth(calendar, date) + 1 - dayOfMonth(calendar, date));
}

Ref<NSDate> RVF_lastDayOfNextMonthForDate(const Ref<NSCalendar>& calendar,
                                          const Ref<NSDate>& date) {
  return RVF_lastDayOfCurrentMonthForDate(calendar, RVF_firstDayOfNextMonthForDate(calendar, date));
}

Ref<NSDate> RVF_firstDayOfYearWithDelta(const Ref<NSCalendar>& calendar, long delta,
                                        const Ref<NSDate>& forDate) {
  if (!calendar || delta == NSDateComponentUndefined) return nullptr;
  const auto start = firstDayOfYear(calendar, forDate);
  if (delta == 0) return start;
  // The calendar adds, because some count the years before their epoch backwards.
  const auto years = std::make_shared<NSDateComponents>();
  years->setYear(delta);
  return firstDayOfYear(calendar, calendar->dateByAddingComponents(years, start));
}

Ref<NSDate> RVF_firstDayOfCurrentYearForDate(const Ref<NSCalendar>& calendar,
                                             const Ref<NSDate>& date) {
  return RVF_firstDayOfYearWithDelta(calendar, 0, date);
}

Ref<NSDate> RVF_firstDayOfNextYearForDate(const Ref<NSCalendar>& calendar,
                                          const Ref<NSDate>& date) {
  return RVF_firstDayOfYearWithDelta(calendar, 1, date);
}

Ref<NSDate> RVF_lastDayOfNextYearForDate(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  const auto nextYear = RVF_firstDayOfNextYearForDate(calendar, date);
  return adding(calendar, RVF_firstDayOfNextYearForDate(calendar, nextYear), -1);
}

}  // namespace rvf
