// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSDateFormatter-RVFExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>
#include <utility>

namespace rvf {
namespace {

Ref<NSDateFormatter> rfc3339() {
  return NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
}

std::string text(double secondsSince2001) {
  return *rfc3339()->stringFromDate(
      NSDate::dateWithTimeIntervalSinceReferenceDate(secondsSince2001));
}

TEST(RVF_RFC3339DateFormatter, IsANewOneEachTime) {
  const auto formatter = rfc3339();
  EXPECT_NE(formatter, rfc3339());
  EXPECT_EQ(formatter->locale()->localeIdentifier(), "en_US_POSIX");
  EXPECT_EQ(formatter->dateFormat(), "yyyy'-'MM'-'dd'T'HH':'mm':'ss'Z'");
  EXPECT_EQ(formatter->timeZone()->name(), "GMT");
}

TEST(RVF_RFC3339DateFormatter, WritesTimestampsInUTC) {
  const std::pair<double, const char*> rows[] = {{0, "2001-01-01T00:00:00Z"},
                                                 {730994709, "2024-03-01T14:05:09Z"},
                                                 {-978307200, "1970-01-01T00:00:00Z"},
                                                 {-978307201, "1969-12-31T23:59:59Z"},
                                                 {252423993599, "9999-12-31T23:59:59Z"}};
  for (const auto& [seconds, expected] : rows)
    EXPECT_EQ(text(seconds), expected);
}

TEST(RVF_RFC3339DateFormatter, DependsOnNeitherTheUsersLocaleNorTheTimeZone) {
  for (const char* locale : {"th_TH", "ar_EG", "fa_IR", "he_IL@calendar=hebrew", "ja_JP"}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("Asia/Kathmandu"));
    EXPECT_EQ(text(0), "2001-01-01T00:00:00Z") << locale;
    const auto date = rfc3339()->dateFromString("2001-01-01T00:00:00Z");
    ASSERT_NE(date, nullptr) << locale;
    EXPECT_EQ(date->timeIntervalSinceReferenceDate(), 0) << locale;
  }
  NSTimeZone::setDefaultTimeZone(nullptr);
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
}

TEST(RVF_RFC3339DateFormatter, CutsFractionsOff) {
  EXPECT_EQ(text(0.9999), "2001-01-01T00:00:00Z");
  EXPECT_EQ(text(-0.5), "2000-12-31T23:59:59Z");
  EXPECT_EQ(text(-1e-9), "2000-12-31T23:59:59Z");
}

TEST(RVF_RFC3339DateFormatter, ReadsTimestamps) {
  const auto date = rfc3339()->dateFromString("2024-03-01T14:05:09Z");
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->timeIntervalSince1970(), 1709301909);
  EXPECT_NE(rfc3339()->dateFromString("2024-02-29T23:59:59Z"), nullptr);
}

TEST(RVF_RFC3339DateFormatter, GoesOnAfterTheYear9999) {
  constexpr double kStartOf10000 = 252423993600;
  EXPECT_EQ(text(kStartOf10000), "10000-01-01T00:00:00Z");
  const auto date = rfc3339()->dateFromString("10000-01-01T00:00:00Z");
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->timeIntervalSinceReferenceDate(), kStartOf10000);
  EXPECT_EQ(rfc3339()->dateFromString("02024-03-01T14:05:09Z"), nullptr);
}

TEST(RVF_RFC3339DateFormatter, TheJulianCalendarEndsIn1582) {
  constexpr double kFirstGregorianDay = -13197600000;
  EXPECT_EQ(text(kFirstGregorianDay), "1582-10-15T00:00:00Z");
  EXPECT_EQ(text(kFirstGregorianDay - 1), "1582-10-04T23:59:59Z");
  EXPECT_EQ(rfc3339()->dateFromString("1582-10-10T00:00:00Z"), nullptr);
}

TEST(RVF_RFC3339DateFormatter, YearsBeforeTheCommonEraAreNotToldFromLaterOnes) {
  const double startOfYear1 =
      rfc3339()->dateFromString("0001-01-01T00:00:00Z")->timeIntervalSinceReferenceDate();
  EXPECT_EQ(text(startOfYear1), "0001-01-01T00:00:00Z");
  EXPECT_EQ(text(startOfYear1 - 1), "0001-12-31T23:59:59Z");
}

TEST(RVF_RFC3339DateFormatter, ReadsNoOtherForm) {
  const auto formatter = rfc3339();
  for (const char* other : {"",
                            "2024-03-01T14:05:09.5Z",
                            "2024-03-01T14:05:09+00:00",
                            "2024-03-01T14:05:09",
                            "2024-03-01T14:05:09Zx",
                            "2024-03-01T14:05:09Z ",
                            " 2024-03-01T14:05:09Z",
                            "2024-03-01t14:05:09z",
                            "2024-3-1T14:05:09Z",
                            "2024-02-30T14:05:09Z",
                            "2023-02-29T14:05:09Z",
                            "2024-13-01T14:05:09Z",
                            "2024-03-01T24:00:00Z",
                            "2024-03-01T14:60:00Z",
                            "2024-03-01T14:05:60Z",
                            "24-03-01T14:05:09Z",
                            "2024-Mar-01T14:05:09Z",
                            "2024-03-01 14:05:09Z",
                            "+2024-03-01T14:05:09Z",
                            "-2024-03-01T14:05:09Z",
                            "0000-01-01T00:00:00Z",
                            "２０２４-03-01T14:05:09Z",
                            "\xFF"})
    EXPECT_EQ(formatter->dateFromString(other), nullptr) << other;
}

TEST(RVF_RFC3339DateFormatter, ReadsWhatItWrites) {
  EXPECT_TRUE(rc::check([formatter = rfc3339()] {
    // The years 1 to 9999.
    const double seconds =
        static_cast<double>(*rc::gen::inRange<long>(-63'113'904'000L, 252'423'993'600L));
    const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    const auto written = formatter->stringFromDate(date);
    RC_ASSERT(written && written->size() == 20U);
    RC_ASSERT(objectsAreEqual(formatter->dateFromString(*written), date));
  }));
}

}  // namespace
}  // namespace rvf
