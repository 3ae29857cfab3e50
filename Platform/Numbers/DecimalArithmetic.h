// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>

#include "Platform/Numbers/NSDecimal.h"
#include "Platform/Numbers/UInt256.h"

namespace rvf {

/// 10^0 to 10^77, all that 256 bits hold.
inline constexpr auto kPowersOfTen = [] {
  std::array<UInt256, 78> powers;
  powers[0] = UInt256(1);
  for (std::size_t i = 1; i < powers.size(); ++i)
    powers[i] = powers[i - 1] * 10;
  return powers;
}();

/// 10^0 to 10^38.
constexpr UInt128 powerOfTen(int exponent) noexcept {
  return kPowersOfTen[static_cast<std::size_t>(exponent)].low;
}

/// The number of decimal digits; 0 for zero.
constexpr int digitCount(const UInt256& value) noexcept {
  const int estimate = value.bitLength() * 1233 >> 12;  // log10(2) from below
  return value < kPowersOfTen[static_cast<std::size_t>(estimate)] ? estimate : estimate + 1;
}

/// An exact result before it is rounded: (magnitude + what `hasMore` stands for) * 10^exponent,
/// where `hasMore` is something more than 0 and less than 1.
struct ExactDecimal {
  UInt256 magnitude;
  int exponent = 0;
  bool isNegative = false;
  bool hasMore = false;  ///< only with a magnitude of at least 39 digits
};

enum class DecimalRounding : unsigned char { plain, down, up, bankers, towardZero };

/// Makes numbers in their one form from exact results.
class DecimalArithmetic final {
 public:
  static NSDecimalResult rounded(ExactDecimal exact, DecimalRounding rounding, int scale) noexcept;

 private:
  static NSDecimalResult normalized(UInt128 mantissa, int exponent, bool isNegative) noexcept;
};

}  // namespace rvf
