// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSDate-RVFExtensions.h"

#include <cmath>

#include "Platform/Time/NSCalendar.h"

namespace rvf {
namespace {

constexpr double kSecondsPerDay = 86400;

Ref<NSDate> adding(const Ref<NSDate>& date, double seconds) {
  if (!date) return nullptr;
  return NSDate::dateWithTimeIntervalSinceReferenceDate(date->timeIntervalSinceReferenceDate() +
                                                        seconds);
}

}  // namespace

Ref<NSDate> NSDate_RVFExtensions::RVF_today() {
  const auto calendar = NSCalendar::currentCalendar();
  const auto today = calendar->components(
      NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
      NSDate::date());
  return calendar->dateFromComponents(today);
}

Ref<NSDate> RVF_dateWithNoFractionalSeconds(const Ref<NSDate>& date) {
  if (!date) return nullptr;
  return NSDate::dateWithTimeIntervalSinceReferenceDate(
      std::floor(date->timeIntervalSinceReferenceDate()));
}

Ref<NSDate> RVF_dayBeforeDate(const Ref<NSDate>& date) {
  return adding(date, -kSecondsPerDay);
}

Ref<NSDate> RVF_dayAfterDate(const Ref<NSDate>& date) {
  return adding(date, kSecondsPerDay);
}

bool RVF_isBefore(const Ref<NSDate>& date, const Ref<NSDate>& other) {
  return date && other &&
         date->timeIntervalSinceReferenceDate() < other->timeIntervalSinceReferenceDate();
}

bool RVF_isAfter(const Ref<NSDate>& date, const Ref<NSDate>& other) {
  return RVF_isBefore(other, date);
}

bool RVF_isExpired(const Ref<NSDate>& date) {
  const auto oneDay = std::make_shared<NSDateComponents>();
  oneDay->setDay(1);
  const auto end = NSCalendar::currentCalendar()->dateByAddingComponents(oneDay, date);
  // No calendar reaches that far, and a day makes no difference there.
  if (!end) return RVF_isBefore(date, NSDate::date());
  return !RVF_isBefore(NSDate::date(), end);
}

}  // namespace rvf
