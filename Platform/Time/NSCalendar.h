// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Time/NSDateComponents.h"
#include "Platform/Time/NSTimeZone.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSRange.h"

namespace rvf {

inline constexpr std::string_view NSCalendarIdentifierGregorian = "gregorian";
inline constexpr std::string_view NSCalendarIdentifierBuddhist = "buddhist";
inline constexpr std::string_view NSCalendarIdentifierChinese = "chinese";
inline constexpr std::string_view NSCalendarIdentifierCoptic = "coptic";
inline constexpr std::string_view NSCalendarIdentifierEthiopicAmeteMihret = "ethiopic";
inline constexpr std::string_view NSCalendarIdentifierEthiopicAmeteAlem = "ethiopic-amete-alem";
inline constexpr std::string_view NSCalendarIdentifierHebrew = "hebrew";
inline constexpr std::string_view NSCalendarIdentifierIndian = "indian";
inline constexpr std::string_view NSCalendarIdentifierIslamic = "islamic";
inline constexpr std::string_view NSCalendarIdentifierIslamicCivil = "islamic-civil";
inline constexpr std::string_view NSCalendarIdentifierIslamicTabular = "islamic-tbla";
inline constexpr std::string_view NSCalendarIdentifierIslamicUmmAlQura = "islamic-umalqura";
inline constexpr std::string_view NSCalendarIdentifierJapanese = "japanese";
inline constexpr std::string_view NSCalendarIdentifierPersian = "persian";
inline constexpr std::string_view NSCalendarIdentifierRepublicOfChina = "roc";

/// The fields of a date, as bits of the platform's values.
enum NSCalendarUnit : unsigned long {
  NSCalendarUnitEra = 1UL << 1,
  NSCalendarUnitYear = 1UL << 2,
  NSCalendarUnitMonth = 1UL << 3,
  NSCalendarUnitDay = 1UL << 4,
  NSCalendarUnitHour = 1UL << 5,
  NSCalendarUnitMinute = 1UL << 6,
  NSCalendarUnitSecond = 1UL << 7,
  NSCalendarUnitWeekday = 1UL << 9,
  NSCalendarUnitWeekOfYear = 1UL << 13,
};

constexpr NSCalendarUnit operator|(NSCalendarUnit a, NSCalendarUnit b) noexcept {
  return static_cast<NSCalendarUnit>(static_cast<unsigned long>(a) | static_cast<unsigned long>(b));
}

/// A way of dividing time into days, months and years, in a time zone:
///
///     const auto calendar = NSCalendar::currentCalendar();
///     const long weekday = calendar->component(NSCalendarUnitWeekday, NSDate::date());
///
/// Dates more than 600,000 years away, or at no finite distance, count as absent ones.
///
/// Thread: one at a time. Lifetime: keeps its time zone.
class RVF_EXPORT NSCalendar final : public NSObject {
 public:
  /// A new calendar in the default time zone, whose weeks begin on Sunday; absent for an identifier
  /// that is not listed above.
  static Ref<NSCalendar> calendarWithIdentifier(std::string_view identifier);
  /// A new calendar as the user has it: the one of the current locale, in the default time zone. It
  /// may be another than the Gregorian one (the Buddhist one for "th_TH"), and does not follow
  /// later changes.
  static Ref<NSCalendar> currentCalendar();

  ~NSCalendar() override;

  static Class classObject();
  Class isa() const override;

  /// One of those listed above.
  const std::string& calendarIdentifier() const noexcept;

  /// Never absent.
  const Ref<NSTimeZone>& timeZone() const noexcept;
  /// Absent brings the default time zone of this moment back.
  void setTimeZone(Ref<NSTimeZone> zone);

  /// The weekday that weeks begin with when they are numbered, 1 for Sunday. Weekdays themselves
  /// are numbered from Sunday whatever this is.
  unsigned long firstWeekday() const;
  /// Anything but 1 to 7 raises `NSInvalidArgumentException`.
  void setFirstWeekday(unsigned long weekday);

  /// One field of a date in this calendar's time zone; 0 for an absent date. Raises
  /// `NSInvalidArgumentException` for what is not one single unit.
  long component(NSCalendarUnit unit, const Ref<NSDate>& fromDate) const;
  /// Several of them, the others left unset; absent for an absent date. The month comes with
  /// whether it is a leap month.
  Ref<NSDateComponents> components(NSCalendarUnit units, const Ref<NSDate>& fromDate) const;

  /// The date of these fields. What is not set counts as the first: year 1, month 1, day 1, 00:00;
  /// but the era as the calendar's usual one, so who means a date that is read back sets the era.
  /// Of a time that the clock shows twice it is the later one; one that it leaves out moves on by
  /// as much as was left out. Absent if a field is out of reach.
  Ref<NSDate> dateFromComponents(const Ref<NSDateComponents>& components) const;

  /// The date that lies as far away as these amounts say, negative ones before it. They are added
  /// one after the other, from years down to seconds. Days, weeks, months and years keep the time
  /// of day, to the fraction of a second, and a day that the result's month does not have becomes
  /// its last one. Of a time that the clock shows twice, adding days or weeks takes the one with
  /// the same distance from UTC as before; one that it leaves out moves on by as much as was left
  /// out, and so does a day.
  ///
  /// Absent if the date is absent or the result out of reach. Options other than 0 raise
  /// `NSInvalidArgumentException`.
  Ref<NSDate> dateByAddingComponents(const Ref<NSDateComponents>& components,
                                     const Ref<NSDate>& toDate, unsigned long options = 0) const;

  /// The numbers of the days in the month or in the year of a date: {1, 29} for a leap February.
  /// There is no other range, nor one for an absent date.
  NSRange rangeOfUnit(NSCalendarUnit unit, NSCalendarUnit inUnit, const Ref<NSDate>& forDate) const;

 private:
  class State;
  explicit NSCalendar(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace rvf
