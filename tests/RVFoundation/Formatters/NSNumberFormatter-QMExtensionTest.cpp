// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "Platform/Numbers/NSDecimalNumber.h"

namespace rvf {
namespace {

using Extension = NSNumberFormatter_QMExtension;

Ref<NSDecimalNumber> decimal(std::string_view text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

class NSNumberFormatter_QMExtensionTest : public testing::Test {
 protected:
  NSNumberFormatter_QMExtensionTest() { NSLocale::setCurrentLocaleIdentifier("en_US"); }
  ~NSNumberFormatter_QMExtensionTest() override {
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  }
};

TEST_F(NSNumberFormatter_QMExtensionTest, WritesInTheUsersLocale) {
  struct Row {
    const char* locale;
    const char* currency;
    const char* negativeCurrency;
    const char* discount;
    const char* negativeDiscount;
    const char* quantity;
  };
  const Row rows[] = {
      {"en_US", "$ 1,234.50", "-$ 1,234.50", "$ 1,234.5", "$ -1,234.5", "1234.5"},
      {"en_US_POSIX", "$ 1,234.50", "-$ 1,234.50", "$ 1,234.5", "$ -1,234.5", "1234.5"},
      {"de_DE", "€ 1.234,50", "-€ 1.234,50", "€ 1.234,5", "€ -1.234,5", "1234,5"},
      {"fr_FR", "€ 1\u202F234,50", "-€ 1\u202F234,50", "€ 1\u202F234,5", "€ -1\u202F234,5",
       "1234,5"},
      {"sv_SE", "kr 1\u00A0234,50", "\u2212kr 1\u00A0234,50", "kr 1\u00A0234,5",
       "kr \u22121\u00A0234,5", "1234,5"},
      {"ja_JP", "￥ 1,234.50", "-￥ 1,234.50", "￥ 1,234.5", "￥ -1,234.5", "1234.5"},
      {"en", "¤ 1,234.50", "-¤ 1,234.50", "¤ 1,234.5", "¤ -1,234.5", "1234.5"},
  };
  for (const Row& row : rows) {
    NSLocale::setCurrentLocaleIdentifier(row.locale);
    const auto currency = Extension::currencyFormatter();
    EXPECT_EQ(currency->stringForObjectValue(decimal("1234.5")), row.currency) << row.locale;
    EXPECT_EQ(currency->stringForObjectValue(decimal("-1234.5")), row.negativeCurrency)
        << row.locale;
    const auto discount = Extension::discountFormatter();
    EXPECT_EQ(discount->stringForObjectValue(decimal("1234.5")), row.discount) << row.locale;
    EXPECT_EQ(discount->stringForObjectValue(decimal("-1234.5")), row.negativeDiscount)
        << row.locale;
    EXPECT_EQ(Extension::quantityFormatter()->stringForObjectValue(decimal("1234.5")), row.quantity)
        << row.locale;
  }
}

TEST_F(NSNumberFormatter_QMExtensionTest, OnlyCurrencyRoundsAndFillsUp) {
  const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
      {"0.125", "$ 0.12", "$ 0.12", "0.12"}, {"0.135", "$ 0.14", "$ 0.13", "0.13"},
      {"2.999", "$ 3.00", "$ 2.99", "2.99"}, {"-2.999", "-$ 3.00", "$ -2.99", "-2.99"},
      {"2", "$ 2.00", "$ 2", "2"},
  };
  for (const auto& [value, currency, discount, quantity] : rows) {
    EXPECT_EQ(Extension::currencyFormatter()->stringForObjectValue(decimal(value)), currency);
    EXPECT_EQ(Extension::discountFormatter()->stringForObjectValue(decimal(value)), discount);
    EXPECT_EQ(Extension::quantityFormatter()->stringForObjectValue(decimal(value)), quantity);
  }
}

TEST_F(NSNumberFormatter_QMExtensionTest, EachCallMakesAFormatterOfItsOwn) {
  const auto changed = Extension::currencyFormatter();
  changed->setPositiveFormat("0");
  EXPECT_EQ(Extension::currencyFormatter()->stringForObjectValue(decimal("1")), "$ 1.00");
}

TEST_F(NSNumberFormatter_QMExtensionTest, ReadsForgivinglyAsDecimals) {
  for (const auto& formatter : {Extension::currencyFormatter(), Extension::discountFormatter()}) {
    for (const char* text : {"-$ 1,234.5", "$ -1,234.5", "-1234.5", "- 1234.5 USD"}) {
      const auto number = formatter->numberFromString(text);
      ASSERT_NE(number, nullptr) << text;
      EXPECT_EQ(number->stringValue(), "-1234.5") << text;
      EXPECT_NE(std::dynamic_pointer_cast<NSDecimalNumber>(number), nullptr);
    }
  }
}

std::string reading(NSNumberFormatter& formatter, std::string_view text) {
  const auto number = formatter.numberFromString(text);
  return number ? number->stringValue() : "fails";
}

TEST_F(NSNumberFormatter_QMExtensionTest, ReadsMoneyWithOrWithoutItsSymbol) {
  struct Row {
    const char* text;
    const char* american;
    const char* german;
  };
  const Row rows[] = {
      {"1.005", "1.005", "1005"},
      {"1,234.5", "1234.5", "fails"},
      {"12,34.5", "1234.5", "fails"},
      {"1.234,5", "fails", "1234.5"},
      {" 5 ", "5", "5"},
      {"+5", "5", "5"},
      {"- 5", "-5", "-5"},
      {"−5", "-5", "-5"},
      {".5", "0.5", "5"},
      {"5.", "5", "fails"},
      {"$5", "5", "fails"},
      {"$ 5", "5", "fails"},
      {"5 $", "5", "fails"},
      {"USD 5", "5", "fails"},
      {"-$ 5", "-5", "fails"},
      {"$ -5", "-5", "fails"},
      {"€5", "fails", "5"},
      {"5 EUR", "fails", "5"},
  };
  for (const auto& make : {&Extension::currencyFormatter, &Extension::discountFormatter}) {
    for (const Row& row : rows) {
      NSLocale::setCurrentLocaleIdentifier("en_US");
      EXPECT_EQ(reading(*make(), row.text), row.american) << row.text;
      NSLocale::setCurrentLocaleIdentifier("de_DE");
      EXPECT_EQ(reading(*make(), row.text), row.german) << row.text;
    }
  }
}

TEST_F(NSNumberFormatter_QMExtensionTest, ReadsQuantitiesWithoutGroupingOrSymbol) {
  const std::pair<const char*, const char*> rows[] = {
      {"1.005", "1.005"},   {" 5 ", "5"},    {"+5", "5"},      {"- 5", "-5"},
      {"−5", "-5"},         {".5", "0.5"},   {"5.", "5"},      {"1,234.5", "fails"},
      {"12,34.5", "fails"}, {"$5", "fails"}, {"5 $", "fails"}, {"USD 5", "fails"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(reading(*Extension::quantityFormatter(), text), expected) << text;
}

TEST_F(NSNumberFormatter_QMExtensionTest, RefusesWhatIsNoFiniteNumberAsAWhole) {
  for (const char* locale : {"en_US", "de_DE", "ja_JP", "en"}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    for (const auto& formatter : {Extension::currencyFormatter(), Extension::discountFormatter(),
                                  Extension::quantityFormatter()}) {
      for (const char* text : {"", " ", "abc", "-", "12abc", "1.2.3", "5%", "--5", "- -5", "NaN",
                               "∞", "-∞", "¤¤", "$", "$ -", "€ -", "5\xFF", "\xFF"})
        EXPECT_EQ(reading(*formatter, text), "fails") << locale << ' ' << text;
    }
  }
}

TEST_F(NSNumberFormatter_QMExtensionTest, DecimalsAreNotRoundedByReading) {
  for (const auto& formatter : {Extension::currencyFormatter(), Extension::discountFormatter()})
    EXPECT_EQ(reading(*formatter, "$ 0.123456789012345678901"), "0.123456789012345678901");
}

TEST_F(NSNumberFormatter_QMExtensionTest, ReadsBackWhatItWroteInTwelveLocales) {
  constexpr int kAmounts = 2000;
  std::mt19937_64 random(12);
  std::vector<Ref<NSDecimalNumber>> amounts;
  for (int i = 0; i < kAmounts; ++i) {
    const auto digits = static_cast<unsigned>(random() % 17);
    const std::uint64_t mantissa = random() >> (8 + 3 * digits);
    amounts.push_back(NSDecimalNumber::decimalNumberWithMantissa(
        mantissa, static_cast<short>(-static_cast<int>(random() % 3)), random() % 2 == 0));
  }
  for (const char* locale : {"en_US", "en_US_POSIX", "de_DE", "de_CH", "fr_FR", "sv_SE", "ja_JP",
                             "pl_PL", "hi_IN", "ar_EG", "fa_IR", "he_IL"}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    for (const auto& formatter : {Extension::currencyFormatter(), Extension::discountFormatter(),
                                  Extension::quantityFormatter()}) {
      for (const auto& amount : amounts) {
        const std::string text = *formatter->stringForObjectValue(amount);
        const auto number = formatter->numberFromString(text);
        ASSERT_NE(number, nullptr) << locale << ' ' << text;
        ASSERT_EQ(number->stringValue(), amount->stringValue()) << locale << " " << text;
      }
    }
  }
}

}  // namespace
}  // namespace rvf
