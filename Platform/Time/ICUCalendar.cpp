// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/ICUCalendar.h"

#include <unicode/locid.h>

#include <cmath>
#include <limits>
#include <utility>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

constexpr double kReferenceDateSince1970 = 978307200;
constexpr double kMillisecondsPerSecond = 1000;
constexpr double kSecondsPerDay = 86400;
constexpr double kReach = 2e13;  // seconds

void requireSuccess(UErrorCode status) {
  if (U_FAILURE(status)) NSException::raise(NSInternalInconsistencyException, u_errorName(status));
}

/// False for what is no number, too.
bool isWithinReach(double seconds) noexcept {
  return std::abs(seconds) <= kReach;
}

/// No calendar has longer ones.
double longestUnit(UCalendarDateFields field) noexcept {
  switch (field) {
    case UCAL_YEAR:
      return 385 * kSecondsPerDay;
    case UCAL_MONTH:
      return 32 * kSecondsPerDay;
    case UCAL_WEEK_OF_YEAR:
      return 7 * kSecondsPerDay;
    case UCAL_HOUR_OF_DAY:
      return 3600;
    case UCAL_MINUTE:
      return 60;
    case UCAL_SECOND:
      return 1;
    default:
      return kSecondsPerDay;
  }
}

bool isWithinReach(UCalendarDateFields field, long amount) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  return amount >= Limits::min() && amount <= Limits::max() &&
         isWithinReach(static_cast<double>(amount) * longestUnit(field));
}

}  // namespace

std::optional<SplitDate> SplitDate::of(const NSDate* date) {
  if (!date) return std::nullopt;
  const double seconds = date->timeIntervalSinceReferenceDate();
  const double whole = std::floor(seconds);
  if (!isWithinReach(whole + kReferenceDateSince1970)) return std::nullopt;
  return SplitDate{(whole + kReferenceDateSince1970) * kMillisecondsPerSecond, seconds - whole};
}

Ref<NSDate> SplitDate::date() const {
  return NSDate::dateWithTimeIntervalSinceReferenceDate(milliseconds / kMillisecondsPerSecond -
                                                        kReferenceDateSince1970 + fraction);
}

ICUCalendar::ICUCalendar(std::unique_ptr<icu::TimeZone> zone, const std::string& localeIdentifier) {
  UErrorCode status = U_ZERO_ERROR;
  calendar_.reset(
      icu::Calendar::createInstance(zone.release(), icu::Locale(localeIdentifier.c_str()), status));
  requireSuccess(status);
}

void ICUCalendar::setZone(std::unique_ptr<icu::TimeZone> zone) {
  calendar_->adoptTimeZone(zone.release());
}

int ICUCalendar::firstWeekday() const {
  UErrorCode status = U_ZERO_ERROR;
  const int weekday = calendar_->getFirstDayOfWeek(status);
  requireSuccess(status);
  return weekday;
}

void ICUCalendar::setFirstWeekday(int weekday) {
  calendar_->setFirstDayOfWeek(static_cast<UCalendarDaysOfWeek>(weekday));
}

void ICUCalendar::moveTo(double milliseconds) {
  UErrorCode status = U_ZERO_ERROR;
  // Moving throws the fields away, and dividing a moment anew is what costs.
  if (calendar_->getTime(status) != milliseconds || U_FAILURE(status)) {
    status = U_ZERO_ERROR;
    calendar_->setTime(milliseconds, status);
  }
  requireSuccess(status);
}

std::optional<double> ICUCalendar::milliseconds() {
  UErrorCode status = U_ZERO_ERROR;
  const double milliseconds = calendar_->getTime(status);
  if (U_SUCCESS(status) && isWithinReach(milliseconds / kMillisecondsPerSecond))
    return milliseconds;
  clear();  // not to stand where no field can be told
  return std::nullopt;
}

std::int32_t ICUCalendar::field(UCalendarDateFields field) {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t value = calendar_->get(field, status);
  requireSuccess(status);
  return value;
}

std::int32_t ICUCalendar::greatest(UCalendarDateFields field) {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t value = calendar_->getActualMaximum(field, status);
  requireSuccess(status);
  return value;
}

bool ICUCalendar::add(UCalendarDateFields field, long amount) {
  if (!isWithinReach(field, amount)) return false;
  const auto count = static_cast<std::int32_t>(amount);
  switch (field) {
    case UCAL_DATE:
      moveDays(count);
      break;
    case UCAL_WEEK_OF_YEAR:
      moveDays(7 * count);
      break;
    default:
      move(field, count);
      break;
  }
  return milliseconds().has_value();
}

bool ICUCalendar::addSeconds(long amount, long secondsEach) {
  const double seconds = static_cast<double>(amount) * static_cast<double>(secondsEach);
  const std::optional<double> start = milliseconds();
  if (!start || !isWithinReach(seconds)) return false;
  moveTo(*start + seconds * kMillisecondsPerSecond);
  return milliseconds().has_value();
}

void ICUCalendar::move(UCalendarDateFields field, std::int32_t amount) {
  UErrorCode status = U_ZERO_ERROR;
  calendar_->add(field, amount, status);
  requireSuccess(status);
}

/// The library counts the days that there were: across a date line that moved (Apia had no
/// 30 December 2011) it arrives at the right time of another day.
void ICUCalendar::moveDays(std::int32_t days) {
  const std::int32_t timeOfDay = field(UCAL_MILLISECONDS_IN_DAY);
  const std::int32_t wantedDay = field(UCAL_JULIAN_DAY) + days;
  move(UCAL_DATE, days);
  const std::int32_t daysOff = wantedDay - field(UCAL_JULIAN_DAY);
  // Where the clock leaves out the end of a day, the next day is right, at another time of day.
  if (daysOff == 0 || field(UCAL_MILLISECONDS_IN_DAY) != timeOfDay) return;
  move(UCAL_DATE, daysOff);
  if (field(UCAL_JULIAN_DAY) < wantedDay) move(UCAL_DATE, 1);
}

void ICUCalendar::clear() {
  calendar_->clear();
}

bool ICUCalendar::set(UCalendarDateFields field, long value) {
  if (!isWithinReach(field, value)) return false;
  calendar_->set(field, static_cast<std::int32_t>(value));
  return true;
}

}  // namespace rvf
