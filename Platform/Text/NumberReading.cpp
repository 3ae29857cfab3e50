// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NumberReading.h"

#include <algorithm>
#include <limits>

namespace rvf {
namespace {

constexpr bool isAsciiDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

}  // namespace

std::optional<LeadingInteger> leadingInteger(std::string_view text) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  constexpr std::int64_t kBeyond = std::int64_t{Limits::max()} + 1;  // the magnitude of the least
  const bool isNegative = text.starts_with('-');
  const std::size_t start = isNegative || text.starts_with('+') ? 1 : 0;
  std::size_t end = start;
  std::int64_t magnitude = 0;
  for (; end < text.size() && isAsciiDigit(text[end]); ++end) {
    magnitude = std::min(magnitude * 10 + (text[end] - '0'), kBeyond);
  }
  if (end == start) return std::nullopt;
  const std::int64_t value = isNegative ? -magnitude : std::min(magnitude, kBeyond - 1);
  return LeadingInteger{static_cast<std::int32_t>(value), end};
}

}  // namespace rvf
