// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <limits>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A field that is not set. It also stands for "not used": adding it adds nothing.
inline constexpr long NSDateComponentUndefined = std::numeric_limits<long>::max();

/// Fields of a date, or amounts to add to one, in whatever calendar they are given to:
///
///     const auto components = std::make_shared<NSDateComponents>();
///     components->setDay(-1);
///     calendar->dateByAddingComponents(components, today);
///
/// Nothing is set in a new one, and nothing is checked: day 0 is the day before the first, month 13
/// the first month of the next year.
///
/// Thread: one at a time. Lifetime: refers to nothing.
class RVF_EXPORT NSDateComponents final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// From 0; 1 is the common era of the Gregorian calendar.
  long era() const noexcept { return era_; }
  /// Within the era.
  long year() const noexcept { return year_; }
  /// From 1.
  long month() const noexcept { return month_; }
  /// Whether it is the second month of its number, as the Chinese calendar has one in some years.
  bool isLeapMonth() const noexcept { return isLeapMonth_; }
  /// As an amount, weeks.
  long weekOfYear() const noexcept { return weekOfYear_; }
  /// Of the month, from 1.
  long day() const noexcept { return day_; }
  /// From 1, Sunday. A name of a day and no amount: it is never added.
  long weekday() const noexcept { return weekday_; }
  /// Of the day, from 0.
  long hour() const noexcept { return hour_; }
  long minute() const noexcept { return minute_; }
  long second() const noexcept { return second_; }

  /// Values out of range carry over when a calendar makes a date of them.
  void setEra(long era);
  void setYear(long year);
  void setMonth(long month);
  void setLeapMonth(bool isLeapMonth);
  void setWeekOfYear(long weekOfYear);
  void setDay(long day);
  void setWeekday(long weekday);
  void setHour(long hour);
  void setMinute(long minute);
  void setSecond(long second);

  /// The same fields, to be changed on their own.
  Ref<NSDateComponents> copy() const;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 private:
  long era_ = NSDateComponentUndefined;
  long year_ = NSDateComponentUndefined;
  long month_ = NSDateComponentUndefined;
  bool isLeapMonth_ = false;
  long weekOfYear_ = NSDateComponentUndefined;
  long day_ = NSDateComponentUndefined;
  long weekday_ = NSDateComponentUndefined;
  long hour_ = NSDateComponentUndefined;
  long minute_ = NSDateComponentUndefined;
  long second_ = NSDateComponentUndefined;
};

}  // namespace rvf
