// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// Where a result lies between two representable ones, the one to take.
enum NSRoundingMode : unsigned char {
  NSRoundPlain,   ///< the nearer; halves away from zero
  NSRoundDown,    ///< the lower (toward minus infinity)
  NSRoundUp,      ///< the higher (toward plus infinity)
  NSRoundBankers  ///< the nearer; halves to the even last digit
};

/// What went wrong in a calculation, and what its result is then.
enum NSCalculationError : unsigned char {
  NSCalculationNoError,
  NSCalculationLossOfPrecision,  ///< rounded
  NSCalculationUnderflow,        ///< too near to zero: zero
  NSCalculationOverflow,         ///< too large: not a number
  NSCalculationDivideByZero      ///< not a number
};

/// As a scale: as many decimals as there are.
inline constexpr int NSDecimalNoScale = SHRT_MAX;

/// A decimal number: a sign, a mantissa of at most 38 decimal digits and an exponent of ten from
/// -128 to 127, or NaN. `NSDecimalNumber` is its object form.
///
/// Kept with the shortest mantissa, so equal numbers are equal member by member. There is one zero,
/// without sign. NaN equals itself and orders below every number.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
class RVF_EXPORT NSDecimal final {
 public:
  __extension__ using Mantissa = unsigned __int128;

  static constexpr int kMaximumDigits = 38;
  static constexpr int kMinimumExponent = -128;
  static constexpr int kMaximumExponent = 127;
  /// Bytes that `write` needs at most, whatever the number.
  static constexpr std::size_t kLongestText = 1 + kMaximumDigits + kMaximumExponent;

  /// Zero.
  constexpr NSDecimal() noexcept = default;
  static NSDecimal notANumber() noexcept;

  /// Exact for every integer.
  static NSDecimal fromInteger(std::int64_t value) noexcept;
  static NSDecimal fromInteger(std::uint64_t value) noexcept;
  /// The shortest decimal that reads back to the same double: 0.1 is 0.1. Too near to zero is
  /// zero; infinities and what is too large are NaN.
  static NSDecimal fromDouble(double value) noexcept;
  /// mantissa * 10^exponent. Digits beyond the 38th or 10^-128 are dropped, too large is NaN.
  static NSDecimal fromParts(Mantissa mantissa, int exponent, bool isNegative) noexcept;
  /// The number that a text begins with: white space, a sign, ASCII digits with one decimal
  /// separator among, before or behind them, an exponent ("e" or "E", a sign, digits). Reading
  /// stops where the text is no number any more; digits beyond the 38th are dropped. NaN if there
  /// is no digit or the number is too large.
  static NSDecimal fromText(std::string_view text, std::string_view separator = ".") noexcept;

  /// Unless it is NaN, the number is mantissa * 10^exponent, with the sign of `isNegative`.
  bool isNaN() const noexcept { return isNaN_; }
  bool isZero() const noexcept { return mantissa_ == 0 && !isNaN_; }
  bool isNegative() const noexcept { return isNegative_; }
  Mantissa mantissa() const noexcept { return mantissa_; }
  int exponent() const noexcept { return exponent_; }

  /// Never with an exponent: "-0.00000015", "10000000000"; "NaN".
  std::string text(std::string_view separator = ".") const;
  /// The same with "." into a buffer of `kLongestText` bytes; returns the end of the text, which is
  /// not terminated.
  char* write(char* buffer) const noexcept;
  /// The nearest double.
  double doubleValue() const noexcept;
  /// Without its decimals, toward zero.
  NSDecimal truncated() const noexcept;

  friend bool operator==(const NSDecimal&, const NSDecimal&) noexcept = default;

 private:
  friend class DecimalArithmetic;

  Mantissa mantissa_ = 0;
  std::int16_t exponent_ = 0;
  bool isNegative_ = false;
  bool isNaN_ = false;
};

/// The result of a calculation, and whether it is exact.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct NSDecimalResult {
  NSDecimal value;
  NSCalculationError error = NSCalculationNoError;
};

/// Arithmetic: the exact result, rounded once, to `scale` decimals (negative: tens, hundreds, …)
/// and at most 38 digits. NaN in, NaN out, without error.
RVF_EXPORT NSDecimalResult NSDecimalAdd(const NSDecimal& a, const NSDecimal& b,
                                        NSRoundingMode mode = NSRoundPlain,
                                        int scale = NSDecimalNoScale) noexcept;
RVF_EXPORT NSDecimalResult NSDecimalSubtract(const NSDecimal& a, const NSDecimal& b,
                                             NSRoundingMode mode = NSRoundPlain,
                                             int scale = NSDecimalNoScale) noexcept;
RVF_EXPORT NSDecimalResult NSDecimalMultiply(const NSDecimal& a, const NSDecimal& b,
                                             NSRoundingMode mode = NSRoundPlain,
                                             int scale = NSDecimalNoScale) noexcept;
RVF_EXPORT NSDecimalResult NSDecimalDivide(const NSDecimal& a, const NSDecimal& b,
                                           NSRoundingMode mode = NSRoundPlain,
                                           int scale = NSDecimalNoScale) noexcept;
RVF_EXPORT NSDecimalResult NSDecimalRound(const NSDecimal& value, int scale,
                                          NSRoundingMode mode) noexcept;

/// Negative, 0 or positive.
RVF_EXPORT int NSDecimalCompare(const NSDecimal& a, const NSDecimal& b) noexcept;

}  // namespace rvf
