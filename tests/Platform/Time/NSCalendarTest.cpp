// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSCalendar.h"

#include <gtest/gtest.h>

#include <limits>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"

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

TEST_F(NSCalendarTest, OnlyTheGregorianCalendarIsKnown) {
  EXPECT_EQ(gregorian()->calendarIdentifier(), "gregorian");
  EXPECT_EQ(NSCalendar::calendarWithIdentifier("buddhist"), nullptr);
  EXPECT_EQ(NSCalendar::calendarWithIdentifier(""), nullptr);
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
}

}  // namespace
}  // namespace rvf
