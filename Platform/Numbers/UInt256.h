// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>

namespace rvf {

__extension__ using UInt128 = unsigned __int128;

/// Exactly as much of a 256-bit unsigned integer as decimal arithmetic needs for its intermediate
/// results: products and quotients of 38-digit mantissas. Everything wraps like the built-in types.
struct UInt256 {
  UInt128 high = 0;
  UInt128 low = 0;

  constexpr UInt256() = default;
  constexpr UInt256(UInt128 value) noexcept : low(value) {}
  constexpr UInt256(UInt128 highHalf, UInt128 lowHalf) noexcept : high(highHalf), low(lowHalf) {}

  constexpr bool isZero() const noexcept { return high == 0 && low == 0; }
  constexpr bool bit(int index) const noexcept {
    return ((index < 128 ? low >> index : high >> (index - 128)) & 1) != 0;
  }
  /// 0 for zero.
  constexpr int bitLength() const noexcept;

  friend constexpr bool operator==(const UInt256&, const UInt256&) noexcept = default;
  friend constexpr std::strong_ordering operator<=>(const UInt256& a, const UInt256& b) noexcept {
    return a.high != b.high ? a.high <=> b.high : a.low <=> b.low;
  }
  friend constexpr UInt256 operator+(const UInt256& a, const UInt256& b) noexcept {
    const UInt128 lowSum = a.low + b.low;
    return {a.high + b.high + (lowSum < a.low ? 1 : 0), lowSum};
  }
  friend constexpr UInt256 operator-(const UInt256& a, const UInt256& b) noexcept {
    return {a.high - b.high - (a.low < b.low ? 1 : 0), a.low - b.low};
  }
};

constexpr int bitLength(UInt128 value) noexcept {
  const auto upper = static_cast<std::uint64_t>(value >> 64);
  const auto lower = static_cast<std::uint64_t>(value);
  return upper ? 128 - std::countl_zero(upper) : 64 - std::countl_zero(lower);
}

constexpr int UInt256::bitLength() const noexcept {
  return high ? 128 + rvf::bitLength(high) : rvf::bitLength(low);
}

/// The whole product.
constexpr UInt256 multiply(UInt128 a, UInt128 b) noexcept {
  const UInt128 aLow = static_cast<std::uint64_t>(a);
  const UInt128 aHigh = a >> 64;
  const UInt128 bLow = static_cast<std::uint64_t>(b);
  const UInt128 bHigh = b >> 64;
  const UInt128 lowest = aLow * bLow;
  const UInt128 cross = aHigh * bLow + (lowest >> 64);
  const UInt128 otherCross = aLow * bHigh + static_cast<std::uint64_t>(cross);
  return {aHigh * bHigh + (cross >> 64) + (otherCross >> 64),
          (otherCross << 64) | static_cast<std::uint64_t>(lowest)};
}

constexpr UInt256 operator*(const UInt256& a, std::uint64_t b) noexcept {
  const UInt256 product = multiply(a.low, b);
  return {product.high + a.high * b, product.low};
}

/// Divides in place and returns the remainder.
constexpr std::uint64_t divideInPlace(UInt256& value, std::uint64_t divisor) noexcept {
  UInt128 remainder = 0;
  const auto step = [&](UInt128 limb) {
    const UInt128 dividend = remainder << 64 | limb;
    remainder = dividend % divisor;
    return dividend / divisor;
  };
  const UInt128 highest = value.high ? step(value.high >> 64) : 0;
  const UInt128 high = value.high ? step(static_cast<std::uint64_t>(value.high)) : 0;
  value.high = highest << 64 | high;
  const UInt128 middle = step(value.low >> 64);
  const UInt128 low = step(static_cast<std::uint64_t>(value.low));
  value.low = middle << 64 | low;
  return static_cast<std::uint64_t>(remainder);
}

struct UInt256Division {
  UInt256 quotient;
  UInt128 remainder;
};

/// Long division, bit by bit. The divisor is at most 127 bits long and not zero.
constexpr UInt256Division divide(const UInt256& dividend, UInt128 divisor) noexcept {
  UInt256Division result{{}, 0};
  for (int index = dividend.bitLength() - 1; index >= 0; --index) {
    result.remainder = result.remainder << 1 | (dividend.bit(index) ? 1 : 0);
    result.quotient = result.quotient + result.quotient;
    if (result.remainder < divisor) continue;
    result.remainder -= divisor;
    result.quotient.low |= 1;
  }
  return result;
}

}  // namespace rvf
