// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSCalendar-RVFExtensions.h"

#include <gtest/gtest.h>
#include <unicode/calendar.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/Platform/Time/ZonedDates.h"

namespace rvf {
namespace {

using Period = decltype(&RVF_firstDayOfWeekForDate);

struct Row {
  Period period;
  const char* date;
  const char* result;
};

Ref<NSCalendar> calendarIn(const Ref<NSTimeZone>& zone,
                           std::string_view identifier = NSCalendarIdentifierGregorian) {
  auto calendar = NSCalendar::calendarWithIdentifier(identifier);
  calendar->setTimeZone(zone);
  return calendar;
}

void expectRows(const char* zone, std::initializer_list<Row> rows) {
  const ZonedDates dates(zone);
  const auto calendar = calendarIn(dates.zone());
  for (const Row& row : rows)
    EXPECT_EQ(dates.text(row.period(calendar, dates.date(row.date))), row.result) << row.date;
}

TEST(NSCalendar_RVFExtensions, WeeksKeepTheTimeOfDay) {
  // A Wednesday.
  constexpr const char* kDate = "2013-05-15 17:18:19 +0000";
  expectRows("GMT", {{&RVF_firstDayOfWeekForDate, kDate, "2013-05-12 17:18:19 +0000"},
                     {&RVF_firstDayOfPreviousWeekForDate, kDate, "2013-05-05 17:18:19 +0000"},
                     {&RVF_lastDayOfPreviousWeekForDate, kDate, "2013-05-11 17:18:19 +0000"},
                     {&RVF_firstDayOfNextWeekForDate, kDate, "2013-05-19 17:18:19 +0000"},
                     {&RVF_lastDayOfNextWeekForDate, kDate, "2013-05-25 17:18:19 +0000"}});
}

TEST(NSCalendar_RVFExtensions, AWeekIsFromSundayToSaturday) {
  expectRows(
      "GMT",
      {{&RVF_firstDayOfWeekForDate, "2013-05-12 00:00:00 +0000", "2013-05-12 00:00:00 +0000"},
       {&RVF_firstDayOfWeekForDate, "2013-05-18 23:59:59 +0000", "2013-05-12 23:59:59 +0000"},
       {&RVF_lastDayOfPreviousWeekForDate, "2013-05-12 00:00:00 +0000",
        "2013-05-11 00:00:00 +0000"},
       {&RVF_firstDayOfNextWeekForDate, "2013-05-18 23:59:59 +0000", "2013-05-19 23:59:59 +0000"}});
}

TEST(NSCalendar_RVFExtensions, WeeksBeginOnSundayWhateverFirstWeekdayIsSet) {
  const ZonedDates dates("GMT");
  const auto calendar = calendarIn(dates.zone());
  const auto wednesday = dates.date("2013-05-15 12:00:00 +0000");
  for (unsigned long first = 1; first <= 7; ++first) {
    calendar->setFirstWeekday(first);
    EXPECT_EQ(dates.text(RVF_firstDayOfWeekForDate(calendar, wednesday)),
              "2013-05-12 12:00:00 +0000")
        << first;
    EXPECT_EQ(dates.text(RVF_lastDayOfNextWeekForDate(calendar, wednesday)),
              "2013-05-25 12:00:00 +0000")
        << first;
  }
}

TEST(NSCalendar_RVFExtensions, ALeapFebruaryHas29Days) {
  constexpr const char* kDate = "2012-02-10 17:18:19 +0000";
  expectRows("GMT", {{&RVF_firstDayOfCurrentMonthForDate, kDate, "2012-02-01 17:18:19 +0000"},
                     {&RVF_lastDayOfCurrentMonthForDate, kDate, "2012-02-29 17:18:19 +0000"},
                     {&RVF_lastDayOfPreviousMonthForDate, kDate, "2012-01-31 17:18:19 +0000"},
                     {&RVF_firstDayOfPreviousMonthForDate, kDate, "2012-01-01 17:18:19 +0000"},
                     {&RVF_firstDayOfNextMonthForDate, kDate, "2012-03-01 17:18:19 +0000"},
                     {&RVF_lastDayOfNextMonthForDate, kDate, "2012-03-31 17:18:19 +0000"}});
}

TEST(NSCalendar_RVFExtensions, TheLastDayOfALongMonthLiesInTheRightMonths) {
  expectRows(
      "GMT",
      {{&RVF_firstDayOfNextMonthForDate, "2013-01-31 12:00:00 +0000", "2013-02-01 12:00:00 +0000"},
       {&RVF_lastDayOfNextMonthForDate, "2013-01-31 12:00:00 +0000", "2013-02-28 12:00:00 +0000"},
       {&RVF_firstDayOfPreviousMonthForDate, "2013-03-31 12:00:00 +0000",
        "2013-02-01 12:00:00 +0000"},
       {&RVF_lastDayOfPreviousMonthForDate, "2013-03-31 12:00:00 +0000",
        "2013-02-28 12:00:00 +0000"},
       {&RVF_firstDayOfNextMonthForDate, "2013-12-31 12:00:00 +0000", "2014-01-01 12:00:00 +0000"},
       {&RVF_firstDayOfPreviousMonthForDate, "2013-01-01 12:00:00 +0000",
        "2012-12-01 12:00:00 +0000"}});
}

TEST(NSCalendar_RVFExtensions, YearsBeginAtMidnight) {
  for (const char* date :
       {"2013-01-01 00:00:00 +0000", "2013-06-15 17:18:19 +0000", "2013-12-31 23:59:59 +0000"}) {
    expectRows("GMT", {{&RVF_firstDayOfCurrentYearForDate, date, "2013-01-01 00:00:00 +0000"},
                       {&RVF_firstDayOfNextYearForDate, date, "2014-01-01 00:00:00 +0000"},
                       {&RVF_lastDayOfNextYearForDate, date, "2014-12-31 00:00:00 +0000"}});
  }
}

TEST(NSCalendar_RVFExtensions, AYearLiesAnyNumberOfYearsAway) {
  const ZonedDates dates("America/New_York");
  const auto calendar = calendarIn(dates.zone());
  const auto date = dates.date("2013-06-15 17:18:19 -0400");
  const std::pair<long, const char*> rows[] = {{0, "2013-01-01 00:00:00 -0500"},
                                               {1, "2014-01-01 00:00:00 -0500"},
                                               {-1, "2012-01-01 00:00:00 -0500"},
                                               {-13, "2000-01-01 00:00:00 -0500"},
                                               {87, "2100-01-01 00:00:00 -0500"}};
  for (const auto& [delta, result] : rows)
    EXPECT_EQ(dates.text(RVF_firstDayOfYearWithDelta(calendar, delta, date)), result);
  for (const long delta :
       {std::numeric_limits<long>::max(), std::numeric_limits<long>::min(), 1'000'000L})
    EXPECT_EQ(RVF_firstDayOfYearWithDelta(calendar, delta, date), nullptr) << delta;
}

TEST(NSCalendar_RVFExtensions, WeeksAreAddedBeforeDays) {
  expectRows("America/New_York", {{&RVF_firstDayOfPreviousWeekForDate, "2024-03-12 02:30:00 -0400",
                                   "2024-03-03 02:30:00 -0500"}});
}

TEST(NSCalendar_RVFExtensions, ATimeOfDayThatIsLeftOutMovesOn) {
  expectRows("America/New_York", {{&RVF_firstDayOfWeekForDate, "2024-03-12 02:30:00 -0400",
                                   "2024-03-10 03:30:00 -0400"}});
  expectRows("America/Havana", {{&RVF_firstDayOfWeekForDate, "2024-03-12 00:00:00 -0400",
                                 "2024-03-10 01:00:00 -0400"}});
}

TEST(NSCalendar_RVFExtensions, MonthsAreRightWhereADayWasLeftOut) {
  // There was no 30 December 2011.
  expectRows(
      "Pacific/Apia",
      {{&RVF_firstDayOfNextMonthForDate, "2011-12-15 12:00:00 -1000", "2012-01-01 12:00:00 +1400"},
       {&RVF_lastDayOfCurrentMonthForDate, "2011-12-15 12:00:00 -1000",
        "2011-12-31 12:00:00 +1400"},
       {&RVF_firstDayOfPreviousMonthForDate, "2012-01-05 12:00:00 +1400",
        "2011-12-01 12:00:00 -1000"},
       {&RVF_firstDayOfWeekForDate, "2011-12-31 12:00:00 +1400", "2011-12-25 12:00:00 -1000"}});
}

TEST(NSCalendar_RVFExtensions, NoDateOrCalendarHasNoPeriods) {
  const auto calendar = calendarIn(NSTimeZone::timeZoneWithName("GMT"));
  for (const Period period : {&RVF_firstDayOfWeekForDate, &RVF_firstDayOfPreviousWeekForDate,
                              &RVF_lastDayOfPreviousWeekForDate, &RVF_firstDayOfNextWeekForDate,
                              &RVF_lastDayOfNextWeekForDate, &RVF_firstDayOfCurrentMonthForDate,
                              &RVF_lastDayOfCurrentMonthForDate, &RVF_lastDayOfPreviousMonthForDate,
                              &RVF_firstDayOfPreviousMonthForDate, &RVF_firstDayOfNextMonthForDate,
                              &RVF_lastDayOfNextMonthForDate, &RVF_firstDayOfCurrentYearForDate,
                              &RVF_firstDayOfNextYearForDate, &RVF_lastDayOfNextYearForDate}) {
    EXPECT_EQ(period(calendar, nullptr), nullptr);
    EXPECT_EQ(period(nullptr, NSDate::date()), nullptr);
  }
}

/// The library's own calendar, asked as its documentation says.
class RawCalendar final {
 public:
  RawCalendar(const char* locale, const char* zone) {
    calendar_.reset(icu::Calendar::createInstance(icu::TimeZone::createTimeZone(zone),
                                                  icu::Locale(locale), status_));
  }

  std::int32_t get(double date, UCalendarDateFields field) {
    calendar_->setTime(date * 1000, status_);
    return calendar_->get(field, status_);
  }
  std::int32_t monthLength(double date) {
    calendar_->setTime(date * 1000, status_);
    return calendar_->getActualMaximum(UCAL_DATE, status_);
  }
  double plusDays(double date, std::int32_t days) {
    calendar_->setTime(date * 1000, status_);
    calendar_->add(UCAL_DATE, days, status_);
    return calendar_->getTime(status_) / 1000;
  }
  double plusWeeksAndDays(double date, std::int32_t weeks, std::int32_t days) {
    calendar_->setTime(date * 1000, status_);
    calendar_->add(UCAL_WEEK_OF_YEAR, weeks, status_);
    calendar_->add(UCAL_DATE, days, status_);
    return calendar_->getTime(status_) / 1000;
  }
  double yearStart(double date, std::int32_t delta) {
    const std::int32_t year = get(date, UCAL_YEAR) + delta;
    calendar_->clear();
    calendar_->set(year, 0, 1);
    return calendar_->getTime(status_) / 1000;
  }
  bool isGood() const { return U_SUCCESS(status_); }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar_;
};

double seconds(const Ref<NSDate>& date) {
  return date->timeIntervalSince1970();
}

/// Weeks of the calendar begin on Monday when they are numbered, which is not to matter.
class OtherCalendarsTest : public testing::TestWithParam<const char*> {
 protected:
  OtherCalendarsTest() { calendar_->setFirstWeekday(2); }
  ~OtherCalendarsTest() override { EXPECT_TRUE(raw_.isGood()); }

  static std::vector<double> dates() {
    constexpr double kStep = 3.37 * 86400;
    std::vector<double> dates;
    for (double start = 915148800; start < 1988150400; start += kStep)  // 1999 to 2032
      dates.push_back(std::floor(start));
    return dates;
  }

  const Ref<NSCalendar> calendar_ =
      calendarIn(NSTimeZone::timeZoneWithName("Asia/Jerusalem"), GetParam());
  RawCalendar raw_{(std::string("@calendar=") + GetParam()).c_str(), "Asia/Jerusalem"};
};

TEST_P(OtherCalendarsTest, HaveTheWeeksOfTheLibrarysOwn) {
  for (const double date : dates()) {
    const auto ours = NSDate::dateWithTimeIntervalSince1970(date);
    const auto weekday = raw_.get(date, UCAL_DAY_OF_WEEK);
    const double firstOfNext = raw_.plusWeeksAndDays(date, 1, 1 - weekday);
    ASSERT_EQ(seconds(RVF_firstDayOfWeekForDate(calendar_, ours)),
              raw_.plusDays(date, 1 - weekday));
    ASSERT_EQ(seconds(RVF_firstDayOfPreviousWeekForDate(calendar_, ours)),
              raw_.plusWeeksAndDays(date, -1, 1 - weekday));
    ASSERT_EQ(seconds(RVF_lastDayOfPreviousWeekForDate(calendar_, ours)),
              raw_.plusDays(date, -weekday));
    ASSERT_EQ(seconds(RVF_firstDayOfNextWeekForDate(calendar_, ours)), firstOfNext);
    ASSERT_EQ(seconds(RVF_lastDayOfNextWeekForDate(calendar_, ours)),
              raw_.plusWeeksAndDays(firstOfNext, 1, -1));
  }
}

TEST_P(OtherCalendarsTest, HaveTheMonthsOfTheLibrarysOwn) {
  for (const double date : dates()) {
    const auto ours = NSDate::dateWithTimeIntervalSince1970(date);
    const auto day = raw_.get(date, UCAL_DATE);
    const double lastOfPrevious = raw_.plusDays(date, -day);
    const double firstOfNext = raw_.plusDays(date, raw_.monthLength(date) + 1 - day);
    ASSERT_EQ(seconds(RVF_firstDayOfCurrentMonthForDate(calendar_, ours)),
              raw_.plusDays(date, 1 - day));
    ASSERT_EQ(seconds(RVF_lastDayOfCurrentMonthForDate(calendar_, ours)),
              raw_.plusDays(date, raw_.monthLength(date) - day));
    ASSERT_EQ(seconds(RVF_lastDayOfPreviousMonthForDate(calendar_, ours)), lastOfPrevious);
    ASSERT_EQ(seconds(RVF_firstDayOfPreviousMonthForDate(calendar_, ours)),
              raw_.plusDays(lastOfPrevious, 1 - raw_.get(lastOfPrevious, UCAL_DATE)));
    ASSERT_EQ(seconds(RVF_firstDayOfNextMonthForDate(calendar_, ours)), firstOfNext);
    ASSERT_EQ(seconds(RVF_lastDayOfNextMonthForDate(calendar_, ours)),
              raw_.plusDays(firstOfNext,
                            raw_.monthLength(firstOfNext) - raw_.get(firstOfNext, UCAL_DATE)));
  }
}

TEST_P(OtherCalendarsTest, HaveTheYearsOfTheLibrarysOwn) {
  for (const double date : dates()) {
    const auto ours = NSDate::dateWithTimeIntervalSince1970(date);
    const double next = raw_.yearStart(date, 1);
    ASSERT_EQ(seconds(RVF_firstDayOfYearWithDelta(calendar_, -2, ours)), raw_.yearStart(date, -2));
    ASSERT_EQ(seconds(RVF_firstDayOfCurrentYearForDate(calendar_, ours)), raw_.yearStart(date, 0));
    ASSERT_EQ(seconds(RVF_firstDayOfNextYearForDate(calendar_, ours)), next);
    ASSERT_EQ(seconds(RVF_lastDayOfNextYearForDate(calendar_, ours)),
              raw_.plusDays(raw_.yearStart(next, 1), -1));
  }
}

INSTANTIATE_TEST_SUITE_P(Calendars, OtherCalendarsTest,
                         testing::Values("gregorian", "buddhist", "hebrew", "persian",
                                         "islamic-umalqura"));

TEST(NSCalendar_RVFExtensions, APeriodOfTheBuddhistCalendarIsThatOfTheGregorian) {
  const ZonedDates dates("Asia/Bangkok");
  const auto calendar = calendarIn(dates.zone(), NSCalendarIdentifierBuddhist);
  const auto date = dates.date("2024-02-10 12:00:00 +0700");
  EXPECT_EQ(dates.text(RVF_lastDayOfCurrentMonthForDate(calendar, date)),
            "2024-02-29 12:00:00 +0700");
  EXPECT_EQ(dates.text(RVF_firstDayOfNextYearForDate(calendar, date)), "2025-01-01 00:00:00 +0700");
}

TEST(NSCalendar_RVFExtensions, APeriodOfTheHebrewCalendarIsItsOwn) {
  const ZonedDates dates("Asia/Jerusalem");
  const auto calendar = calendarIn(dates.zone(), NSCalendarIdentifierHebrew);
  const auto date = dates.date("2024-02-20 12:00:00 +0200");  // 11 Adar I 5784
  EXPECT_EQ(dates.text(RVF_firstDayOfCurrentMonthForDate(calendar, date)),
            "2024-02-10 12:00:00 +0200");
  EXPECT_EQ(dates.text(RVF_lastDayOfCurrentMonthForDate(calendar, date)),
            "2024-03-10 12:00:00 +0200");
  EXPECT_EQ(dates.text(RVF_firstDayOfNextYearForDate(calendar, date)), "2024-10-03 00:00:00 +0300");
}

TEST(NSCalendar_RVFExtensions, AYearStaysInItsEra) {
  const ZonedDates dates("Asia/Tokyo");
  const auto calendar = calendarIn(dates.zone(), NSCalendarIdentifierJapanese);
  const auto heisei22 = dates.date("2010-06-15 12:00:00 +0900");
  EXPECT_EQ(dates.text(RVF_firstDayOfCurrentYearForDate(calendar, heisei22)),
            "2010-01-01 00:00:00 +0900");
  EXPECT_EQ(dates.text(RVF_firstDayOfNextYearForDate(calendar, heisei22)),
            "2011-01-01 00:00:00 +0900");
  EXPECT_EQ(dates.text(RVF_firstDayOfYearWithDelta(calendar, 12, heisei22)),
            "2022-01-01 00:00:00 +0900");
  EXPECT_EQ(dates.text(RVF_lastDayOfNextYearForDate(calendar, heisei22)),
            "2011-12-31 00:00:00 +0900");
}

TEST(NSCalendar_RVFExtensions, ChineseYearsGoOnAcrossTheirCyclesOfSixty) {
  const ZonedDates dates("Asia/Shanghai");
  const auto calendar = calendarIn(dates.zone(), NSCalendarIdentifierChinese);
  const auto date = dates.date("2024-06-15 12:00:00 +0800");
  const std::pair<long, const char*> rows[] = {{0, "2024-02-10 00:00:00 +0800"},
                                               {1, "2025-01-29 00:00:00 +0800"},
                                               {-40, "1984-02-02 00:00:00 +0800"},
                                               {-41, "1983-02-13 00:00:00 +0800"},
                                               {20, "2044-01-30 00:00:00 +0800"}};
  for (const auto& [delta, result] : rows)
    EXPECT_EQ(dates.text(RVF_firstDayOfYearWithDelta(calendar, delta, date)), result) << delta;
}

TEST(NSCalendar_RVFExtensions, YearsBeforeTheCommonEraGoOnTowardsIt) {
  const auto calendar = calendarIn(NSTimeZone::timeZoneWithName("GMT"));
  const auto ides = std::make_shared<NSDateComponents>();
  ides->setEra(0);
  ides->setYear(44);
  ides->setMonth(3);
  ides->setDay(15);
  const auto date = calendar->dateFromComponents(ides);
  struct Year {
    long delta, era, year;
  };
  for (const auto& [delta, era, year] :
       {Year{0, 0, 44}, Year{1, 0, 43}, Year{-1, 0, 45}, Year{43, 0, 1}, Year{44, 1, 1}}) {
    const auto fields = calendar->components(
        NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay,
        RVF_firstDayOfYearWithDelta(calendar, delta, date));
    EXPECT_EQ(std::make_tuple(fields->era(), fields->year(), fields->month(), fields->day()),
              std::make_tuple(era, year, 1L, 1L))
        << delta;
  }
}

TEST(NSCalendar_RVFExtensions, AYearMayBeginWithoutMidnight) {
  expectRows(
      "Asia/Kathmandu",
      {{&RVF_firstDayOfCurrentYearForDate, "1986-06-15 12:00:00 +0545",
        "1986-01-01 00:15:00 +0545"},
       {&RVF_firstDayOfNextYearForDate, "1985-06-15 12:00:00 +0530", "1986-01-01 00:15:00 +0545"},
       {&RVF_firstDayOfNextYearForDate, "1986-06-15 12:00:00 +0545", "1987-01-01 00:00:00 +0545"},
       {&RVF_lastDayOfNextYearForDate, "1984-06-15 12:00:00 +0530", "1985-12-31 00:15:00 +0530"},
       {&RVF_lastDayOfNextYearForDate, "1985-06-15 12:00:00 +0530", "1986-12-31 00:00:00 +0545"}});
}

}  // namespace
}  // namespace rvf
