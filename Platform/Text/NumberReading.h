// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace rvf {

/// A number that a text begins with.
struct LeadingInteger {
  std::int32_t value;  ///< saturated: more digits than fit give the nearest limit
  std::size_t length;  ///< bytes of sign and digits, those of a saturated number included
};

/// Reads an optional "+" or "-" and the ASCII digits behind it. Absent if there is no digit.
std::optional<LeadingInteger> leadingInteger(std::string_view text) noexcept;

/// The same with the limits of 64 bits; 0 if there is no digit.
std::int64_t leadingInteger64(std::string_view text) noexcept;

/// The fraction that a text begins with, nearest to its decimal value: 0 if there is no digit,
/// infinite or 0 where it is out of range.
double leadingFraction(std::string_view text) noexcept;

}  // namespace rvf
