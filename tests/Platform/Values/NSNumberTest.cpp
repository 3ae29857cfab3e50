// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSNumber.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace rvf {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kMaxU64 = std::numeric_limits<std::uint64_t>::max();

TEST(NSNumber, RemembersTheTypeCodeThatItWasMadeWith) {
  const std::pair<Ref<NSNumber>, std::string_view> rows[] = {
      {box(true), "c"},
      {box('a'), "c"},
      {box(static_cast<signed char>(1)), "c"},
      {box(static_cast<unsigned char>(1)), "C"},
      {box(static_cast<short>(1)), "s"},
      {box(static_cast<unsigned short>(1)), "S"},
      {box(1), "i"},
      {box(1U), "I"},
      {box(1L), "q"},
      {box(1UL), "Q"},
      {box(1LL), "q"},
      {box(1ULL), "Q"},
      {box(1.0F), "f"},
      {box(1.0), "d"},
  };
  for (const auto& [number, typeCode] : rows)
    EXPECT_EQ(number->objCType(), typeCode);
}

TEST(NSNumber, IntegerReadingsOfIntegersWrap) {
  EXPECT_EQ(box(-1)->unsignedLongLongValue(), 18446744073709551615U);
  EXPECT_EQ(box(-1)->unsignedCharValue(), 255);
  EXPECT_EQ(box(300)->unsignedCharValue(), 44);
  EXPECT_EQ(box(200)->charValue(), -56);
  EXPECT_EQ(box(70000)->shortValue(), 4464);
  EXPECT_EQ(box(kMaxU64)->longLongValue(), -1);
  EXPECT_EQ(box(kMax64)->intValue(), -1);
  EXPECT_EQ(box(kMin64)->integerValue(), kMin64);
}

TEST(NSNumber, IntegerReadingsOfFractionsTruncateTowardZero) {
  EXPECT_EQ(box(2.9)->intValue(), 2);
  EXPECT_EQ(box(-2.9)->intValue(), -2);
  EXPECT_EQ(box(-0.9)->unsignedIntValue(), 0U);
}

TEST(NSNumber, IntegerReadingsOfFractionsSaturate) {
  EXPECT_EQ(box(1e10)->intValue(), std::numeric_limits<int>::max());
  EXPECT_EQ(box(-1e10)->intValue(), std::numeric_limits<int>::min());
  EXPECT_EQ(box(300.0)->charValue(), 127);
  EXPECT_EQ(box(-1.0)->unsignedIntValue(), 0U);
  EXPECT_EQ(box(1e30)->longLongValue(), kMax64);
  EXPECT_EQ(box(-1e30)->longLongValue(), kMin64);
  EXPECT_EQ(box(kInfinity)->unsignedLongLongValue(), kMaxU64);
  EXPECT_EQ(box(kNaN)->longLongValue(), 0);
}

TEST(NSNumber, IsTrueUnlessItIsZero) {
  EXPECT_TRUE(box(0.5)->boolValue());
  EXPECT_TRUE(box(-1)->boolValue());
  EXPECT_FALSE(box(0)->boolValue());
  EXPECT_FALSE(box(-0.0)->boolValue());
}

TEST(NSNumber, ComparesByValueWhateverTheTypes) {
  const struct {
    Ref<NSNumber> a;
    Ref<NSNumber> b;
    int order;
  } rows[] = {
      {box(1), box(1.0), 0},
      {box(1), box(true), 0},
      {box(0.0), box(-0.0), 0},
      {box(1), box(1.5), -1},
      {box(-1), box(kMaxU64), -1},
      {box(kMax64), box(static_cast<std::uint64_t>(kMax64)), 0},
      {box(kMax64), box(0x1p63), -1},
      {box(kMaxU64), box(0x1p64), -1},
      {box((1LL << 53) + 1), box(0x1p53), 1},
      {box(kMin64), box(-0x1p63), 0},
      {box(0U), box(-0.5), 1},
      {box(kMin64), box(-kInfinity), 1},
      {box(kNaN), box(-kInfinity), -1},
      {box(kNaN), box(kMin64), -1},
      {box(kNaN), box(-kNaN), 0},
  };
  for (const auto& [a, b, order] : rows) {
    EXPECT_EQ(a->compare(*b), order) << a->stringValue() << " with " << b->stringValue();
    EXPECT_EQ(b->compare(*a), -order) << b->stringValue() << " with " << a->stringValue();
    EXPECT_EQ(a->isEqual(b.get()), order == 0);
    if (order != 0) continue;
    EXPECT_EQ(a->hash(), b->hash()) << a->stringValue();
  }
}

TEST(NSNumber, IsUnequalToOtherObjects) {
  EXPECT_FALSE(box(1)->isEqual(nullptr));
  EXPECT_FALSE(box(1)->isEqual(NSValue::valueWithBytes(1, "i").get()));
}

TEST(NSNumber, EqualIntegersOfAllWidthsHashAlike) {
  EXPECT_TRUE(rc::check([](std::int64_t value) {
    const auto number = box(value);
    RC_ASSERT(number->hash() == box(static_cast<std::uint64_t>(value))->hash() || value < 0);
    const auto fraction = box(static_cast<double>(value));
    RC_ASSERT(!number->isEqual(fraction.get()) || number->hash() == fraction->hash());
  }));
}

TEST(NSNumber, PrintsTheShortestTextThatReadsBack) {
  const std::pair<Ref<NSNumber>, std::string_view> rows[] = {
      {box(true), "1"},
      {box(false), "0"},
      {box('a'), "97"},
      {box(-5), "-5"},
      {box(kMaxU64), "18446744073709551615"},
      {box(kMin64), "-9223372036854775808"},
      {box(1.0), "1"},
      {box(100000.0), "100000"},
      {box(0.1), "0.1"},
      {box(0.1F), "0.1"},
      {box(static_cast<double>(0.1F)), "0.10000000149011612"},
      {box(0.1 + 0.2), "0.30000000000000004"},
      {box(1e15), "1000000000000000"},
      {box(1e16), "1e+16"},
      {box(1e22), "1e+22"},
      {box(0.0001), "0.0001"},
      {box(0.00001), "1e-05"},
      {box(-0.0), "-0"},
      {box(kInfinity), "inf"},
      {box(-kInfinity), "-inf"},
      {box(-kNaN), "nan"},
  };
  for (const auto& [number, text] : rows) {
    EXPECT_EQ(number->stringValue(), text);
    EXPECT_EQ(number->description(), text);
  }
}

TEST(NSNumber, EveryFractionReadsBackFromItsText) {
  EXPECT_TRUE(rc::check([](double value) {
    const std::string text = box(value)->stringValue();
    double read = 0;
    std::from_chars(text.data(), text.data() + text.size(), read);
    RC_ASSERT(read == value);
  }));
}

TEST(NSNumber, FloatsBeyondTheirRangeAreInfinite) {
  constexpr float kLargest = std::numeric_limits<float>::max();
  const std::pair<double, float> rows[] = {
      {0.5, 0.5F},
      {kLargest, kLargest},
      {kLargest + 0x1p102, kLargest},
      {kLargest + 0x1p103, std::numeric_limits<float>::infinity()},
      {-1e300, -std::numeric_limits<float>::infinity()},
      {-kInfinity, -std::numeric_limits<float>::infinity()},
  };
  for (const auto& [value, expected] : rows)
    EXPECT_EQ(box(value)->floatValue(), expected) << value;
  EXPECT_TRUE(std::isnan(box(kNaN)->floatValue()));
}

}  // namespace
}  // namespace rvf
