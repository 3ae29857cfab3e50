// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/calendar.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Values/NSDate.h"

namespace rvf {

/// A date as the library takes it: whole milliseconds, because it drops what is less. The fraction
/// of the second stays outside.
struct SplitDate {
  double milliseconds;  ///< of the whole second before the date, since 1970-01-01 00:00 UTC
  double fraction;      ///< of a second, from 0 to below 1

  /// Absent for a date that is absent, no number, or further away than `ICUCalendar` reaches.
  static std::optional<SplitDate> of(const NSDate* date);
  Ref<NSDate> date() const;
};

/// The library's calendar of one kind, standing at one moment, so that several questions about a
/// date divide it into fields only once. It reaches 600,000 years in both directions; the library's
/// own integers overflow silently beyond twice that.
class ICUCalendar final {
 public:
  /// A locale such as "th_TH" or "@calendar=hebrew" says which calendar it is and how weeks begin.
  /// Takes the zone over. Raises `NSInternalInconsistencyException` if the library's data are
  /// missing.
  ICUCalendar(std::unique_ptr<icu::TimeZone> zone, const std::string& localeIdentifier);

  /// The calendar's identifier, "gregorian".
  std::string type() const { return calendar_->getType(); }
  void setZone(std::unique_ptr<icu::TimeZone> zone);
  int firstWeekday() const;
  void setFirstWeekday(int weekday);

  void moveTo(double milliseconds);
  /// Where this stands; absent if that is out of reach.
  std::optional<double> milliseconds();
  std::int32_t field(UCalendarDateFields field);
  /// The greatest value that a field has around the moment: the length of its month, for the day.
  std::int32_t greatest(UCalendarDateFields field);

  /// Moves on by an amount of days, weeks, months, years or eras. False if that is too much.
  bool add(UCalendarDateFields field, long amount);
  /// Moves on by a time, whatever the clock shows. False if that is too much.
  bool addSeconds(long amount, long secondsEach);

  /// Leaves the moment for another, of which no field is set.
  void clear();
  /// False if the value is too great.
  bool set(UCalendarDateFields field, long value);

 private:
  void move(UCalendarDateFields field, std::int32_t amount);
  void moveDays(std::int32_t days);

  std::unique_ptr<icu::Calendar> calendar_;
};

}  // namespace rvf
