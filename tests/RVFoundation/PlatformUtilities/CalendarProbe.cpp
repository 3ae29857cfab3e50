// SPDX-License-Identifier: Apache-2.0
//
// Answers calendar periods for a test that knows the right ones. Each line on standard input is a
// time zone's name or a date in whole seconds since 1970; for each date a line on standard output
// has the boundary days of all periods in the Gregorian calendar of that zone.

#include <iostream>
#include <string>

#include "RVFoundation/PlatformUtilities/NSCalendar-RVFExtensions.h"

namespace {

using rvf::NSCalendar;
using rvf::NSDate;
using rvf::Ref;

constexpr decltype(&rvf::RVF_firstDayOfWeekForDate) kPeriods[] = {
    &rvf::RVF_firstDayOfWeekForDate,          &rvf::RVF_firstDayOfPreviousWeekForDate,
    &rvf::RVF_lastDayOfPreviousWeekForDate,   &rvf::RVF_firstDayOfNextWeekForDate,
    &rvf::RVF_lastDayOfNextWeekForDate,       &rvf::RVF_firstDayOfCurrentMonthForDate,
    &rvf::RVF_lastDayOfCurrentMonthForDate,   &rvf::RVF_lastDayOfPreviousMonthForDate,
    &rvf::RVF_firstDayOfPreviousMonthForDate, &rvf::RVF_firstDayOfNextMonthForDate,
    &rvf::RVF_lastDayOfNextMonthForDate,      &rvf::RVF_firstDayOfCurrentYearForDate,
    &rvf::RVF_firstDayOfNextYearForDate,      &rvf::RVF_lastDayOfNextYearForDate,
};

void print(const Ref<NSDate>& date) {
  std::cout << static_cast<long long>(date->timeIntervalSince1970());
}

void printPeriods(const Ref<NSCalendar>& calendar, const Ref<NSDate>& date) {
  for (const auto period : kPeriods) {
    print(period(calendar, date));
    std::cout << ' ';
  }
  print(rvf::RVF_firstDayOfYearWithDelta(calendar, -3, date));
  std::cout << '\n';
}

}  // namespace

int main() {
  std::ios::sync_with_stdio(false);
  const auto calendar = NSCalendar::calendarWithIdentifier(rvf::NSCalendarIdentifierGregorian);
  for (std::string line; std::getline(std::cin, line);) {
    if (const auto zone = rvf::NSTimeZone::timeZoneWithName(line)) {
      calendar->setTimeZone(zone);
    } else {
      printPeriods(calendar, NSDate::dateWithTimeIntervalSince1970(std::stod(line)));
    }
  }
  return std::cout.flush() ? 0 : 1;
}
