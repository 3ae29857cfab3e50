// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSCalendar.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSArray.h"
#include "tests/Platform/Time/ZonedDates.h"

namespace rvf {
namespace {

class NSCalendarTest : public testing::Test {
 protected:
  NSCalendarTest() { NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("GMT")); }
  ~NSCalendarTest() override { NSTimeZone::setDefaultTimeZone(nullptr); }

  static Ref<NSCalendar> gregorian() {
    return NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  }
  static long yearOf(double secondsSince1970) {
    return gregorian()->component(NSCalendarUnitYear,
                                  NSDate::dateWithTimeIntervalSince1970(secondsSince1970));
  }
};

// The first moment of a year in UTC, seconds since 1970.
constexpr double kStartOf1970 = 0;
constexpr double kStartOf2000 = 946684800;
constexpr double kStartOf2026 = 1767225600;
constexpr double kStartOf2100 = 4102444800;
constexpr double kHour = 3600;

TEST_F(NSCalendarTest, TellsTheYear) {
  EXPECT_EQ(yearOf(kStartOf1970 - 0.001), 1969);
  EXPECT_EQ(yearOf(kStartOf1970), 1970);
  EXPECT_EQ(yearOf(kStartOf2000 - 1), 1999);
  EXPECT_EQ(yearOf(kStartOf2000), 2000);
  EXPECT_EQ(yearOf(kStartOf2026 - 0.5), 2025);
  EXPECT_EQ(yearOf(kStartOf2026), 2026);
  EXPECT_EQ(yearOf(kStartOf2100), 2100);
}

TEST_F(NSCalendarTest, TheYearBeginsByTheTimeZone) {
  const auto calendar = gregorian();
  const auto date = NSDate::dateWithTimeIntervalSince1970(kStartOf2026 - kHour / 2);
  EXPECT_EQ(calendar->component(NSCalendarUnitYear, date), 2025);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("Europe/Berlin"));
  EXPECT_EQ(calendar->timeZone()->name(), "Europe/Berlin");
  EXPECT_EQ(calendar->component(NSCalendarUnitYear, date), 2026);
  calendar->setTimeZone(nullptr);
  EXPECT_EQ(calendar->timeZone()->name(), "GMT");
  EXPECT_EQ(calendar->component(NSCalendarUnitYear, date), 2025);
}

TEST_F(NSCalendarTest, IsMadeInTheDefaultTimeZone) {
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("Pacific/Kiritimati"));
  EXPECT_EQ(gregorian()->timeZone()->name(), "Pacific/Kiritimati");
  EXPECT_EQ(yearOf(kStartOf2026 - 14 * kHour), 2026);
}

TEST_F(NSCalendarTest, HasTheCalendarsThatItKnows) {
  struct Row {
    std::string_view identifier;
    long year;  ///< of 1 January 2026 in the Gregorian calendar
  };
  const Row rows[] = {{NSCalendarIdentifierGregorian, 2026},
                      {NSCalendarIdentifierBuddhist, 2569},
                      {NSCalendarIdentifierChinese, 42},
                      {NSCalendarIdentifierCoptic, 1742},
                      {NSCalendarIdentifierEthiopicAmeteMihret, 2018},
                      {NSCalendarIdentifierEthiopicAmeteAlem, 7518},
                      {NSCalendarIdentifierHebrew, 5786},
                      {NSCalendarIdentifierIndian, 1947},
                      {NSCalendarIdentifierIslamic, 1447},
                      {NSCalendarIdentifierIslamicCivil, 1447},
                      {NSCalendarIdentifierIslamicTabular, 1447},
                      {NSCalendarIdentifierIslamicUmmAlQura, 1447},
                      {NSCalendarIdentifierJapanese, 8},
                      {NSCalendarIdentifierPersian, 1404},
                      {NSCalendarIdentifierRepublicOfChina, 115}};
  const auto date = NSDate::dateWithTimeIntervalSince1970(kStartOf2026);
  for (const Row& row : rows) {
    const auto calendar = NSCalendar::calendarWithIdentifier(row.identifier);
    ASSERT_NE(calendar, nullptr) << row.identifier;
    EXPECT_EQ(calendar->calendarIdentifier(), row.identifier);
    EXPECT_EQ(calendar->component(NSCalendarUnitYear, date), row.year) << row.identifier;
  }
}

TEST_F(NSCalendarTest, HasNoCalendarOfAnotherIdentifier) {
  for (const char* identifier : {"", "julian", "Gregorian", "gregorian;x=y", "\xFF"})
    EXPECT_EQ(NSCalendar::calendarWithIdentifier(identifier), nullptr) << identifier;
}

TEST_F(NSCalendarTest, AnAbsentOrEndlessDateHasNoFields) {
  EXPECT_EQ(gregorian()->component(NSCalendarUnitYear, nullptr), 0);
  EXPECT_EQ(yearOf(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(yearOf(std::numeric_limits<double>::infinity()), 0);
}

TEST_F(NSCalendarTest, RaisesForWhatIsNoSingleUnit) {
  try {
    gregorian()->component(NSCalendarUnit{}, NSDate::date());
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
  }
}

TEST_F(NSCalendarTest, AnswersMessages) {
  const auto date = NSDate::dateWithTimeIntervalSince1970(kStartOf2026);
  EXPECT_EQ(send<long>(gregorian(), SEL("component:fromDate:"), NSCalendarUnitYear, date), 2026);
  EXPECT_EQ(send<std::string>(gregorian(), SEL("calendarIdentifier")), "gregorian");
  const auto components = std::make_shared<NSDateComponents>();
  components->setDay(1);
  const auto next = send<Ref<NSDate>>(gregorian(), SEL("dateByAddingComponents:toDate:options:"),
                                      components, date, 0UL);
  EXPECT_EQ(next->timeIntervalSince1970(), kStartOf2026 + 24 * kHour);
}

TEST_F(NSCalendarTest, TellsSeveralFieldsAtOnce) {
  const auto date = NSDate::dateWithTimeIntervalSince1970(kStartOf2026 + 90061);
  const auto some = gregorian()->components(NSCalendarUnitYear | NSCalendarUnitDay, date);
  EXPECT_EQ(some->year(), 2026);
  EXPECT_EQ(some->day(), 2);
  EXPECT_EQ(some->month(), NSDateComponentUndefined);
  const auto all = gregorian()->components(static_cast<NSCalendarUnit>(~0UL), date);
  EXPECT_EQ(all->era(), 1);
  EXPECT_EQ(all->month(), 1);
  EXPECT_EQ(all->weekOfYear(), 1);
  EXPECT_EQ(all->weekday(), 6);
  EXPECT_EQ(all->hour(), 1);
  EXPECT_EQ(all->minute(), 1);
  EXPECT_EQ(all->second(), 1);
  EXPECT_EQ(gregorian()->components(NSCalendarUnitYear, nullptr), nullptr);
}

TEST_F(NSCalendarTest, WeekdaysAreNumberedFromSundayWhateverWeeksBeginWith) {
  const auto calendar = gregorian();
  const auto thursday = NSDate::dateWithTimeIntervalSince1970(kStartOf2026);
  EXPECT_EQ(calendar->firstWeekday(), 1U);
  for (unsigned long first = 1; first <= 7; ++first) {
    calendar->setFirstWeekday(first);
    EXPECT_EQ(calendar->firstWeekday(), first);
    EXPECT_EQ(calendar->component(NSCalendarUnitWeekday, thursday), 5) << first;
  }
  EXPECT_THROW(calendar->setFirstWeekday(0), NSException);
  EXPECT_THROW(calendar->setFirstWeekday(8), NSException);
  EXPECT_EQ(calendar->firstWeekday(), 7U);
}

/// Adding to dates of a time zone.
class CalendarAdditionTest : public testing::Test {
 protected:
  static std::string sum(const ZonedDates& dates, const char* date,
                         const Ref<NSDateComponents>& components) {
    const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
    calendar->setTimeZone(dates.zone());
    const auto start = dates.date(date);
    return dates.text(calendar->dateByAddingComponents(components, start));
  }

  static Ref<NSDateComponents> days(long count) {
    const auto components = std::make_shared<NSDateComponents>();
    components->setDay(count);
    return components;
  }

  const ZonedDates newYork_{"America/New_York"};
};

TEST_F(CalendarAdditionTest, AMonthEndsWithItsLastDay) {
  const auto month = std::make_shared<NSDateComponents>();
  month->setMonth(1);
  EXPECT_EQ(sum(newYork_, "2024-01-31 12:00:00 -0500", month), "2024-02-29 12:00:00 -0500");
  EXPECT_EQ(sum(newYork_, "2023-01-31 12:00:00 -0500", month), "2023-02-28 12:00:00 -0500");
  EXPECT_EQ(sum(newYork_, "2023-12-31 12:00:00 -0500", month), "2024-01-31 12:00:00 -0500");
  const auto year = std::make_shared<NSDateComponents>();
  year->setYear(-1);
  EXPECT_EQ(sum(newYork_, "2024-02-29 12:00:00 -0500", year), "2023-02-28 12:00:00 -0500");
}

TEST_F(CalendarAdditionTest, ATimeThatIsLeftOutMovesOn) {
  EXPECT_EQ(sum(newYork_, "2024-03-09 02:30:00 -0500", days(1)), "2024-03-10 03:30:00 -0400");
  EXPECT_EQ(sum(newYork_, "2024-03-11 02:30:00 -0400", days(-1)), "2024-03-10 03:30:00 -0400");
  const ZonedDates beirut("Asia/Beirut");
  EXPECT_EQ(sum(beirut, "2024-03-30 00:00:00 +0200", days(1)), "2024-03-31 01:00:00 +0300");
}

TEST_F(CalendarAdditionTest, OfATimeShownTwiceItIsTheOneWithTheSameDistanceFromUTC) {
  EXPECT_EQ(sum(newYork_, "2024-11-02 01:30:00 -0400", days(1)), "2024-11-03 01:30:00 -0400");
  EXPECT_EQ(sum(newYork_, "2024-11-04 01:30:00 -0500", days(-1)), "2024-11-03 01:30:00 -0500");
}

TEST_F(CalendarAdditionTest, DaysKeepTheTimeOfDayAcrossAChangeOfTheClock) {
  EXPECT_EQ(sum(newYork_, "2024-03-09 12:00:00 -0500", days(1)), "2024-03-10 12:00:00 -0400");
  EXPECT_EQ(sum(newYork_, "2024-11-02 12:00:00 -0400", days(1)), "2024-11-03 12:00:00 -0500");
  EXPECT_EQ(sum(newYork_, "2024-03-09 12:00:00 -0500", days(0)), "2024-03-09 12:00:00 -0500");
}

TEST_F(CalendarAdditionTest, LargeUnitsComeFirst) {
  const auto components = days(-2);
  components->setWeekOfYear(-1);
  EXPECT_EQ(sum(newYork_, "2024-03-12 02:30:00 -0400", components), "2024-03-03 02:30:00 -0500");
  const auto monthAndDay = days(1);
  monthAndDay->setMonth(1);
  EXPECT_EQ(sum(newYork_, "2024-01-30 12:00:00 -0500", monthAndDay), "2024-03-01 12:00:00 -0500");
}

TEST_F(CalendarAdditionTest, HoursMinutesAndSecondsAreTimesWhateverTheClockShows) {
  const auto time = std::make_shared<NSDateComponents>();
  time->setHour(1);
  time->setMinute(1);
  time->setSecond(-61);
  EXPECT_EQ(sum(newYork_, "2024-03-10 01:30:00 -0500", time), "2024-03-10 03:29:59 -0400");
}

TEST_F(CalendarAdditionTest, ADayThatADateLineLeftOutIsTheNextOne) {
  const ZonedDates apia("Pacific/Apia");
  const std::tuple<const char*, long, const char*> rows[] = {
      {"2011-12-29 12:00:00 -1000", 1, "2011-12-31 12:00:00 +1400"},
      {"2011-12-29 12:00:00 -1000", 2, "2011-12-31 12:00:00 +1400"},
      {"2011-12-29 12:00:00 -1000", 3, "2012-01-01 12:00:00 +1400"},
      {"2011-12-31 12:00:00 +1400", -1, "2011-12-31 12:00:00 +1400"},
      {"2011-12-31 12:00:00 +1400", -2, "2011-12-29 12:00:00 -1000"},
      {"2012-01-05 12:00:00 +1400", -10, "2011-12-26 12:00:00 -1000"},
  };
  for (const auto& [start, count, expected] : rows)
    EXPECT_EQ(sum(apia, start, days(count)), expected) << start << " " << count;
}

TEST_F(CalendarAdditionTest, ATimeLeftOutAtTheEndOfADayIsOnTheNext) {
  const ZonedDates pyongyang("Asia/Pyongyang");  // 4 May 2018 ended at 23:30
  EXPECT_EQ(sum(pyongyang, "2018-05-03 23:45:00 +0830", days(1)), "2018-05-05 00:15:00 +0900");
  EXPECT_EQ(sum(pyongyang, "2018-05-05 23:45:00 +0900", days(-1)), "2018-05-05 00:15:00 +0900");
}

TEST_F(CalendarAdditionTest, NothingSetAndWeekdaysAddNothing) {
  const auto components = std::make_shared<NSDateComponents>();
  EXPECT_EQ(sum(newYork_, "2024-01-31 12:00:00 -0500", components), "2024-01-31 12:00:00 -0500");
  components->setWeekday(3);
  EXPECT_EQ(sum(newYork_, "2024-01-31 12:00:00 -0500", components), "2024-01-31 12:00:00 -0500");
}

TEST_F(CalendarAdditionTest, KeepsFractionsOfASecond) {
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  for (const double seconds : {0.1234567, -0.25, 123456789.0000001, -987654321.75}) {
    const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    const auto there = calendar->dateByAddingComponents(days(7), date);
    const auto back = calendar->dateByAddingComponents(days(-7), there);
    EXPECT_NEAR(back->timeIntervalSinceReferenceDate(), seconds, 1e-9);
  }
}

TEST_F(CalendarAdditionTest, WhatIsOutOfReachIsAbsent) {
  constexpr long kMost = std::numeric_limits<long>::max() - 1;
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(0);
  for (const auto set :
       {&NSDateComponents::setEra, &NSDateComponents::setYear, &NSDateComponents::setMonth,
        &NSDateComponents::setWeekOfYear, &NSDateComponents::setDay, &NSDateComponents::setHour,
        &NSDateComponents::setMinute, &NSDateComponents::setSecond}) {
    for (const long amount : {kMost, -kMost, std::numeric_limits<long>::min()}) {
      const auto components = std::make_shared<NSDateComponents>();
      (*components.*set)(amount);
      EXPECT_EQ(calendar->dateByAddingComponents(components, date), nullptr);
      EXPECT_EQ(calendar->dateFromComponents(components), nullptr);
    }
  }
  const auto far = NSDate::dateWithTimeIntervalSinceReferenceDate(1.9999e13);
  EXPECT_NE(calendar->dateByAddingComponents(days(1), far), nullptr);
  EXPECT_EQ(calendar->dateByAddingComponents(days(20'000'000), far), nullptr);
  EXPECT_EQ(calendar->dateByAddingComponents(days(1), nullptr), nullptr);
  EXPECT_EQ(calendar->dateByAddingComponents(nullptr, date), nullptr);
  EXPECT_EQ(calendar->component(NSCalendarUnitYear, date), 2001);
}

TEST_F(CalendarAdditionTest, RaisesForOptions) {
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  EXPECT_THROW(calendar->dateByAddingComponents(days(1), NSDate::date(), 1), NSException);
}

/// The date that fields name.
class CalendarFieldsTest : public testing::Test {
 protected:
  static std::string made(const ZonedDates& dates, std::array<long, 6> fields) {
    const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
    calendar->setTimeZone(dates.zone());
    const auto components = std::make_shared<NSDateComponents>();
    components->setYear(fields[0]);
    components->setMonth(fields[1]);
    components->setDay(fields[2]);
    components->setHour(fields[3]);
    components->setMinute(fields[4]);
    components->setSecond(fields[5]);
    return dates.text(calendar->dateFromComponents(components));
  }
};

TEST_F(CalendarFieldsTest, MakeADate) {
  const ZonedDates newYork("America/New_York");
  EXPECT_EQ(made(newYork, {2024, 2, 29, 13, 14, 15}), "2024-02-29 13:14:15 -0500");
  EXPECT_EQ(made(newYork, {2024, 13, 0, 0, 0, -1}), "2024-12-30 23:59:59 -0500");
}

TEST_F(CalendarFieldsTest, OfTheClockReachAsFarAsTheirUnits) {
  const ZonedDates utc("GMT");
  EXPECT_EQ(made(utc, {2001, 1, 1, 0, 0, 2'000'000'000}), "2064-05-18 03:33:20 +0000");
  EXPECT_EQ(made(utc, {2001, 1, 1, 0, 1'000'000'000, 0}), "3902-04-30 10:40:00 +0000");
  EXPECT_EQ(made(utc, {2001, 1, 1, 1'000'000'000, 0, 0}), "116080-06-16 16:00:00 +0000");
}

TEST_F(CalendarFieldsTest, ThatNameATimeShownTwiceMeanTheLaterOne) {
  EXPECT_EQ(made(ZonedDates("America/New_York"), {2024, 11, 3, 1, 30, 0}),
            "2024-11-03 01:30:00 -0500");
}

TEST_F(CalendarFieldsTest, ThatNameAMidnightLeftOutMeanOneOClock) {
  EXPECT_EQ(made(ZonedDates("America/Havana"), {2024, 3, 10, 0, 0, 0}),
            "2024-03-10 01:00:00 -0400");
  EXPECT_EQ(made(ZonedDates("Asia/Beirut"), {2024, 3, 31, 0, 0, 0}), "2024-03-31 01:00:00 +0300");
}

TEST_F(CalendarFieldsTest, CountAsTheFirstWhereTheyAreNotSet) {
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  const ZonedDates utc("GMT");
  calendar->setTimeZone(utc.zone());
  const auto components = std::make_shared<NSDateComponents>();
  EXPECT_EQ(utc.text(calendar->dateFromComponents(components)), "0001-01-01 00:00:00 +0000");
  components->setYear(2024);
  EXPECT_EQ(utc.text(calendar->dateFromComponents(components)), "2024-01-01 00:00:00 +0000");
  components->setWeekOfYear(10);
  components->setWeekday(3);
  EXPECT_EQ(utc.text(calendar->dateFromComponents(components)), "2024-03-05 00:00:00 +0000");
  EXPECT_EQ(calendar->dateFromComponents(nullptr), nullptr);
}

TEST_F(CalendarFieldsTest, OfADateMakeItsDayInEveryCalendar) {
  constexpr double kDay = 86400;
  constexpr auto kUnits =
      NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
  for (const auto identifier : {NSCalendarIdentifierGregorian, NSCalendarIdentifierBuddhist,
                                NSCalendarIdentifierChinese, NSCalendarIdentifierHebrew,
                                NSCalendarIdentifierIslamicUmmAlQura, NSCalendarIdentifierJapanese,
                                NSCalendarIdentifierPersian, NSCalendarIdentifierRepublicOfChina}) {
    const auto calendar = NSCalendar::calendarWithIdentifier(identifier);
    calendar->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
    for (double day = -1300 * 365; day < 80 * 365; day += day < 0 ? 97 : 7) {
      const auto date = NSDate::dateWithTimeIntervalSince1970(day * kDay);
      const auto made = calendar->dateFromComponents(calendar->components(kUnits, date));
      ASSERT_TRUE(objectsAreEqual(made, date)) << identifier << " " << day;
    }
  }
}

TEST_F(CalendarFieldsTest, TellALeapMonthOfTheChineseCalendar) {
  const ZonedDates dates("Asia/Shanghai");
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierChinese);
  calendar->setTimeZone(dates.zone());
  const auto fields = [&](const char* date) {
    return calendar->components(NSCalendarUnitMonth | NSCalendarUnitDay, dates.date(date));
  };
  const auto second = fields("2023-03-01 12:00:00 +0800");
  const auto leap = fields("2023-04-01 12:00:00 +0800");
  EXPECT_EQ(second->month(), 2);
  EXPECT_FALSE(second->isLeapMonth());
  EXPECT_EQ(leap->month(), 2);
  EXPECT_TRUE(leap->isLeapMonth());
}

TEST_F(NSCalendarTest, TellsTheDaysOfAMonthAndOfAYear) {
  const ZonedDates utc("GMT");
  const auto date = utc.date("2012-02-10 12:00:00 +0000");
  const auto day = NSCalendarUnitDay;
  EXPECT_EQ(gregorian()->rangeOfUnit(day, NSCalendarUnitMonth, date), (NSRange{1, 29}));
  EXPECT_EQ(gregorian()->rangeOfUnit(day, NSCalendarUnitYear, date), (NSRange{1, 366}));
  EXPECT_EQ(
      gregorian()->rangeOfUnit(day, NSCalendarUnitMonth, utc.date("2013-02-10 12:00:00 +0000")),
      (NSRange{1, 28}));
}

TEST_F(NSCalendarTest, HasNoOtherRange) {
  const NSRange none{NSNotFound, NSNotFound};
  const auto date = NSDate::date();
  EXPECT_EQ(gregorian()->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitWeekOfYear, date), none);
  EXPECT_EQ(gregorian()->rangeOfUnit(NSCalendarUnitHour, NSCalendarUnitDay, date), none);
  EXPECT_EQ(gregorian()->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, nullptr), none);
}

TEST_F(NSCalendarTest, TheCurrentOneIsThatOfTheCurrentLocale) {
  struct Row {
    const char* locale;
    std::string_view identifier;
    unsigned long firstWeekday;
  };
  const Row rows[] = {{"en_US", NSCalendarIdentifierGregorian, 1},
                      {"de_DE", NSCalendarIdentifierGregorian, 2},
                      {"th_TH", NSCalendarIdentifierBuddhist, 1},
                      {"fa_IR", NSCalendarIdentifierPersian, 7},
                      {"th_TH@calendar=gregorian", NSCalendarIdentifierGregorian, 1},
                      {"no such", NSCalendarIdentifierGregorian, 2},
                      {"en_US_POSIX", NSCalendarIdentifierGregorian, 1}};
  for (const Row& row : rows) {
    NSLocale::setCurrentLocaleIdentifier(row.locale);
    const auto calendar = NSCalendar::currentCalendar();
    EXPECT_EQ(calendar->calendarIdentifier(), row.identifier) << row.locale;
    EXPECT_EQ(calendar->firstWeekday(), row.firstWeekday) << row.locale;
    EXPECT_EQ(calendar->timeZone()->name(), "GMT");
  }
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
}

TEST_F(NSCalendarTest, HasNoFieldsForDatesOutOfReach) {
  for (const double seconds : {1e300, -1e300, 2.1e13, -2.1e13}) {
    EXPECT_EQ(yearOf(seconds), 0) << seconds;
    const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_EQ(gregorian()->components(NSCalendarUnitYear, date), nullptr);
  }
  EXPECT_EQ(yearOf(1.9e13), 604056);
}

}  // namespace
}  // namespace rvf
