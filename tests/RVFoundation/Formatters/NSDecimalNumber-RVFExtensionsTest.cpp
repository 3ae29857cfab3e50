// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/NSDecimalNumber-RVFExtensions.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace rvf {
namespace {

using Extensions = NSDecimalNumber_RVFExtensions;

TEST(NSDecimalNumber_RVFExtensions, ThePOSIXLocaleIsOneObject) {
  EXPECT_EQ(Extensions::RVF_POSIXLocale()->localeIdentifier(), "en_US_POSIX");
  EXPECT_EQ(Extensions::RVF_POSIXLocale(), Extensions::RVF_POSIXLocale());
}

TEST(NSDecimalNumber_RVFExtensions, ReadsAndWritesWhateverTheUsersLocale) {
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  const auto number = Extensions::RVF_decimalNumberWithPOSIXString("1234.50");
  EXPECT_EQ(RVF_POSIXString(number), "1234.5");
  EXPECT_EQ(RVF_POSIXString(Extensions::RVF_decimalNumberWithPOSIXString("1,234.5")), "1");
  EXPECT_EQ(RVF_POSIXString(Extensions::RVF_decimalNumberWithPOSIXString("")), "NaN");
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
}

TEST(NSDecimalNumber_RVFExtensions, StrictOutputIsTheTextAsItCame) {
  for (const char* text : {"1.50", "+007", "abc", "", "1.5 pieces"}) {
    const auto number = Extensions::RVF_decimalNumberWithPOSIXStringAndStrictOutput(text);
    EXPECT_EQ(RVF_descriptionForStrictOutput(number), text);
    EXPECT_TRUE(number->isEqual(Extensions::RVF_decimalNumberWithPOSIXString(text).get()));
  }
}

TEST(NSDecimalNumber_RVFExtensions, OnlyNumbersMadeForItHaveStrictOutput) {
  const auto strict = Extensions::RVF_decimalNumberWithPOSIXStringAndStrictOutput("1.50");
  const auto equal = Extensions::RVF_decimalNumberWithPOSIXString("1.50");
  EXPECT_EQ(RVF_descriptionForStrictOutput(equal), std::nullopt);
  EXPECT_EQ(RVF_descriptionForStrictOutput(strict->decimalNumberByAdding(*equal)), std::nullopt);
  EXPECT_EQ(RVF_descriptionForStrictOutput(RVF_absoluteDecimalNumber(strict)), "1.50");
}

TEST(NSDecimalNumber_RVFExtensions, TheAbsoluteNumberOfOneWithoutSignIsItself) {
  for (const char* text : {"0", "-0", "3.50"}) {
    const auto number = Extensions::RVF_decimalNumberWithPOSIXString(text);
    EXPECT_EQ(RVF_absoluteDecimalNumber(number), number) << text;
  }
  const auto negative = Extensions::RVF_decimalNumberWithPOSIXString("-3.50");
  EXPECT_EQ(RVF_POSIXString(RVF_absoluteDecimalNumber(negative)), "3.5");
  const auto nan = Extensions::RVF_decimalNumberWithPOSIXString("x");
  EXPECT_EQ(RVF_POSIXString(RVF_absoluteDecimalNumber(nan)), "NaN");
}

TEST(NSDecimalNumber_RVFExtensions, AbsentStaysAbsent) {
  EXPECT_EQ(RVF_POSIXString(nullptr), std::nullopt);
  EXPECT_EQ(RVF_descriptionForStrictOutput(nullptr), std::nullopt);
  EXPECT_EQ(RVF_absoluteDecimalNumber(nullptr), nullptr);
}

TEST(NSDecimalNumber_RVFExtensions, ConcurrentFirstUsesGetOneLocale) {
  std::vector<Ref<NSLocale>> locales(4);
  std::vector<std::thread> threads;
  for (auto& locale : locales)
    threads.emplace_back([&locale] { locale = Extensions::RVF_POSIXLocale(); });
  for (std::thread& thread : threads)
    thread.join();
  for (const auto& locale : locales)
    EXPECT_EQ(locale, locales.front());
}

}  // namespace
}  // namespace rvf
