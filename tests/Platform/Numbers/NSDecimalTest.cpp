// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSDecimal.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <limits>

namespace rvf {
namespace {

NSDecimal decimal(std::string_view text) {
  return NSDecimal::fromText(text);
}

TEST(NSDecimal, ReadsTheNumberThatATextBeginsWith) {
  const std::pair<const char*, const char*> rows[] = {
      {"1.50", "1.5"},
      {"+1.5", "1.5"},
      {"-2.5006E3", "-2500.6"},
      {"1e10", "10000000000"},
      {"1.5e-7", "0.00000015"},
      {".5", "0.5"},
      {"5.", "5"},
      {" 7", "7"},
      {"\t\u00A0\u20097", "7"},
      {"4a2.0", "4"},
      {"1,234.5", "1"},
      {"1e", "1"},
      {"1e+", "1"},
      {"1ex", "1"},
      {"1.2.3", "1.2"},
      {"-.5", "-0.5"},
      {"-0", "0"},
      {"0e400", "0"},
      {"0x1F", "0"},
      {"007", "7"},
      {"1 2", "1"},
      {"1e-400", "0"},
      {"1e99999999999999999999x", "NaN"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(decimal(text).text(), expected) << text;
}

TEST(NSDecimal, ATextWithoutANumberIsNaN) {
  for (const char* text : {"", "abc", "-", ".", "- 5", "--5", "\n1", "e5",
                           "\xFF"
                           "1",
                           "1e400", "NaN", "inf", "\u0661"}) {
    EXPECT_TRUE(decimal(text).isNaN()) << text;
  }
}

TEST(NSDecimal, DigitsBeyondThe38thAreDropped) {
  EXPECT_EQ(decimal("99999999999999999999999999999999999999").text(),
            "99999999999999999999999999999999999999");
  EXPECT_EQ(decimal("999999999999999999999999999999999999999").text(),
            "999999999999999999999999999999999999990");
  EXPECT_EQ(decimal("0.00123456789012345678901234567890123456789").text(),
            "0.0012345678901234567890123456789012345678");
  EXPECT_EQ(decimal(std::string(10'000'000, '9') + "e-9999962").text(),
            "99999999999999999999999999999999999999");
}

TEST(NSDecimal, ExponentsReachFromMinus128To127) {
  EXPECT_EQ(decimal("1e164").text().size(), 165U);
  EXPECT_TRUE(decimal("1e165").isNaN());
  EXPECT_EQ(decimal("99999999999999999999999999999999999999e127").text().size(),
            NSDecimal::kLongestText - 1);
  EXPECT_EQ(decimal("1e-128").exponent(), -128);
  EXPECT_TRUE(decimal("9e-129").isZero());
}

TEST(NSDecimal, EqualNumbersHaveOneForm) {
  EXPECT_EQ(decimal("1.50"), decimal("15e-1"));
  EXPECT_EQ(decimal("1000e127"), decimal("1e130"));
  EXPECT_EQ(decimal("-0.00"), NSDecimal());
  EXPECT_EQ(decimal("x"), NSDecimal::notANumber());
  EXPECT_TRUE(decimal("150").mantissa() == 15);
  EXPECT_EQ(decimal("150").exponent(), 1);
}

TEST(NSDecimal, ADoubleIsTheShortestDecimalThatReadsBackToIt) {
  const std::pair<double, const char*> rows[] = {
      {0.35, "0.35"},
      {0.29, "0.29"},
      {1.005, "1.005"},
      {-0.0, "0"},
      {1e22, "10000000000000000000000"},
      {5e-324, "0"},
      {1e300, "NaN"},
      {std::numeric_limits<double>::infinity(), "NaN"},
      {std::numeric_limits<double>::quiet_NaN(), "NaN"},
  };
  for (const auto& [value, expected] : rows)
    EXPECT_EQ(NSDecimal::fromDouble(value).text(), expected) << value;
}

TEST(NSDecimal, IntegersAreExact) {
  EXPECT_EQ(NSDecimal::fromInteger(std::numeric_limits<std::int64_t>::min()).text(),
            "-9223372036854775808");
  EXPECT_EQ(NSDecimal::fromInteger(std::numeric_limits<std::uint64_t>::max()).text(),
            "18446744073709551615");
}

TEST(NSDecimal, RoundsInFourModes) {
  struct Row {
    const char* value;
    const char* plain;
    const char* bankers;
    const char* down;
    const char* up;
  };
  const Row rows[] = {
      {"1.005", "1.01", "1", "1", "1.01"},       {"-1.005", "-1.01", "-1", "-1.01", "-1"},
      {"2.675", "2.68", "2.68", "2.67", "2.68"}, {"0.001", "0", "0", "0", "0.01"},
      {"-0.001", "0", "0", "-0.01", "0"},        {"9.995", "10", "10", "9.99", "10"},
  };
  for (const Row& row : rows) {
    const NSDecimal value = decimal(row.value);
    EXPECT_EQ(NSDecimalRound(value, 2, NSRoundPlain).value.text(), row.plain) << row.value;
    EXPECT_EQ(NSDecimalRound(value, 2, NSRoundBankers).value.text(), row.bankers) << row.value;
    EXPECT_EQ(NSDecimalRound(value, 2, NSRoundDown).value.text(), row.down) << row.value;
    EXPECT_EQ(NSDecimalRound(value, 2, NSRoundUp).value.text(), row.up) << row.value;
  }
}

TEST(NSDecimal, ANegativeScaleRoundsToTens) {
  EXPECT_EQ(NSDecimalRound(decimal("1250"), -2, NSRoundBankers).value.text(), "1200");
  EXPECT_EQ(NSDecimalRound(decimal("1250"), -4, NSRoundPlain).value.text(), "0");
  EXPECT_EQ(NSDecimalRound(decimal("1"), -200, NSRoundUp).error, NSCalculationOverflow);
}

TEST(NSDecimal, SaysWhatWentWrong) {
  const NSDecimal large = decimal("9e164");
  const NSDecimal small = decimal("1e-128");
  EXPECT_EQ(NSDecimalAdd(large, large).error, NSCalculationOverflow);
  EXPECT_TRUE(NSDecimalAdd(large, large).value.isNaN());
  EXPECT_EQ(NSDecimalMultiply(small, small).error, NSCalculationUnderflow);
  EXPECT_TRUE(NSDecimalMultiply(small, small).value.isZero());
  EXPECT_EQ(NSDecimalDivide(large, NSDecimal()).error, NSCalculationDivideByZero);
  EXPECT_TRUE(NSDecimalDivide(NSDecimal(), NSDecimal()).value.isNaN());
  EXPECT_EQ(NSDecimalDivide(decimal("2"), decimal("3")).error, NSCalculationLossOfPrecision);
  EXPECT_EQ(NSDecimalDivide(decimal("1"), decimal("8")).error, NSCalculationNoError);
}

TEST(NSDecimal, NaNGivesNaNWithoutError) {
  const NSDecimal nan = NSDecimal::notANumber();
  const NSDecimal one = decimal("1");
  for (const NSDecimalResult& result :
       {NSDecimalAdd(nan, one), NSDecimalAdd(one, nan), NSDecimalSubtract(one, nan),
        NSDecimalMultiply(nan, NSDecimal()), NSDecimalDivide(nan, NSDecimal()),
        NSDecimalRound(nan, 2, NSRoundPlain)}) {
    EXPECT_TRUE(result.value.isNaN());
    EXPECT_EQ(result.error, NSCalculationNoError);
  }
}

TEST(NSDecimal, NaNOrdersBelowEveryNumber) {
  const NSDecimal nan = NSDecimal::notANumber();
  EXPECT_EQ(NSDecimalCompare(nan, nan), 0);
  EXPECT_LT(NSDecimalCompare(nan, decimal("-9e164")), 0);
  EXPECT_GT(NSDecimalCompare(decimal("-9e164"), nan), 0);
}

TEST(NSDecimal, ReadsBackWhatItWrites) {
  EXPECT_TRUE(rc::check([](std::uint64_t high, std::uint64_t low, bool isNegative) {
    const auto mantissa = NSDecimal::Mantissa{high} << 64 | low;
    const int exponent = *rc::gen::inRange(-140, 135);
    const NSDecimal value = NSDecimal::fromParts(mantissa, exponent, isNegative);
    RC_ASSERT(NSDecimal::fromText(value.text()) == value);
    RC_ASSERT(NSDecimal::fromText(value.text(","), ",") == value);
  }));
}

TEST(NSDecimal, ADoubleSurvivesTheWayThroughADecimal) {
  EXPECT_TRUE(rc::check([](double value) {
    RC_PRE(std::abs(value) > 1e-100 && std::abs(value) < 1e150);
    RC_ASSERT(NSDecimal::fromDouble(value).doubleValue() == value);
  }));
}

}  // namespace
}  // namespace rvf
