// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NumberReading.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

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

std::int64_t leadingInteger64(std::string_view text) noexcept {
  using Limits = std::numeric_limits<std::int64_t>;
  const bool isNegative = text.starts_with('-');
  if (text.starts_with('+')) text.remove_prefix(1);
  if (text.starts_with('-') && !isNegative) return 0;
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) return isNegative ? Limits::min() : Limits::max();
  return value;
}

double leadingFraction(std::string_view text) noexcept {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  // The library reads "inf" and "nan" too, and a second sign.
  const bool hasDigit =
      !text.empty() &&
      (isAsciiDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isAsciiDigit(text[1])));
  if (!hasDigit) return 0;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    const std::string_view read(text.data(), static_cast<std::size_t>(end - text.data()));
    const std::size_t exponent = read.find_first_of("eE");
    const bool isTiny = exponent != std::string_view::npos
                            ? read.substr(exponent + 1).starts_with('-')
                            : read.find_first_of("123456789") > read.find('.');
    value = isTiny ? 0 : std::numeric_limits<double>::infinity();
  }
  return isNegative ? -value : value;
}

}  // namespace rvf
