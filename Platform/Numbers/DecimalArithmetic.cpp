// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/DecimalArithmetic.h"

#include <algorithm>
#include <cstdint>

namespace rvf {
namespace {

constexpr int kDigitsPerStep = 19;  // 10^19 is the largest power of ten in 64 bits

/// What rounding looks at of the part that is cut off.
struct CutOff {
  unsigned firstDigit = 0;
  bool hasMore = false;

  bool isNothing() const noexcept { return firstDigit == 0 && !hasMore; }
};

/// Divides by 10^count.
CutOff cutDigits(UInt256& value, int count, bool hasMore) noexcept {
  CutOff cut{0, hasMore};
  if (count <= 0) return cut;
  if (count > static_cast<int>(kPowersOfTen.size())) {
    cut.hasMore = cut.hasMore || !value.isZero();
    value = {};
    return cut;
  }
  for (int left = count - 1; left > 0; left -= kDigitsPerStep) {
    const auto power = static_cast<std::uint64_t>(powerOfTen(std::min(left, kDigitsPerStep)));
    if (divideInPlace(value, power) != 0) cut.hasMore = true;
  }
  cut.firstDigit = static_cast<unsigned>(divideInPlace(value, 10));
  return cut;
}

bool roundsAwayFromZero(const CutOff& cut, bool isOdd, bool isNegative,
                        DecimalRounding rounding) noexcept {
  switch (rounding) {
    case DecimalRounding::plain:
      return cut.firstDigit >= 5;
    case DecimalRounding::down:
      return isNegative && !cut.isNothing();
    case DecimalRounding::up:
      return !isNegative && !cut.isNothing();
    case DecimalRounding::bankers:
      return cut.firstDigit > 5 || (cut.firstDigit == 5 && (cut.hasMore || isOdd));
    case DecimalRounding::towardZero:
      break;
  }
  return false;
}

template <class Integer>
int stripFinalZeros(Integer& mantissa) noexcept {
  int count = 0;
  for (; mantissa % 10 == 0; mantissa /= 10)
    ++count;
  return count;
}

/// Takes the zeros off the end of a mantissa that is not zero; returns how many.
int stripZeros(UInt128& mantissa) noexcept {
  if ((mantissa & 1) != 0) return 0;
  int count = 0;
  if (mantissa >> 64 != 0) {
    for (const int step : {16, 8, 4, 2, 1}) {
      const UInt128 power = powerOfTen(step);
      while (mantissa % power == 0) {
        mantissa /= power;
        count += step;
      }
    }
    return count;
  }
  auto small = static_cast<std::uint64_t>(mantissa);
  count = stripFinalZeros(small);
  mantissa = small;
  return count;
}

}  // namespace

NSDecimalResult DecimalArithmetic::rounded(ExactDecimal exact, DecimalRounding rounding,
                                           int scale) noexcept {
  const int excess = digitCount(exact.magnitude) - NSDecimal::kMaximumDigits;
  const int tooFine = NSDecimal::kMinimumExponent - exact.exponent;
  const int beyondScale =
      scale == NSDecimalNoScale ? 0 : static_cast<int>(-std::int64_t{scale} - exact.exponent);
  const int cutCount = std::max({0, excess, tooFine, beyondScale});
  const bool wasZero = exact.magnitude.isZero();
  const CutOff cut = cutDigits(exact.magnitude, cutCount, exact.hasMore);
  UInt128 mantissa = exact.magnitude.low;
  if (roundsAwayFromZero(cut, (mantissa & 1) != 0, exact.isNegative, rounding)) ++mantissa;
  if (!wasZero && mantissa == 0 && tooFine >= std::max(excess, beyondScale))
    return {NSDecimal(), NSCalculationUnderflow};
  NSDecimalResult result = normalized(mantissa, exact.exponent + cutCount, exact.isNegative);
  if (!result.error && !cut.isNothing()) result.error = NSCalculationLossOfPrecision;
  return result;
}

NSDecimalResult DecimalArithmetic::normalized(UInt128 mantissa, int exponent,
                                              bool isNegative) noexcept {
  if (mantissa == 0) return {};
  exponent += stripZeros(mantissa);
  if (exponent > NSDecimal::kMaximumExponent) {
    const int padding = exponent - NSDecimal::kMaximumExponent;
    if (padding + digitCount(mantissa) > NSDecimal::kMaximumDigits)
      return {NSDecimal::notANumber(), NSCalculationOverflow};
    mantissa *= powerOfTen(padding);
    exponent = NSDecimal::kMaximumExponent;
  }
  NSDecimal value;
  value.mantissa_ = mantissa;
  value.exponent_ = static_cast<std::int16_t>(exponent);
  value.isNegative_ = isNegative;
  return {value, NSCalculationNoError};
}

namespace {

DecimalRounding roundingOf(NSRoundingMode mode) noexcept {
  switch (mode) {
    case NSRoundDown:
      return DecimalRounding::down;
    case NSRoundUp:
      return DecimalRounding::up;
    case NSRoundBankers:
      return DecimalRounding::bankers;
    case NSRoundPlain:
      break;
  }
  return DecimalRounding::plain;
}

NSDecimalResult rounded(const ExactDecimal& exact, NSRoundingMode mode, int scale) noexcept {
  return DecimalArithmetic::rounded(exact, roundingOf(mode), scale);
}

ExactDecimal exactly(const NSDecimal& value) noexcept {
  return {UInt256(value.mantissa()), value.exponent(), value.isNegative(), false};
}

/// The smaller of two numbers of different exponents in units of 10^exponent, which is lower than
/// the other's by at most 39.
ExactDecimal inUnits(const NSDecimal& value, int exponent) noexcept {
  ExactDecimal exact = exactly(value);
  if (exponent <= value.exponent()) {
    const int zeros = value.exponent() - exponent;
    const int first = std::min(zeros, NSDecimal::kMaximumDigits);
    exact.magnitude = multiply(value.mantissa(), powerOfTen(first));
    if (zeros > first) exact.magnitude = exact.magnitude * 10;
  } else {
    const CutOff cut = cutDigits(exact.magnitude, exponent - value.exponent(), false);
    exact.hasMore = !cut.isNothing();
  }
  exact.exponent = exponent;
  return exact;
}

/// |a| - |b| of two numbers in the same units, the first of which is exact or not smaller.
ExactDecimal difference(const ExactDecimal& a, const ExactDecimal& b) noexcept {
  if (a.magnitude < b.magnitude) {
    return {b.magnitude - a.magnitude, a.exponent, !a.isNegative, false};
  }
  const UInt256 whole = a.magnitude - b.magnitude;
  return {b.hasMore ? whole - UInt256(1) : whole, a.exponent, a.isNegative, b.hasMore};
}

/// Beyond 39 places the smaller number only shows in the way that the last digit is rounded: the
/// larger one then has 39 digits or more, and the smaller less than one hundredth of it.
ExactDecimal sum(const NSDecimal& a, const NSDecimal& b) noexcept {
  constexpr int kMostPlaces = NSDecimal::kMaximumDigits + 1;
  const NSDecimal& coarse = a.exponent() >= b.exponent() ? a : b;
  const NSDecimal& fine = a.exponent() >= b.exponent() ? b : a;
  const int exponent = std::max(coarse.exponent() - kMostPlaces, fine.exponent());
  const ExactDecimal first = inUnits(coarse, exponent);
  const ExactDecimal second = inUnits(fine, exponent);
  if (first.isNegative != second.isNegative) return difference(first, second);
  return {first.magnitude + second.magnitude, exponent, first.isNegative, second.hasMore};
}

}  // namespace

NSDecimalResult NSDecimalAdd(const NSDecimal& a, const NSDecimal& b, NSRoundingMode mode,
                             int scale) noexcept {
  if (a.isNaN() || b.isNaN()) return {NSDecimal::notANumber()};
  if (a.isZero()) return NSDecimalRound(b, scale, mode);
  if (b.isZero()) return NSDecimalRound(a, scale, mode);
  return rounded(sum(a, b), mode, scale);
}

NSDecimalResult NSDecimalSubtract(const NSDecimal& a, const NSDecimal& b, NSRoundingMode mode,
                                  int scale) noexcept {
  if (b.isNaN()) return {NSDecimal::notANumber()};
  return NSDecimalAdd(a, NSDecimal::fromParts(b.mantissa(), b.exponent(), !b.isNegative()), mode,
                      scale);
}

NSDecimalResult NSDecimalMultiply(const NSDecimal& a, const NSDecimal& b, NSRoundingMode mode,
                                  int scale) noexcept {
  if (a.isNaN() || b.isNaN()) return {NSDecimal::notANumber()};
  return rounded({multiply(a.mantissa(), b.mantissa()), a.exponent() + b.exponent(),
                  a.isNegative() != b.isNegative(), false},
                 mode, scale);
}

NSDecimalResult NSDecimalDivide(const NSDecimal& a, const NSDecimal& b, NSRoundingMode mode,
                                int scale) noexcept {
  if (a.isNaN() || b.isNaN()) return {NSDecimal::notANumber()};
  if (b.isZero()) return {NSDecimal::notANumber(), NSCalculationDivideByZero};
  // A dividend of 77 digits leaves at least 39 in the quotient.
  const int zeros = NSDecimal::kMaximumDigits - digitCount(a.mantissa());
  const UInt256 dividend =
      multiply(a.mantissa() * powerOfTen(a.isZero() ? 0 : zeros), powerOfTen(38)) * 10;
  const UInt256Division division = divide(dividend, b.mantissa());
  return rounded({division.quotient, a.exponent() - b.exponent() - zeros - 39,
                  a.isNegative() != b.isNegative(), division.remainder != 0},
                 mode, scale);
}

NSDecimalResult NSDecimalRound(const NSDecimal& value, int scale, NSRoundingMode mode) noexcept {
  if (value.isNaN()) return {value};
  if (scale == NSDecimalNoScale || -std::int64_t{scale} <= value.exponent()) return {value};
  return rounded(exactly(value), mode, scale);
}

int NSDecimalCompare(const NSDecimal& a, const NSDecimal& b) noexcept {
  if (a.isNaN() || b.isNaN()) return static_cast<int>(b.isNaN()) - static_cast<int>(a.isNaN());
  if (a == b) return 0;
  if (a.isNegative() != b.isNegative()) return a.isNegative() ? -1 : 1;
  const int sign = a.isNegative() ? -1 : 1;
  if (a.isZero() || b.isZero()) return a.isZero() ? -sign : sign;
  const int placesA = digitCount(a.mantissa()) + a.exponent();
  const int placesB = digitCount(b.mantissa()) + b.exponent();
  if (placesA != placesB) return placesA < placesB ? -sign : sign;
  const int unit = std::min(a.exponent(), b.exponent());
  const bool isLess = a.mantissa() * powerOfTen(a.exponent() - unit) <
                      b.mantissa() * powerOfTen(b.exponent() - unit);
  return isLess ? -sign : sign;
}

}  // namespace rvf
