// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <thread>
#include <vector>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

id decimal(std::string_view text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

class RVFCurrencyFormatterTest : public testing::Test {
 protected:
  RVFCurrencyFormatterTest() { formatter_.setLocale(localeOf("en_US")); }

  static Ref<NSLocale> localeOf(const char* identifier) {
    return NSLocale::localeWithLocaleIdentifier(identifier);
  }

  static std::string reading(RVFCurrencyFormatter& formatter, std::string_view text) {
    id object;
    return formatter.getObjectValue(&object, text) ? object->description() : "fails";
  }

  RVFCurrencyFormatter formatter_;
};

TEST_F(RVFCurrencyFormatterTest, ShowsTwoDecimalsGroupedAndRoundedToEvenHalves) {
  const std::pair<const char*, const char*> rows[] = {
      {"1234.5", "1,234.50"}, {"-1234.5", "-1,234.50"},
      {"0.125", "0.12"},      {"0.135", "0.14"},
      {"0.165", "0.16"},      {"0.175", "0.18"},
      {"0", "0.00"},          {"-0.001", "-0.00"},
      {"0.29", "0.29"},       {"1.005", "1.00"},
      {"abc", "NaN"},         {"12345678901234567890.99", "12,345,678,901,234,567,890.99"},
  };
  for (const auto& [value, expected] : rows)
    EXPECT_EQ(formatter_.stringForObjectValue(decimal(value)), expected) << value;
}

TEST_F(RVFCurrencyFormatterTest, ShowsAnAbsentValueAsZeroButEditsNothing) {
  EXPECT_EQ(formatter_.stringForObjectValue(nullptr), "0.00");
  EXPECT_EQ(formatter_.editingStringForObjectValue(nullptr), "");
  EXPECT_EQ(formatter_.editingStringForObjectValue(decimal("5")), "5.00");
  EXPECT_EQ(formatter_.stringForObjectValue(box("5")), std::nullopt);
}

TEST_F(RVFCurrencyFormatterTest, ReadsHalvesAwayFromZero) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "0"},       {"1.005", "1.01"}, {"-1.005", "-1.01"}, {"1,234.5", "1234.5"},
      {"$5", "5"},     {"5 $", "5"},      {"USD 5", "5"},      {"-0.004", "0"},
      {"5%", "fails"}, {"--5", "fails"},  {"NaN", "fails"},    {"12abc", "fails"},
      {"€5", "fails"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(reading(formatter_, text), expected) << text;
}

TEST_F(RVFCurrencyFormatterTest, TheInnerFormatterIsSetUpForAmountsOfMoney) {
  const auto& inner = formatter_.formatter();
  EXPECT_EQ(inner->formatterBehavior(), NSNumberFormatterBehavior10_4);
  EXPECT_EQ(inner->numberStyle(), NSNumberFormatterCurrencyStyle);
  EXPECT_TRUE(inner->generatesDecimalNumbers());
  EXPECT_TRUE(inner->isLenient());
  EXPECT_EQ(inner->roundingMode(), NSNumberFormatterRoundHalfEven);
  EXPECT_EQ(inner->locale()->localeIdentifier(), "en_US");
  EXPECT_EQ(inner->positiveFormat(), "#,##0.00");
  EXPECT_EQ(inner->negativeFormat(), "-#,##0.00");
  EXPECT_EQ(formatter_.formatter(), inner);
}

TEST_F(RVFCurrencyFormatterTest, ReadsADecimalNumber) {
  for (const char* text : {"", "1.5", "$ 1,234.567"}) {
    id object;
    std::string description = "before";
    EXPECT_TRUE(formatter_.getObjectValue(&object, text, &description)) << text;
    EXPECT_NE(std::dynamic_pointer_cast<NSDecimalNumber>(object), nullptr) << text;
    EXPECT_EQ(description, "before") << text;
    EXPECT_TRUE(formatter_.getObjectValue(nullptr, text)) << text;
  }
}

TEST_F(RVFCurrencyFormatterTest, AFailedReadingPassesTheDescriptionOn) {
  const std::pair<const char*, const char*> rows[] = {
      {"abc", "The value “abc” is invalid."},
      {" ", "The value “ ” is invalid."},
      {"5\xFF%@", "The value “5\xFF%@” is invalid."},
  };
  for (const auto& [text, expected] : rows) {
    const id before = box("before");
    id object = before;
    std::string description;
    EXPECT_FALSE(formatter_.getObjectValue(&object, text, &description));
    EXPECT_EQ(object, before) << text;
    EXPECT_EQ(description, expected);
    EXPECT_FALSE(formatter_.getObjectValue(nullptr, text)) << text;
  }
}

TEST_F(RVFCurrencyFormatterTest, TheLocaleCountsOnlyUntilTheFirstUse) {
  const std::function<void(RVFCurrencyFormatter&)> uses[] = {
      [](auto& formatter) { formatter.stringForObjectValue(nullptr); },
      [](auto& formatter) { formatter.editingStringForObjectValue(nullptr); },
      [](auto& formatter) { formatter.getObjectValue(nullptr, "1"); },
      [](auto& formatter) { formatter.formatter(); },
  };
  for (const auto& use : uses) {
    RVFCurrencyFormatter formatter;
    formatter.setLocale(localeOf("de_DE"));
    use(formatter);
    formatter.setLocale(localeOf("en_US"));
    EXPECT_EQ(formatter.locale()->localeIdentifier(), "en_US");
    EXPECT_EQ(formatter.stringForObjectValue(decimal("1234.5")), "1.234,50");
  }
}

TEST_F(RVFCurrencyFormatterTest, WithoutALocaleItFollowsTheUsers) {
  RVFCurrencyFormatter formatter;
  EXPECT_EQ(formatter.locale(), nullptr);
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  EXPECT_EQ(formatter.stringForObjectValue(decimal("1234.5")), "1.234,50");
  NSLocale::setCurrentLocaleIdentifier("en_US");
  EXPECT_EQ(formatter.stringForObjectValue(decimal("1234.5")), "1,234.50");
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
}

TEST_F(RVFCurrencyFormatterTest, ReadsBackWhatItWroteInTwelveLocales) {
  std::mt19937_64 random(5);
  for (const char* locale : {"en_US", "de_DE", "de_AT", "de_CH", "fr_CH", "sv_SE", "es_ES", "pt_PT",
                             "hi_IN", "ar_EG", "fa_IR", "he_IL"}) {
    RVFCurrencyFormatter formatter;
    formatter.setLocale(localeOf(locale));
    for (int i = 0; i < 2000; ++i) {
      const auto amount = NSDecimalNumber::decimalNumberWithMantissa(random() >> (random() % 60),
                                                                     -2, random() % 2 == 0);
      const std::string text = *formatter.stringForObjectValue(amount);
      ASSERT_EQ(reading(formatter, text), amount->stringValue()) << locale << ' ' << text;
    }
  }
}

TEST_F(RVFCurrencyFormatterTest, DescribesItselfToTheRuntime) {
  const Class described = objc_getClass("RVFCurrencyFormatter");
  ASSERT_EQ(described, RVFCurrencyFormatter::classObject());
  const auto properties = class_copyPropertyList(described);
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "locale");
  EXPECT_EQ(properties[0].attributes, "T@\"NSLocale\",&,N,Vlocale");
  const auto ivars = class_copyIvarList(described);
  ASSERT_EQ(ivars.size(), 2U);
  EXPECT_EQ(ivars[0].name, "locale");
  EXPECT_EQ(ivars[1].name, "formatter");
}

TEST_F(RVFCurrencyFormatterTest, ConcurrentFirstUsesGetOneSharedInstance) {
  std::vector<Ref<RVFCurrencyFormatter>> formatters(4);
  std::vector<std::thread> threads;
  for (auto& formatter : formatters) {
    threads.emplace_back([&formatter] {
      formatter = RVFCurrencyFormatter::sharedCurrencyFormatter();
      RVFCurrencyFormatter own;
      own.setLocale(localeOf("de_DE"));
      EXPECT_EQ(own.stringForObjectValue(decimal("1234.5")), "1.234,50");
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  for (const auto& formatter : formatters)
    EXPECT_EQ(formatter, RVFCurrencyFormatter::sharedCurrencyFormatter());
}

}  // namespace
}  // namespace rvf
