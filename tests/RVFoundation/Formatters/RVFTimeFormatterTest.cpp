// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFTimeFormatter.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <limits>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "tests/Platform/Locale/CatalogueBytes.h"

namespace rvf {
namespace {

constexpr double kNow = 800'000'000;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class RVFTimeFormatterTest : public testing::Test {
 protected:
  RVFTimeFormatterTest() {
    NSLocale::setCurrentLocaleIdentifier("en_US");
    NSDate::setClock([] { return kNow; });
  }
  ~RVFTimeFormatterTest() override {
    NSDate::setClock(nullptr);
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  }

  static id momentAgo(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(kNow - seconds);
  }

  RVFTimeFormatter formatter_;
};

TEST_F(RVFTimeFormatterTest, WritesSecondsAsHoursAndMinutes) {
  const std::pair<double, const char*> rows[] = {
      {0, "00:00"},     {59.9, "00:00"},    {60, "00:01"},  {3599.999, "00:59"}, {3725, "01:02"},
      {90000, "25:00"}, {360000, "100:00"}, {-59, "00:00"}, {-3725, "-01:-02"},  {-90, "00:-01"},
  };
  for (const auto& [seconds, expected] : rows)
    EXPECT_EQ(formatter_.stringForObjectValue(box(seconds)), expected) << seconds;
}

TEST_F(RVFTimeFormatterTest, TakesNumbersOfEveryKind) {
  EXPECT_EQ(formatter_.stringForObjectValue(box(3725)), "01:02");
  EXPECT_EQ(formatter_.stringForObjectValue(NSDecimalNumber::decimalNumberWithString("3725.9")),
            "01:02");
}

TEST_F(RVFTimeFormatterTest, WhatIsNeitherMomentNorNumberIsZero) {
  EXPECT_EQ(formatter_.stringForObjectValue(nullptr), "00:00");
  EXPECT_EQ(formatter_.stringForObjectValue(box("3725")), "00:00");
  EXPECT_EQ(formatter_.stringForObjectValue(NSNull::null()), "00:00");
  EXPECT_EQ(formatter_.timeInSecondsMinutesAndHoursFromObject(nullptr), "00:00");
}

TEST_F(RVFTimeFormatterTest, WritesTheTimeSinceAMoment) {
  const std::pair<double, const char*> rows[] = {
      {0, "00:00:00"},       {3725, "01:02:05"},     {3725.9, "01:02:05"},
      {360059, "100:00:59"}, {-3725, "-01:-02:-05"}, {-5, "00:00:-05"},
  };
  for (const auto& [seconds, expected] : rows)
    EXPECT_EQ(formatter_.stringForObjectValue(momentAgo(seconds)), expected) << seconds;
}

TEST_F(RVFTimeFormatterTest, DurationsOutOfRangeSaturateAndNaNIsZero) {
  EXPECT_EQ(formatter_.stringForObjectValue(box(1e300)), "2147483647:07");
  EXPECT_EQ(formatter_.stringForObjectValue(box(-kInfinity)), "-2147483648:-08");
  EXPECT_EQ(formatter_.stringForObjectValue(box(kNaN)), "00:00");
  EXPECT_EQ(formatter_.stringForObjectValue(momentAgo(kInfinity)), "2147483647:07:07");
  EXPECT_EQ(formatter_.stringForObjectValue(momentAgo(kNaN)), "00:00:00");
}

TEST_F(RVFTimeFormatterTest, HasTheDigitsOfTheUsersLocaleAndNotOfItsOwn) {
  formatter_.setLocale(NSLocale::localeWithLocaleIdentifier("ar_EG"));
  EXPECT_EQ(formatter_.stringForObjectValue(box(3725)), "01:02");
  NSLocale::setCurrentLocaleIdentifier("ar_EG");
  EXPECT_EQ(formatter_.stringForObjectValue(box(3725)), "٠١:٠٢");
}

TEST_F(RVFTimeFormatterTest, TheTwoDigitFormatterKeepsTheLocaleOfItsFirstUse) {
  formatter_.setLocale(NSLocale::localeWithLocaleIdentifier("ar_EG"));
  const auto digits = formatter_.formatter();
  formatter_.setLocale(NSLocale::localeWithLocaleIdentifier("en_US"));
  EXPECT_EQ(formatter_.formatter(), digits);
  EXPECT_EQ(digits->stringForObjectValue(box(5)), "٠٥");
  EXPECT_EQ(RVFTimeFormatter().formatter()->stringForObjectValue(box(-5)), "-05");
}

Ref<NSBundle> timeProgramBundle() {
  static const auto kBundle = std::make_shared<NSBundle>("TimeProgram", nullptr);
  return kBundle;
}

const NSBundleRegistration kTimeProgram("TimeProgram", &timeProgramBundle);

/// A formatter of a program that uses the library and has a bundle of its own.
class TimeProgramFormatter final : public RVFTimeFormatter {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<TimeProgramFormatter>("TimeProgramFormatter", RVFTimeFormatter::classObject())
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
};

class RVFTimeFormatterCatalogueTest : public RVFTimeFormatterTest {
 protected:
  RVFTimeFormatterCatalogueTest() {
    std::string folder = std::filesystem::temp_directory_path() / "RVFTimeFormatter.XXXXXX";
    folder_ = mkdtemp(folder.data());
    write("RVFoundation", "%@ h %@", "%@ h %@ min %@");
    write("TimeProgram", "%2$@ past %1$@", "%3$@, %2$@, %1$@");
    RVFLibraryBundle()->setCatalogueFolder(folder_);
    timeProgramBundle()->setCatalogueFolder(folder_);
    NSLocale::setCurrentLocaleIdentifier("de_DE");
  }
  ~RVFTimeFormatterCatalogueTest() override {
    timeProgramBundle()->setCatalogueFolder(std::nullopt);
    RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
    std::filesystem::remove_all(folder_);
  }

  void write(const char* table, const char* twoParts, const char* threeParts) const {
    writeCatalogue(
        folder_, "de", table,
        catalogueOf({{"", kCatalogueHeader}, {"%@:%@", twoParts}, {"%@:%@:%@", threeParts}}));
  }

  std::string folder_;
};

TEST_F(RVFTimeFormatterCatalogueTest, BothFormatsAreLookedUpInTheUsersLanguage) {
  EXPECT_EQ(formatter_.stringForObjectValue(box(3725)), "01 h 02");
  EXPECT_EQ(formatter_.stringForObjectValue(momentAgo(3725)), "01 h 02 min 05");
  NSLocale::setCurrentLocaleIdentifier("en_US");
  EXPECT_EQ(formatter_.stringForObjectValue(box(3725)), "01:02");
}

TEST_F(RVFTimeFormatterCatalogueTest, TheFormatsComeFromTheBundleOfTheFormattersOwnClass) {
  TimeProgramFormatter formatter;
  EXPECT_EQ(formatter.stringForObjectValue(box(3725)), "02 past 01");
  EXPECT_EQ(formatter.stringForObjectValue(momentAgo(3725)), "05, 02, 01");
}

TEST_F(RVFTimeFormatterTest, ReadsNothingBack) {
  EXPECT_THROW(formatter_.getObjectValue(nullptr, "01:02"), NSException);
}

TEST_F(RVFTimeFormatterTest, DescribesItselfToTheRuntime) {
  const auto properties = class_copyPropertyList(objc_getClass("RVFTimeFormatter"));
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "locale");
  EXPECT_EQ(properties[0].attributes, "T@\"NSLocale\",&,N,V_locale");
  const auto ivars = class_copyIvarList(objc_getClass("RVFTimeFormatter"));
  ASSERT_EQ(ivars.size(), 2U);
  EXPECT_EQ(ivars[0].name, "_locale");
  EXPECT_EQ(ivars[1].name, "_formatter");
}

}  // namespace
}  // namespace rvf
