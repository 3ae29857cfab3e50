// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Time/NSTimeZone.h"
#include "Platform/Values/NSDate.h"

namespace rvf {

inline constexpr std::string_view NSCalendarIdentifierGregorian = "gregorian";

/// The fields of a date, as bits of the platform's values.
enum NSCalendarUnit : unsigned long {
  NSCalendarUnitYear = 1UL << 2,
};

/// A way of dividing time into days, months and years, in a time zone:
///
///     const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
///     const long year = calendar->component(NSCalendarUnitYear, NSDate::date());
///
/// Used by one thread at a time.
class RVF_EXPORT NSCalendar final : public NSObject {
 public:
  /// A new calendar in the default time zone. The Gregorian one is the only one so far: absent for
  /// any other.
  static Ref<NSCalendar> calendarWithIdentifier(std::string_view identifier);

  ~NSCalendar() override;

  static Class classObject();
  Class isa() const override;

  std::string_view calendarIdentifier() const noexcept { return NSCalendarIdentifierGregorian; }

  const Ref<NSTimeZone>& timeZone() const noexcept;
  /// Absent brings the default time zone of this moment back.
  void setTimeZone(Ref<NSTimeZone> zone);

  /// One field of a date in this calendar's time zone. 0 for an absent date, or one that lies at no
  /// finite distance.
  long component(NSCalendarUnit unit, const Ref<NSDate>& fromDate) const;

 private:
  class State;
  explicit NSCalendar(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace rvf
