// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "RVFoundation/PlatformUtilities/NSCalendar-RVFExtensions.h"
#include "RVFoundation/PlatformUtilities/NSDateFormatter-RVFExtensions.h"
#include "RVFoundation/PlatformUtilities/NSLocale-RVFExtensions.h"

using namespace rvf;

int main() {
  const auto timestamps = NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
  const Ref<NSDate> sale = timestamps->dateFromString("2024-03-12T06:30:00Z");
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
  const auto shown = std::make_shared<NSDateFormatter>();
  shown->setTimeZone(calendar->timeZone());
  shown->setLocale(NSLocale_RVFExtensions::RVF_POSIXLocale());
  shown->setDateFormat("EEEE, d MMMM yyyy HH:mm");
  for (const auto boundary : {&RVF_firstDayOfWeekForDate, &RVF_lastDayOfPreviousMonthForDate,
                              &RVF_firstDayOfNextYearForDate})
    std::cout << shown->stringFromDate(boundary(calendar, sale)).value_or("") << '\n';

  const auto month = std::make_shared<NSDateFormatter>();
  month->setDateFormat("MMMM");
  NSLocale_RVFExtensions::RVF_changeLocaleTo("de_AT", [&] {
    std::cout << month->stringFromDate(timestamps->dateFromString("2024-01-15T12:00:00Z")).value()
              << '\n';
  });
}
