// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSDecimalNumber.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSKeyedArchiver.h"
#include "Platform/Storage/NSKeyedUnarchiver.h"

namespace rvf {
namespace {

Ref<NSDecimalNumber> number(std::string_view text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

const NSDecimalNumberHandler kCarefree(NSRoundPlain, 2, false, false, false, false);

TEST(NSDecimalNumber, ReadsAndWritesTheLocalesDecimalSeparator) {
  const auto german = NSLocale::localeWithLocaleIdentifier("de_DE");
  const auto price = NSDecimalNumber::decimalNumberWithString("1234,5", german);
  EXPECT_EQ(price->stringValue(), "1234.5");
  EXPECT_EQ(price->descriptionWithLocale(german), "1234,5");
  EXPECT_EQ(price->descriptionWithLocale(nullptr), "1234.5");
  EXPECT_EQ(NSDecimalNumber::decimalNumberWithString("1.5", german)->stringValue(), "1");
}

TEST(NSDecimalNumber, EveryTextMakesANewObject) {
  EXPECT_NE(number("0"), number("0"));
  EXPECT_NE(number("1"), NSDecimalNumber::one());
}

TEST(NSDecimalNumber, EqualityAndHashAreByValue) {
  EXPECT_TRUE(number("1.50")->isEqual(number("1.5").get()));
  EXPECT_EQ(number("1.50")->hash(), number("1.5")->hash());
  EXPECT_TRUE(number("abc")->isEqual(NSDecimalNumber::notANumber().get()));
  EXPECT_FALSE(number("1.5")->isEqual(number("1.6").get()));
}

TEST(NSDecimalNumber, ComparesWithNumbersOfOtherKinds) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    const char* decimal;
    Ref<NSNumber> other;
    int order;
  };
  const Row rows[] = {
      {"2", box(2), 0},
      {"1", box(true), 0},
      {"0.1", box(0.1), 0},
      {"-1.5", box(-1.5), 0},
      {"18446744073709551615", box(std::numeric_limits<std::uint64_t>::max()), 0},
      {"9223372036854775808", box(0x1p63), 0},
      {"9007199254740993", box(0x1p53), 1},
      {"9e164", box(1e300), -1},
      {"9e164", box(kInfinity), -1},
      {"-9e164", box(-1e300), 1},
      {"0", box(5e-324), -1},
      {"0", box(-5e-324), 1},
      {"1e-128", box(5e-324), 1},
      {"NaN", box(kNaN), 0},
      {"NaN", box(-kInfinity), -1},
      {"-9e164", box(kNaN), 1},
  };
  for (const Row& row : rows) {
    const auto decimal = number(row.decimal);
    EXPECT_EQ(decimal->compare(*row.other), row.order) << row.decimal;
    EXPECT_EQ(row.other->compare(*decimal), -row.order) << row.decimal;
    if (row.order == 0) {
      EXPECT_TRUE(row.other->isEqual(decimal.get())) << row.decimal;
      EXPECT_EQ(row.other->hash(), decimal->hash()) << row.decimal;
    }
  }
}

TEST(NSDecimalNumber, OrdersAsTheDoublesThatItComesFrom) {
  EXPECT_TRUE(rc::check([](double a, double b) {
    const auto sign = [](int order) { return (order > 0) - (order < 0); };
    RC_ASSERT(sign(NSDecimalNumber::numberWithDouble(a)->compare(*box(b))) ==
              sign(box(a)->compare(*NSDecimalNumber::numberWithDouble(b))));
  }));
}

TEST(NSDecimalNumber, IntegerReadingsTruncateAndSaturate) {
  struct Row {
    const char* text;
    long integer;
    unsigned long unsignedInteger;
  };
  constexpr long kMinimum = std::numeric_limits<long>::min();
  constexpr long kMaximum = std::numeric_limits<long>::max();
  constexpr unsigned long kUnsignedMaximum = std::numeric_limits<unsigned long>::max();
  const Row rows[] = {
      {"1.9", 1, 1},
      {"-1.9", -1, kUnsignedMaximum},
      {"12345678901234567.9", 12345678901234567, 12345678901234567},
      {"18446744073709551615", -1, kUnsignedMaximum},
      {"18446744073709551616", kMaximum, kUnsignedMaximum},
      {"-9223372036854775808", kMinimum, 1UL << 63},
      {"-9223372036854775809", kMinimum, 0},
      {"1e100", kMaximum, kUnsignedMaximum},
      {"NaN", 0, 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(number(row.text)->integerValue(), row.integer) << row.text;
    EXPECT_EQ(number(row.text)->unsignedIntegerValue(), row.unsignedInteger) << row.text;
  }
}

TEST(NSDecimalNumber, AnswersTheReadingsOfNumbers) {
  EXPECT_TRUE(number("0.5")->boolValue());
  EXPECT_TRUE(number("NaN")->boolValue());
  EXPECT_FALSE(number("0.00")->boolValue());
  EXPECT_EQ(number("0.1")->doubleValue(), 0.1);
  EXPECT_EQ(number("-2500.60")->description(), "-2500.6");
  EXPECT_EQ(number("1")->objCType(), "d");
  EXPECT_TRUE(send<bool>(number("0.5"), SEL("boolValue")));
  EXPECT_EQ(send<double>(number("0.5"), SEL("doubleValue")), 0.5);
}

TEST(NSDecimalNumber, StandsForNumbersOfAnyKind) {
  const std::pair<Ref<NSNumber>, const char*> rows[] = {
      {box(0.1), "0.1"},
      {box(0.1F), "0.1"},
      {box(true), "1"},
      {box(-7), "-7"},
      {box(static_cast<unsigned char>(200)), "200"},
      {box(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615"},
  };
  for (const auto& [other, text] : rows)
    EXPECT_EQ(NSDecimalNumber::decimalNumberWithNumber(other)->stringValue(), text);
  const auto decimal = number("1.5");
  EXPECT_EQ(NSDecimalNumber::decimalNumberWithNumber(decimal), decimal);
  EXPECT_EQ(NSDecimalNumber::decimalNumberWithNumber(nullptr), nullptr);
}

TEST(NSDecimalNumber, Calculates) {
  const auto a = number("10.10");
  const auto b = number("-0.3");
  EXPECT_EQ(a->decimalNumberByAdding(*b)->stringValue(), "9.8");
  EXPECT_EQ(a->decimalNumberBySubtracting(*b)->stringValue(), "10.4");
  EXPECT_EQ(a->decimalNumberByMultiplyingBy(*b)->stringValue(), "-3.03");
  EXPECT_EQ(number("1")->decimalNumberByDividingBy(*number("3"))->stringValue(),
            "0.33333333333333333333333333333333333333");
}

TEST(NSDecimalNumber, CalculatesAsItsBehaviourSays) {
  const auto third = number("1")->decimalNumberByDividingBy(*number("3"), kCarefree);
  EXPECT_EQ(third->stringValue(), "0.33");
  const auto a = number("1.005");
  EXPECT_EQ(a->decimalNumberByAdding(*number("0"), kCarefree)->stringValue(), "1.01");
  EXPECT_EQ(a->decimalNumberBySubtracting(*number("2"), kCarefree)->stringValue(), "-1");
  EXPECT_EQ(a->decimalNumberByMultiplyingBy(*number("10"), kCarefree)->stringValue(), "10.05");
  EXPECT_EQ(a->decimalNumberByRoundingAccordingToBehavior(kCarefree)->stringValue(), "1.01");
}

TEST(NSDecimalNumber, ErrorsThatDoNotRaiseGiveNaNOrZero) {
  const auto large = number("9e164");
  EXPECT_EQ(large->decimalNumberByAdding(*large, kCarefree)->stringValue(), "NaN");
  EXPECT_EQ(large->decimalNumberByDividingBy(*NSDecimalNumber::zero(), kCarefree)->stringValue(),
            "NaN");
  const auto small = number("1e-128");
  EXPECT_EQ(small->decimalNumberByMultiplyingBy(*small, kCarefree)->stringValue(), "0");
}

TEST(NSDecimalNumber, ErrorsRaiseByDefault) {
  const auto large = number("9e164");
  try {
    large->decimalNumberByMultiplyingBy(*large);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSDecimalNumberOverflowException);
    EXPECT_EQ(exception.reason(), "NSDecimalNumber overflow exception");
  }
  EXPECT_THROW(large->decimalNumberByDividingBy(*NSDecimalNumber::zero()), NSException);
  EXPECT_NO_THROW(number("abc")->decimalNumberByDividingBy(*NSDecimalNumber::zero()));
}

TEST(NSDecimalNumber, IsItsOwnCopy) {
  const auto price = number("1.5");
  EXPECT_EQ(copyOfObject(price), price);
}

TEST(NSDecimalNumber, IsArchivedToTheLastDigit) {
  const std::string_view texts[] = {"0",       "1",     "-0.1",
                                    "19.99",   "65536", "99999999999999999999999999999999999999",
                                    "-1e-128", "9e127", "NaN"};
  for (const std::string_view text : texts) {
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(number(text));
    const id again = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data);
    ASSERT_TRUE(again && again->isMemberOfClass(NSDecimalNumber::classObject())) << text;
    EXPECT_EQ(static_cast<const NSDecimalNumber&>(*again).stringValue(),
              number(text)->stringValue());
  }
}

TEST(NSDecimalNumber, ArchivedPartsThatNoDecimalHasAreNaN) {
  const struct {
    long exponent;
    std::size_t bytes;
    bool isNegative;
  } rows[] = {{128, 16, false}, {-129, 16, false}, {0, 15, false}, {0, 17, false}, {0, 16, true}};
  for (const auto& row : rows) {
    const auto archiver = std::make_shared<NSKeyedArchiver>();
    archiver->encodeInteger(row.exponent, "NS.exponent");
    archiver->encodeBool(row.isNegative, "NS.negative");
    archiver->encodeObject(NSData::dataWithBytes(std::string(row.bytes, '\0')), "NS.mantissa");
    const Ref<NSCoder> reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
    const id value = send<id>(NSDecimalNumber::zero(), SEL("initWithCoder:"), reader);
    EXPECT_EQ(value->description(), "NaN") << row.exponent << " " << row.bytes;
  }
}

TEST(NSDecimalNumber, HasPartsAndConstants) {
  EXPECT_EQ(NSDecimalNumber::decimalNumberWithMantissa(250, -2, true)->stringValue(), "-2.5");
  EXPECT_EQ(NSDecimalNumber::zero()->stringValue(), "0");
  EXPECT_EQ(NSDecimalNumber::one()->stringValue(), "1");
  EXPECT_EQ(NSDecimalNumber::notANumber()->stringValue(), "NaN");
}

}  // namespace
}  // namespace rvf
