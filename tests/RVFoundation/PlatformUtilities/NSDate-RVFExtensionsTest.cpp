// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSDate-RVFExtensions.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "Platform/Locale/NSLocale.h"
#include "tests/Platform/Time/ZonedDates.h"

namespace rvf {
namespace {

constexpr double kHour = 3600;

Ref<NSDate> moment(double secondsSince2001) {
  return NSDate::dateWithTimeIntervalSinceReferenceDate(secondsSince2001);
}

/// A device in a time zone, where it is now a certain time.
class NSDate_RVFExtensionsTest : public testing::Test {
 protected:
  NSDate_RVFExtensionsTest() {
    NSLocale::setCurrentLocaleIdentifier("en_US");
    setZone("GMT");
  }
  ~NSDate_RVFExtensionsTest() override {
    NSDate::setClock(nullptr);
    NSTimeZone::setDefaultTimeZone(nullptr);
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  }

  static void setZone(const char* zone) {
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(zone));
  }
  static void setNow(const Ref<NSDate>& now) {
    NSDate::setClock([now] { return now->timeIntervalSinceReferenceDate(); });
  }
  static std::string todayIn(const char* zone, const char* now) {
    setZone(zone);
    const ZonedDates dates(zone);
    setNow(dates.date(now));
    return dates.text(NSDate_RVFExtensions::RVF_today());
  }
  static bool isExpired(const char* zone, const char* date, const char* now) {
    setZone(zone);
    const ZonedDates dates(zone);
    setNow(dates.date(now));
    return RVF_isExpired(dates.date(date));
  }
};

TEST_F(NSDate_RVFExtensionsTest, WholeSecondsAreRoundedTowardsThePast) {
  const std::pair<double, double> rows[] = {{1.75, 1},   {1, 1},   {0.25, 0},
                                            {-0.25, -1}, {-1, -1}, {-1.5, -2}};
  for (const auto& [seconds, whole] : rows) {
    const auto date = RVF_dateWithNoFractionalSeconds(moment(seconds));
    EXPECT_EQ(date->timeIntervalSinceReferenceDate(), whole) << seconds;
  }
  EXPECT_EQ(RVF_dateWithNoFractionalSeconds(nullptr), nullptr);
}

TEST_F(NSDate_RVFExtensionsTest, TodayIsAtMidnight) {
  EXPECT_EQ(todayIn("GMT", "2024-03-01 14:05:09 +0000"), "2024-03-01 00:00:00 +0000");
  EXPECT_EQ(todayIn("Asia/Tokyo", "2024-03-01 00:00:00 +0900"), "2024-03-01 00:00:00 +0900");
  EXPECT_EQ(todayIn("America/New_York", "2024-03-10 23:59:59 -0400"), "2024-03-10 00:00:00 -0500");
}

TEST_F(NSDate_RVFExtensionsTest, TodayIsAtOneOClockWhereMidnightIsLeftOut) {
  EXPECT_EQ(todayIn("America/Havana", "2024-03-10 12:00:00 -0400"), "2024-03-10 01:00:00 -0400");
  EXPECT_EQ(todayIn("Asia/Beirut", "2024-03-31 12:00:00 +0300"), "2024-03-31 01:00:00 +0300");
}

TEST_F(NSDate_RVFExtensionsTest, TodayIsTheSameDayInEveryCalendar) {
  for (const char* locale :
       {"en_US", "th_TH", "fa_IR", "he_IL@calendar=hebrew", "ja_JP@calendar=japanese",
        "ar_SA@calendar=islamic-umalqura", "zh_CN@calendar=chinese", "zh_TW@calendar=roc"}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    EXPECT_EQ(todayIn("GMT", "2024-03-01 14:05:09 +0000"), "2024-03-01 00:00:00 +0000") << locale;
  }
}

TEST_F(NSDate_RVFExtensionsTest, TodayMayLieInALeapMonth) {
  NSLocale::setCurrentLocaleIdentifier("zh_CN@calendar=chinese");
  EXPECT_EQ(todayIn("Asia/Shanghai", "2023-04-01 12:00:00 +0800"), "2023-04-01 00:00:00 +0800");
  EXPECT_EQ(todayIn("Asia/Shanghai", "2023-03-01 12:00:00 +0800"), "2023-03-01 00:00:00 +0800");
}

TEST_F(NSDate_RVFExtensionsTest, TodayMayLieInAnEraThatEnded) {
  NSLocale::setCurrentLocaleIdentifier("ja_JP@calendar=japanese");
  EXPECT_EQ(todayIn("Asia/Tokyo", "2010-06-15 12:00:00 +0900"), "2010-06-15 00:00:00 +0900");
}

TEST_F(NSDate_RVFExtensionsTest, TheDayBeforeAndAfterAre86400SecondsAway) {
  EXPECT_EQ(RVF_dayBeforeDate(moment(0.5))->timeIntervalSinceReferenceDate(), -86399.5);
  EXPECT_EQ(RVF_dayAfterDate(moment(0.5))->timeIntervalSinceReferenceDate(), 86400.5);
  EXPECT_EQ(RVF_dayBeforeDate(nullptr), nullptr);
  EXPECT_EQ(RVF_dayAfterDate(nullptr), nullptr);
}

TEST_F(NSDate_RVFExtensionsTest, TheDayAfterIsAtAnotherTimeWhereTheClockChanges) {
  const ZonedDates newYork("America/New_York");
  setZone("America/New_York");
  EXPECT_EQ(newYork.text(RVF_dayAfterDate(newYork.date("2024-03-09 12:00:00 -0500"))),
            "2024-03-10 13:00:00 -0400");
  EXPECT_EQ(newYork.text(RVF_dayBeforeDate(newYork.date("2024-11-03 12:00:00 -0500"))),
            "2024-11-02 13:00:00 -0400");
}

TEST_F(NSDate_RVFExtensionsTest, BeforeAndAfterAreStrict) {
  EXPECT_TRUE(RVF_isBefore(moment(1), moment(2)));
  EXPECT_FALSE(RVF_isBefore(moment(2), moment(1)));
  EXPECT_TRUE(RVF_isAfter(moment(2), moment(1)));
  EXPECT_FALSE(RVF_isAfter(moment(1), moment(2)));
  EXPECT_FALSE(RVF_isBefore(moment(1), moment(1)));
  EXPECT_FALSE(RVF_isAfter(moment(1), moment(1)));
}

TEST_F(NSDate_RVFExtensionsTest, AnAbsentDateIsNeitherBeforeNorAfterNorExpired) {
  EXPECT_FALSE(RVF_isBefore(moment(1), nullptr));
  EXPECT_FALSE(RVF_isAfter(moment(1), nullptr));
  EXPECT_FALSE(RVF_isBefore(nullptr, moment(1)));
  EXPECT_FALSE(RVF_isAfter(nullptr, moment(1)));
  EXPECT_FALSE(RVF_isExpired(nullptr));
}

TEST_F(NSDate_RVFExtensionsTest, ADateExpiresADayLater) {
  setNow(moment(0));
  EXPECT_FALSE(RVF_isExpired(moment(-23 * kHour)));
  EXPECT_TRUE(RVF_isExpired(moment(-25 * kHour)));
  EXPECT_FALSE(RVF_isExpired(moment(-24 * kHour + 0.001)));
  EXPECT_TRUE(RVF_isExpired(moment(-24 * kHour)));
  EXPECT_FALSE(RVF_isExpired(moment(kHour)));
}

TEST_F(NSDate_RVFExtensionsTest, OnlyThePastBeyondEveryCalendarIsExpired) {
  using Limits = std::numeric_limits<double>;
  setNow(moment(0));
  for (const double past : {-2.1e13, -1e300, -Limits::infinity()})
    EXPECT_TRUE(RVF_isExpired(moment(past))) << past;
  for (const double other : {2.1e13, 1e300, Limits::infinity(), Limits::quiet_NaN()})
    EXPECT_FALSE(RVF_isExpired(moment(other))) << other;
}

TEST_F(NSDate_RVFExtensionsTest, TheDayToExpiryIsOneOfTheCalendar) {
  // 23 and 25 hours long.
  EXPECT_FALSE(
      isExpired("America/New_York", "2024-03-09 12:00:00 -0500", "2024-03-10 11:59:59 -0400"));
  EXPECT_TRUE(
      isExpired("America/New_York", "2024-03-09 12:00:00 -0500", "2024-03-10 12:00:00 -0400"));
  EXPECT_FALSE(
      isExpired("America/New_York", "2024-11-02 12:00:00 -0400", "2024-11-03 11:59:59 -0500"));
  EXPECT_TRUE(
      isExpired("America/New_York", "2024-11-02 12:00:00 -0400", "2024-11-03 12:00:00 -0500"));
}

}  // namespace
}  // namespace rvf
