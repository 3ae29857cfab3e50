// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"
#include "tests/RVFoundation/BackgroundExecution/AnnouncedKeys.h"

namespace rvf {
namespace {

id decimal(std::string_view text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

class RVFQuantityFormatterTest : public testing::Test {
 protected:
  RVFQuantityFormatterTest() { formatter_.setLocale(localeOf("en_US")); }

  static Ref<NSLocale> localeOf(const char* identifier) {
    return NSLocale::localeWithLocaleIdentifier(identifier);
  }

  /// What the text reads as, "fails" if it does not.
  std::string reading(std::string_view text) {
    id object;
    return formatter_.getObjectValue(&object, text) ? object->description() : "fails";
  }

  RVFQuantityFormatter formatter_;
};

TEST_F(RVFQuantityFormatterTest, ShowsAtMostTwoDecimalsCutOffTowardZero) {
  const std::pair<const char*, const char*> rows[] = {
      {"2.5", "2.5"},    {"2", "2"},     {"2.999", "2.99"},          {"-2.999", "-2.99"},
      {"1.239", "1.23"}, {"0", "0"},     {"1234567.5", "1234567.5"}, {"-0.001", "-0"},
      {"0.05", "0.05"},  {"abc", "NaN"},
  };
  for (const auto& [value, expected] : rows)
    EXPECT_EQ(formatter_.stringForObjectValue(decimal(value)), expected) << value;
}

TEST_F(RVFQuantityFormatterTest, ShowsAnAbsentValueAsZeroButEditsNothing) {
  EXPECT_EQ(formatter_.stringForObjectValue(nullptr), "0");
  EXPECT_EQ(formatter_.editingStringForObjectValue(nullptr), "");
  EXPECT_EQ(formatter_.editingStringForObjectValue(decimal("2.999")), "2.99");
  EXPECT_EQ(formatter_.stringForObjectValue(box("2")), std::nullopt);
}

TEST_F(RVFQuantityFormatterTest, ReadsHalvesAwayFromZero) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "0"},       {"1.005", "1.01"}, {"-1.005", "-1.01"},  {"1.239", "1.24"},
      {"-0.001", "0"}, {" 5 ", "5"},      {"1,234.5", "fails"}, {"$5", "fails"},
      {" ", "fails"},  {"abc", "fails"},  {"1E200", "fails"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(reading(text), expected) << text;
}

TEST_F(RVFQuantityFormatterTest, ReadsADecimalNumber) {
  for (const char* text : {"", "1.5"}) {
    id object;
    EXPECT_TRUE(formatter_.getObjectValue(&object, text));
    EXPECT_NE(std::dynamic_pointer_cast<NSDecimalNumber>(object), nullptr) << text;
    EXPECT_TRUE(formatter_.getObjectValue(nullptr, text));
  }
}

TEST_F(RVFQuantityFormatterTest, AFailedReadingPassesTheDescriptionOn) {
  const id before = box("before");
  id object = before;
  std::string description;
  EXPECT_FALSE(formatter_.getObjectValue(&object, "abc", &description));
  EXPECT_EQ(object, before);
  EXPECT_EQ(description, "The value “abc” is invalid.");
}

TEST_F(RVFQuantityFormatterTest, DescribesIllFormedTextAsItIs) {
  std::string description;
  EXPECT_FALSE(formatter_.getObjectValue(nullptr, "\xC3%@\xFF", &description));
  EXPECT_EQ(description, "The value “\xC3%@\xFF” is invalid.");
}

TEST_F(RVFQuantityFormatterTest, ReadsBackWhatItWroteInTwelveLocales) {
  std::mt19937_64 random(9);
  for (const char* locale : {"en_US", "de_DE", "de_AT", "de_CH", "fr_CH", "sv_SE", "es_ES", "pt_PT",
                             "hi_IN", "ar_EG", "fa_IR", "he_IL"}) {
    formatter_.setLocale(localeOf(locale));
    for (int i = 0; i < 2000; ++i) {
      const auto quantity = NSDecimalNumber::decimalNumberWithMantissa(random() >> (random() % 60),
                                                                       -2, random() % 2 == 0);
      const std::string text = *formatter_.stringForObjectValue(quantity);
      ASSERT_EQ(reading(text), quantity->stringValue()) << locale << ' ' << text;
    }
  }
}

TEST_F(RVFQuantityFormatterTest, TheLocaleIsTheInnerFormatters) {
  formatter_.setLocale(localeOf("de_DE"));
  EXPECT_EQ(formatter_.locale()->localeIdentifier(), "de_DE");
  EXPECT_EQ(formatter_.quantityFormatter()->locale()->localeIdentifier(), "de_DE");
  EXPECT_EQ(formatter_.stringForObjectValue(decimal("1.5")), "1,5");
  EXPECT_EQ(reading("1,5"), "1.5");
}

TEST(RVFQuantityFormatterLocale, IsToldOnceHoweverItChanges) {
  const auto formatter = std::make_shared<RVFQuantityFormatter>();
  const auto announced = AnnouncedKeys::of(formatter, {"locale"});
  const auto german = NSLocale::localeWithLocaleIdentifier("de_DE");
  formatter->setLocale(german);
  EXPECT_EQ(announced->told.size(), 1U);
  formatter->quantityFormatter()->setLocale(german);
  EXPECT_EQ(announced->told.size(), 2U);
  setValueForKey(*formatter, german, "locale");
  EXPECT_EQ(announced->told.size(), 3U);
  formatter->setQuantityFormatter(nullptr);
  EXPECT_EQ(announced->told.size(), 4U);
  formatter->setLocale(german);
  EXPECT_EQ(announced->told.size(), 5U);
}

TEST_F(RVFQuantityFormatterTest, TheInnerFormatterMayBeReplaced) {
  const auto wholeNumbers = std::make_shared<NSNumberFormatter>();
  formatter_.setQuantityFormatter(wholeNumbers);
  EXPECT_EQ(formatter_.stringForObjectValue(decimal("2.5")), "2");
  EXPECT_EQ(reading("7"), "7");
  formatter_.setQuantityFormatter(nullptr);
  EXPECT_EQ(formatter_.stringForObjectValue(nullptr), std::nullopt);
  EXPECT_EQ(formatter_.editingStringForObjectValue(decimal("1")), std::nullopt);
  EXPECT_EQ(formatter_.locale(), nullptr);
  EXPECT_EQ(reading("7"), "fails");
  EXPECT_EQ(reading(""), "0");
}

TEST_F(RVFQuantityFormatterTest, IsSetUpForTheModernBehaviour) {
  EXPECT_EQ(formatter_.quantityFormatter()->formatterBehavior(), NSNumberFormatterBehavior10_4);
  EXPECT_EQ(formatter_.quantityFormatter()->numberStyle(), NSNumberFormatterDecimalStyle);
  EXPECT_TRUE(formatter_.quantityFormatter()->isLenient());
  EXPECT_TRUE(formatter_.quantityFormatter()->generatesDecimalNumbers());
  EXPECT_EQ(formatter_.quantityFormatter()->roundingMode(), NSNumberFormatterRoundDown);
  EXPECT_EQ(formatter_.quantityFormatter()->positiveFormat(), "#0.##");
  EXPECT_EQ(formatter_.quantityFormatter()->negativeFormat(), "-#0.##");
}

TEST_F(RVFQuantityFormatterTest, DescribesItselfToTheRuntime) {
  const Class described = objc_getClass("RVFQuantityFormatter");
  ASSERT_EQ(described, RVFQuantityFormatter::classObject());
  const auto properties = class_copyPropertyList(described);
  ASSERT_EQ(properties.size(), 2U);
  EXPECT_EQ(properties[0].name, "quantityFormatter");
  EXPECT_EQ(properties[0].attributes, "T@\"NSNumberFormatter\",&,N,VquantityFormatter");
  EXPECT_EQ(properties[1].name, "locale");
  EXPECT_EQ(properties[1].attributes, "T@\"NSLocale\",&,N");
  const auto ivars = class_copyIvarList(described);
  ASSERT_EQ(ivars.size(), 1U);
  EXPECT_EQ(ivars[0].name, "quantityFormatter");
  const auto shared = RVFQuantityFormatter::sharedQuantityFormatter();
  EXPECT_EQ(send<Ref<NSNumberFormatter>>(shared, SEL("quantityFormatter")),
            shared->quantityFormatter());
}

TEST_F(RVFQuantityFormatterTest, ConcurrentFirstUsesGetOneSharedInstance) {
  std::vector<Ref<RVFQuantityFormatter>> formatters(4);
  std::vector<std::thread> threads;
  for (auto& formatter : formatters) {
    threads.emplace_back([&formatter] {
      formatter = RVFQuantityFormatter::sharedQuantityFormatter();
      RVFQuantityFormatter own;
      own.setLocale(localeOf("de_DE"));
      EXPECT_EQ(own.stringForObjectValue(decimal("1.5")), "1,5");
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  for (const auto& formatter : formatters)
    EXPECT_EQ(formatter, RVFQuantityFormatter::sharedQuantityFormatter());
}

}  // namespace
}  // namespace rvf
