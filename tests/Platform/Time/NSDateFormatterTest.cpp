// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSDateFormatter.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <tuple>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

// Friday, 1 March 2024, 14:05:09 UTC, in seconds since 1970.
constexpr double kMarch2024 = 1709301909;

Ref<NSDateFormatter> formatter(const char* pattern, const char* locale = "en_US_POSIX",
                               const char* zone = "GMT") {
  auto made = std::make_shared<NSDateFormatter>();
  made->setDateFormat(pattern);
  made->setLocale(NSLocale::localeWithLocaleIdentifier(locale));
  made->setTimeZone(NSTimeZone::timeZoneWithName(zone));
  return made;
}

Ref<NSDate> march2024() {
  return NSDate::dateWithTimeIntervalSince1970(kMarch2024);
}

class NSDateFormatterTest : public testing::Test {
 protected:
  NSDateFormatterTest() { NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("GMT")); }
  ~NSDateFormatterTest() override {
    NSTimeZone::setDefaultTimeZone(nullptr);
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  }
};

TEST_F(NSDateFormatterTest, WritesByPatternLocaleAndZone) {
  struct Row {
    const char* pattern;
    const char* locale;
    const char* zone;
    const char* text;
  };
  const Row rows[] = {
      {"EEEE, d. MMMM yyyy", "de_DE", "GMT", "Freitag, 1. März 2024"},
      {"HH:mm:ss", "en_US", "America/New_York", "09:05:09"},
      {"HH:mm xxx", "en_US", "Asia/Kathmandu", "19:50 +05:45"},
      {"yyyy-MM-dd", "th_TH", "GMT", "2567-03-01"},
      {"yyyy", "ar_EG", "GMT", "٢٠٢٤"},
      {"'it''s' yyyy", "en_US", "GMT", "it's 2024"},
      {"", "en_US", "GMT", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(formatter(row.pattern, row.locale, row.zone)->stringFromDate(march2024()), row.text)
        << row.pattern << " " << row.locale;
  }
}

TEST_F(NSDateFormatterTest, CutsFractionsOff) {
  const auto seconds = formatter("HH:mm:ss");
  const auto milliseconds = formatter("ss.SSS");
  const std::tuple<double, const char*, const char*> rows[] = {{0.9999, "00:00:00", "00.999"},
                                                               {-0.5, "23:59:59", "59.500"},
                                                               {-0.0001, "23:59:59", "59.999"},
                                                               {59.9999999, "00:00:59", "59.999"}};
  for (const auto& [date, text, fraction] : rows) {
    EXPECT_EQ(seconds->stringFromDate(NSDate::dateWithTimeIntervalSince1970(date)), text) << date;
    EXPECT_EQ(milliseconds->stringFromDate(NSDate::dateWithTimeIntervalSince1970(date)), fraction)
        << date;
  }
}

TEST_F(NSDateFormatterTest, ReadsEveryMillisecondBackThatItWrote) {
  const auto whole = formatter("yyyy-MM-dd HH:mm:ss.SSS");
  for (const std::string second : {"2024-03-01 14:05:09.", "1969-12-31 23:59:59."}) {
    for (int millisecond = 0; millisecond < 1000; ++millisecond) {
      const std::string text = second + std::to_string(1000 + millisecond).substr(1);
      const auto date = whole->dateFromString(text);
      ASSERT_NE(date, nullptr) << text;
      ASSERT_EQ(whole->stringFromDate(date), text);
    }
  }
}

TEST_F(NSDateFormatterTest, WritesNothingThatIsNoDateWithinReach) {
  const auto year = formatter("yyyy");
  for (const double seconds :
       {std::numeric_limits<double>::quiet_NaN(), 1e300, -std::numeric_limits<double>::infinity()})
    EXPECT_EQ(year->stringFromDate(NSDate::dateWithTimeIntervalSince1970(seconds)), std::nullopt);
  EXPECT_EQ(year->stringFromDate(nullptr), std::nullopt);
  EXPECT_EQ(year->stringForObjectValue(nullptr), std::nullopt);
  EXPECT_EQ(year->stringForObjectValue(box(1)), std::nullopt);
  EXPECT_EQ(year->stringForObjectValue(march2024()), "2024");
}

TEST_F(NSDateFormatterTest, ReadsWhatItWrites) {
  for (const char* locale : {"de_DE", "th_TH", "ar_EG", "ja_JP", "he_IL@calendar=hebrew"}) {
    const auto full = formatter("d MMMM yyyy G HH:mm:ss xx", locale, "Asia/Tokyo");
    const auto date = full->dateFromString(full->stringFromDate(march2024()).value());
    EXPECT_TRUE(objectsAreEqual(date, march2024())) << locale;
  }
}

TEST_F(NSDateFormatterTest, ReadsNothingElse) {
  const auto date = formatter("dd.MM.yyyy");
  for (const char* text : {"", "1.3.2024", "01.03.24", "30.02.2024", " 01.03.2024", "01.03.2024 ",
                           "01.03.2024x", "01-03-2024", "\xFF", "01.03.2024\xFF"})
    EXPECT_EQ(date->dateFromString(text), nullptr) << text;
  EXPECT_EQ(date->dateFromString(std::string("01.03.2024\0", 11)), nullptr);
  EXPECT_EQ(date->dateFromString(std::string(100'000, '1')), nullptr);
  EXPECT_NE(date->dateFromString("01.03.2024"), nullptr);
}

TEST_F(NSDateFormatterTest, TellsWhatCannotBeRead) {
  const auto date = formatter("dd.MM.yyyy");
  id value = box(1);
  std::string description;
  EXPECT_FALSE(date->getObjectValue(&value, "soon", &description));
  EXPECT_EQ(description, "The value “soon” is invalid.");
  EXPECT_TRUE(objectsAreEqual(value, box(1)));
  EXPECT_FALSE(date->getObjectValue(nullptr, "soon"));
  EXPECT_TRUE(date->getObjectValue(&value, "01.03.2024", &description));
  EXPECT_TRUE(objectsAreEqual(value, NSDate::dateWithTimeIntervalSince1970(1709251200)));
  EXPECT_TRUE(date->getObjectValue(nullptr, "01.03.2024"));
}

TEST_F(NSDateFormatterTest, FollowsTheCurrentLocaleWithoutOneOfItsOwn) {
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  const auto month = std::make_shared<NSDateFormatter>();
  month->setDateFormat("MMMM");
  EXPECT_EQ(month->stringFromDate(march2024()), "März");
  NSLocale::setCurrentLocaleIdentifier("fr_FR");
  EXPECT_EQ(month->stringFromDate(march2024()), "mars");
  EXPECT_EQ(month->locale()->localeIdentifier(), "fr_FR");
  month->setLocale(NSLocale::localeWithLocaleIdentifier("es_ES"));
  EXPECT_EQ(month->stringFromDate(march2024()), "marzo");
  month->setLocale(nullptr);
  EXPECT_EQ(month->stringFromDate(march2024()), "mars");
}

TEST_F(NSDateFormatterTest, TakesTheDefaultTimeZoneWithoutOneOfItsOwn) {
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("Asia/Tokyo"));
  const auto hour = std::make_shared<NSDateFormatter>();
  hour->setDateFormat("HH");
  EXPECT_EQ(hour->stringFromDate(march2024()), "23");
  EXPECT_EQ(hour->timeZone()->name(), "Asia/Tokyo");
  hour->setTimeZone(NSTimeZone::timeZoneWithName("GMT"));
  EXPECT_EQ(hour->stringFromDate(march2024()), "14");
}

TEST_F(NSDateFormatterTest, RaisesForAMalformedPattern) {
  const auto bad = formatter("yyyy-MM-dd n");
  EXPECT_EQ(bad->dateFormat(), "yyyy-MM-dd n");
  EXPECT_THROW(bad->stringFromDate(march2024()), NSException);
  EXPECT_THROW(bad->dateFromString("2024-03-01 1"), NSException);
  bad->setDateFormat("yyyy-MM-dd 'n'");
  EXPECT_EQ(bad->stringFromDate(march2024()), "2024-03-01 n");
}

}  // namespace
}  // namespace rvf
