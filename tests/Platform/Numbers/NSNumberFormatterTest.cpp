// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSNumberFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using std::string_literals::operator""s;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Ref<NSDecimalNumber> decimal(std::string_view text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

Ref<NSNumberFormatter> formatter(const char* locale, NSNumberFormatterStyle style,
                                 const char* positive, const char* negative = nullptr) {
  auto result = std::make_shared<NSNumberFormatter>();
  result->setLocale(NSLocale::localeWithLocaleIdentifier(locale));
  result->setNumberStyle(style);
  result->setGeneratesDecimalNumbers(true);
  result->setLenient(true);
  result->setPositiveFormat(positive);
  if (negative) result->setNegativeFormat(negative);
  return result;
}

Ref<NSNumberFormatter> money(const char* locale) {
  return formatter(locale, NSNumberFormatterCurrencyStyle, "#,##0.00", "-#,##0.00");
}

Ref<NSNumberFormatter> quantity(const char* locale) {
  return formatter(locale, NSNumberFormatterDecimalStyle, "#0.##", "-#0.##");
}

/// What the text reads as, "fails" if it does not.
std::string reading(NSNumberFormatter& formatter, std::string_view text) {
  const auto number = formatter.numberFromString(text);
  return number ? number->stringValue() : "fails";
}

class NSNumberFormatterTest : public testing::Test {
 protected:
  NSNumberFormatterTest() { NSLocale::setCurrentLocaleIdentifier("en_US"); }
  ~NSNumberFormatterTest() override { NSLocale::setCurrentLocaleIdentifier(std::nullopt); }
};

TEST_F(NSNumberFormatterTest, WritesWholeNumbersUnlessItIsSetUp) {
  NSNumberFormatter plain;
  EXPECT_EQ(plain.stringForObjectValue(box(1234567)), "1234567");
  EXPECT_EQ(plain.stringForObjectValue(box(0.5)), "0");
  EXPECT_EQ(plain.positiveFormat(), "#");
  EXPECT_EQ(plain.negativeFormat(), "-#");
}

TEST_F(NSNumberFormatterTest, TheStyleBringsTheLocalesPatterns) {
  NSNumberFormatter styled;
  styled.setNumberStyle(NSNumberFormatterDecimalStyle);
  EXPECT_EQ(styled.stringForObjectValue(box(-1234567.891)), "-1,234,567.891");
  EXPECT_EQ(styled.positiveFormat(), "#,##0.###");
  styled.setNumberStyle(NSNumberFormatterCurrencyStyle);
  EXPECT_EQ(styled.stringForObjectValue(box(1234.5)), "$1,234.50");
  EXPECT_EQ(styled.positiveFormat(), "¤#,##0.00");
  EXPECT_EQ(styled.negativeFormat(), "-¤#,##0.00");
  styled.setPositiveFormat("0");
  styled.setNumberStyle(NSNumberFormatterDecimalStyle);
  EXPECT_EQ(styled.stringForObjectValue(box(1.5)), "1.5");
}

TEST_F(NSNumberFormatterTest, APatternReplacesDigitsGroupingAndAffixes) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"00", "5", "05"},
      {"00", "-5", "-05"},
      {"00", "100", "100"},
      {"#0.##", "1234.5", "1234.5"},
      {"#,##0.00", "0", "0.00"},
      {"0.#", "1.25", "1.2"},
      {"#,##0.00 'x'", "1", "1.00 x"},
      {"#0", "1e30", "1000000000000000000000000000000"},
      {"a0", "7", "a7"},
      {"0 m2", "7", "7 m2"},
      {"#,##,##0", "12345678", "1,23,45,678"},
  };
  for (const auto& [pattern, value, expected] : rows) {
    EXPECT_EQ(formatter("en_US", NSNumberFormatterDecimalStyle, pattern)
                  ->stringForObjectValue(decimal(value)),
              expected)
        << pattern << ' ' << value;
  }
}

// The sample patterns of Unicode technical standard 35, part 3 (1234.567 in fr_FR).
TEST_F(NSNumberFormatterTest, WritesTheSamplesOfTheStandard) {
  const std::pair<const char*, const char*> rows[] = {
      {"#,##0.##", "1\u202F234,57"}, {"#,##0.###", "1\u202F234,567"},
      {"###0.#####", "1234,567"},    {"###0.0000#", "1234,5670"},
      {"00000.0000", "01234,5670"},  {"#,##0.00 ¤", "1\u202F234,57 €"},
  };
  for (const auto& [pattern, expected] : rows) {
    EXPECT_EQ(formatter("fr_FR", NSNumberFormatterCurrencyStyle, pattern)
                  ->stringForObjectValue(decimal("1234.567")),
              expected)
        << pattern;
  }
}

TEST_F(NSNumberFormatterTest, EveryOtherCharacterOfAnAffixIsItself) {
  const std::pair<const char*, const char*> rows[] = {
      {"0%", "5%"},        {"+0", "+5"},       {"0‰", "5‰"},       {"0;", "5;"},
      {"@0*E", "@5*E"},    {"'#'0", "#5"},     {"''0", "'5"},      {"'a'%0", "a%5"},
      {"'a''b'0", "a'b5"}, {"''%''0", "'%'5"}, {"0 '%-'", "5 %-"},
  };
  for (const auto& [pattern, expected] : rows) {
    EXPECT_EQ(
        formatter("en_US", NSNumberFormatterDecimalStyle, pattern)->stringForObjectValue(box(5)),
        expected)
        << pattern;
  }
}

TEST_F(NSNumberFormatterTest, AMalformedPatternRaisesWhenItIsUsed) {
  NSNumberFormatter broken;
  broken.setPositiveFormat("0.0.0");
  EXPECT_THROW(broken.stringForObjectValue(box(1)), NSException);
  broken.setPositiveFormat("0.0");
  EXPECT_EQ(broken.stringForObjectValue(box(1)), "1.0");
}

TEST_F(NSNumberFormatterTest, TheDecimalsOfThePatternWinOverThoseOfTheCurrency) {
  EXPECT_EQ(formatter("ja_JP", NSNumberFormatterCurrencyStyle, "¤ #,##0.00")
                ->stringForObjectValue(decimal("1234.5")),
            "￥ 1,234.50");
  EXPECT_EQ(formatter("de_CH", NSNumberFormatterCurrencyStyle, "¤ #,##0.00")
                ->stringForObjectValue(decimal("0.07")),
            "CHF 0.07");
}

TEST_F(NSNumberFormatterTest, RoundsHalvesToEvenUnlessItIsToldOtherwise) {
  for (const auto& [value, expected] : {std::pair{"0.125", "0.12"}, std::pair{"0.135", "0.14"},
                                        std::pair{"0.165", "0.16"}, std::pair{"0.175", "0.18"}}) {
    EXPECT_EQ(money("en_US")->stringForObjectValue(decimal(value)), expected) << value;
  }
}

TEST_F(NSNumberFormatterTest, RoundsInSevenModes) {
  const char* values[] = {"1.25", "-1.25", "1.35", "1.21", "-1.29"};
  const std::pair<NSNumberFormatterRoundingMode, std::vector<const char*>> rows[] = {
      {NSNumberFormatterRoundCeiling, {"1.3", "-1.2", "1.4", "1.3", "-1.2"}},
      {NSNumberFormatterRoundFloor, {"1.2", "-1.3", "1.3", "1.2", "-1.3"}},
      {NSNumberFormatterRoundDown, {"1.2", "-1.2", "1.3", "1.2", "-1.2"}},
      {NSNumberFormatterRoundUp, {"1.3", "-1.3", "1.4", "1.3", "-1.3"}},
      {NSNumberFormatterRoundHalfEven, {"1.2", "-1.2", "1.4", "1.2", "-1.3"}},
      {NSNumberFormatterRoundHalfDown, {"1.2", "-1.2", "1.3", "1.2", "-1.3"}},
      {NSNumberFormatterRoundHalfUp, {"1.3", "-1.3", "1.4", "1.2", "-1.3"}},
  };
  const auto rounding = formatter("en_US", NSNumberFormatterDecimalStyle, "0.0");
  for (const auto& [mode, expected] : rows) {
    rounding->setRoundingMode(mode);
    for (std::size_t i = 0; i < std::size(values); ++i)
      EXPECT_EQ(rounding->stringForObjectValue(decimal(values[i])), expected[i])
          << mode << ' ' << values[i];
  }
}

TEST_F(NSNumberFormatterTest, TheSignSurvivesRounding) {
  EXPECT_EQ(quantity("en_US")->stringForObjectValue(decimal("-0.001")), "-0");
  EXPECT_EQ(money("en_US")->stringForObjectValue(decimal("-0.001")), "-0.00");
}

TEST_F(NSNumberFormatterTest, WritesNumbersOfEveryKindExactly) {
  const auto exact = formatter("en_US", NSNumberFormatterDecimalStyle, "#0.####################");
  const std::pair<id, const char*> rows[] = {
      {box(true), "1"},
      {box(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615"},
      {box(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"},
      {box(0.1F), "0.1"},
      {box(1.005), "1.005"},
      {decimal("0.10000000000000000001"), "0.10000000000000000001"},
      {box(kNaN), "NaN"},
      {decimal("abc"), "NaN"},
      {box(-kInfinity), "-∞"},
  };
  for (const auto& [value, expected] : rows)
    EXPECT_EQ(exact->stringForObjectValue(value), expected);
}

TEST_F(NSNumberFormatterTest, WhatIsNoNumberHasNoText) {
  EXPECT_EQ(money("en_US")->stringForObjectValue(box("5")), std::nullopt);
  EXPECT_EQ(money("en_US")->stringForObjectValue(NSNull::null()), std::nullopt);
}

TEST_F(NSNumberFormatterTest, AbsentGivesTheNilSymbolAndNoEditingText) {
  const auto amounts = money("en_US");
  EXPECT_EQ(amounts->stringForObjectValue(nullptr), "");
  amounts->setNilSymbol("none");
  EXPECT_EQ(amounts->stringForObjectValue(nullptr), "none");
  EXPECT_EQ(amounts->editingStringForObjectValue(nullptr), "");
  EXPECT_EQ(amounts->editingStringForObjectValue(box(1)), "1.00");
}

TEST_F(NSNumberFormatterTest, FollowsTheCurrentLocaleUnlessOneIsSet) {
  NSNumberFormatter following;
  following.setPositiveFormat("0.0");
  EXPECT_EQ(following.stringForObjectValue(box(1.5)), "1.5");
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  EXPECT_EQ(following.stringForObjectValue(box(1.5)), "1,5");
  EXPECT_EQ(following.locale()->localeIdentifier(), "de_DE");
  following.setLocale(NSLocale::localeWithLocaleIdentifier("sv_SE"));
  EXPECT_EQ(following.stringForObjectValue(box(-1.5)), "−1,5");
  NSLocale::setCurrentLocaleIdentifier("en_US");
  EXPECT_EQ(following.stringForObjectValue(box(-1.5)), "−1,5");
  following.setLocale(nullptr);
  EXPECT_EQ(following.stringForObjectValue(box(-1.5)), "-1.5");
}

TEST_F(NSNumberFormatterTest, AnUnknownLocaleIsTheRootLocale) {
  for (const char* locale : {"", "xx_YY", "../../etc", "\xFF\xFE"})
    EXPECT_EQ(quantity(locale)->stringForObjectValue(decimal("-1.5")), "-1.5") << locale;
}

TEST_F(NSNumberFormatterTest, ReadsForgivingly) {
  struct Row {
    const char* text;
    const char* money;
    const char* quantity;
    const char* germanMoney;
  };
  const Row rows[] = {
      {"1.005", "1.005", "1.005", "1005"},
      {"1,234.5", "1234.5", "fails", "fails"},
      {"12,34.5", "1234.5", "fails", "fails"},
      {" 5 ", "5", "5", "5"},
      {"\u00A05\t", "5", "5", "5"},
      {"+5", "5", "5", "5"},
      {"- 5", "-5", "-5", "-5"},
      {"−5", "-5", "-5", "-5"},
      {".5", "0.5", "0.5", "5"},
      {"5.", "5", "5", "fails"},
      {"$5", "5", "fails", "fails"},
      {"5 $", "5", "fails", "fails"},
      {"USD 5", "5", "fails", "fails"},
      {"-$5", "-5", "fails", "fails"},
      {"€5", "fails", "fails", "5"},
      {"5 EUR", "fails", "fails", "5"},
      {"1.234,5", "fails", "fails", "1234.5"},
      {"-0", "0", "0", "0"},
      {"1E5", "100000", "100000", "100000"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(reading(*money("en_US"), row.text), row.money) << row.text;
    EXPECT_EQ(reading(*quantity("en_US"), row.text), row.quantity) << row.text;
    EXPECT_EQ(reading(*money("de_DE"), row.text), row.germanMoney) << row.text;
  }
}

TEST_F(NSNumberFormatterTest, TheWholeTextMustBeAFiniteNumber) {
  const std::string texts[] = {"",    " ",    "abc",   "-",           "12abc", "1.2.3",
                               "5%",  "--5",  "- -5",  "+-5",         "5-",    "(5)",
                               "NaN", "∞",    "-∞",    "1E999999999", "$",     "$ -",
                               "5\n", "\xFF", "5\xFF", "0x1F",        "1\0"s,  "1E200"};
  for (const std::string& text : texts) {
    for (const auto& reader : {money("en_US"), quantity("en_US"), money("de_DE")})
      EXPECT_EQ(reading(*reader, text), "fails") << text;
  }
}

TEST_F(NSNumberFormatterTest, DecimalsAreNeitherLimitedNorRoundedByReading) {
  EXPECT_EQ(reading(*money("en_US"), "0.12345678901234567890123456789012345678"),
            "0.12345678901234567890123456789012345678");
  EXPECT_EQ(reading(*money("en_US"), "99999999999999999999999999999999999999"),
            "99999999999999999999999999999999999999");
}

TEST_F(NSNumberFormatterTest, ATextOfTenMegabytesIsNoNumber) {
  EXPECT_EQ(reading(*money("en_US"), std::string(10'000'000, '9')), "fails");
}

TEST_F(NSNumberFormatterTest, WithoutLenienceOnlyThePatternIsRead) {
  const auto strict = formatter("en_US", NSNumberFormatterCurrencyStyle, "¤ #,##0.00");
  strict->setLenient(false);
  EXPECT_EQ(reading(*strict, "$ 1,234.50"), "1234.5");
  for (const char* text : {"1,234.50", "$ 12,34.50"})
    EXPECT_EQ(reading(*strict, text), "fails") << text;
}

TEST_F(NSNumberFormatterTest, ReadsIntegersAndDoublesUnlessItGeneratesDecimals) {
  const auto reader = quantity("en_US");
  EXPECT_NE(std::dynamic_pointer_cast<NSDecimalNumber>(reader->numberFromString("5")), nullptr);
  reader->setGeneratesDecimalNumbers(false);
  EXPECT_EQ(reader->numberFromString("5")->objCType(), "q");
  EXPECT_EQ(reader->numberFromString("0.5")->objCType(), "d");
  EXPECT_EQ(reader->numberFromString("1E30")->doubleValue(), 1e30);
}

TEST_F(NSNumberFormatterTest, AFailedReadingDescribesItselfAndLeavesTheObjectAlone) {
  const auto reader = quantity("en_US");
  const id before = box("before");
  id object = before;
  std::string description;
  EXPECT_FALSE(reader->getObjectValue(&object, "abc", &description));
  EXPECT_EQ(object, before);
  EXPECT_EQ(description, "The value “abc” is invalid.");
  EXPECT_FALSE(reader->getObjectValue(nullptr, "abc"));
  Ref<NSError> error;
  EXPECT_EQ(reader->numberFromString("abc", &error), nullptr);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 2048);
  EXPECT_EQ(error->localizedDescription(), description);
}

TEST_F(NSNumberFormatterTest, DescribesAFailedReadingInTheUsersLanguage) {
  const auto bundle = NSBundle::bundleForClass(NSNumberFormatter::classObject());
  bundle->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  std::string description;
  EXPECT_FALSE(quantity("de_DE")->getObjectValue(nullptr, "abc", &description));
  bundle->setCatalogueFolder(std::nullopt);
  EXPECT_EQ(description, "Der Wert „abc“ ist ungültig.");
}

TEST_F(NSNumberFormatterTest, LongTextsAreReadUpToTenThousandCharacters) {
  const auto reader = quantity("en_US");
  EXPECT_TRUE(reader->numberFromString(std::string(20'000, ' ') + "5"));
  EXPECT_TRUE(reader->numberFromString("0." + std::string(5'000, '1')));
  EXPECT_FALSE(reader->numberFromString(std::string(10'000'000, '1')));
}

TEST_F(NSNumberFormatterTest, ASuccessfulReadingStoresTheNumberOnly) {
  id object;
  std::string description = "before";
  EXPECT_TRUE(quantity("en_US")->getObjectValue(&object, "1.5", &description));
  EXPECT_TRUE(decimal("1.5")->isEqual(object.get()));
  EXPECT_EQ(description, "before");
}

}  // namespace
}  // namespace rvf
