// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NumberText.h"

#include <fmt/format.h>
#include <fmt/printf.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace rvf {
namespace {

long long signedNumber(unsigned long long bits, std::string_view length) noexcept {
  if (length == "hh") return static_cast<signed char>(bits);
  if (length == "h") return static_cast<short>(bits);
  if (length.empty()) return static_cast<int>(bits);
  return static_cast<long long>(bits);
}

unsigned long long unsignedNumber(unsigned long long bits, std::string_view length) noexcept {
  if (length == "hh") return static_cast<unsigned char>(bits);
  if (length == "h") return static_cast<unsigned short>(bits);
  if (length.empty()) return static_cast<unsigned>(bits);
  return bits;
}

std::string digitsOf(unsigned long long value, char conversion) {
  switch (conversion) {
    case 'x':
      return fmt::format("{:x}", value);
    case 'X':
      return fmt::format("{:X}", value);
    case 'o':
      return fmt::format("{:o}", value);
    default:
      return fmt::format("{}", value);
  }
}

/// The digits, at least as many as the precision asks for; none for 0 with precision 0.
std::string digitsOf(unsigned long long value, char conversion,
                     std::optional<std::size_t> precision) {
  if (value == 0 && precision == 0U) return "";
  std::string digits = digitsOf(value, conversion);
  const std::size_t minimum = precision.value_or(0);
  if (digits.size() < minimum) digits.insert(0, minimum - digits.size(), '0');
  return digits;
}

std::string plainFloatingText(const FormatFlags& flags, std::optional<std::size_t> precision,
                              char conversion, double value) {
  std::string form = "%";
  if (flags.plus) form += '+';
  if (flags.blank) form += ' ';
  if (flags.alternate) form += '#';
  if (precision) form += fmt::format(".{}", *precision);
  form += conversion;
  return fmt::sprintf(form, value);
}

/// `%#g` by its definition, because fmt's prints "100000.0" for "100000.".
std::string alternateGeneralText(const FormatFlags& flags, std::optional<std::size_t> precision,
                                 char exponentMark, double value) {
  const auto significant = static_cast<int>(std::max<std::size_t>(precision.value_or(6), 1));
  const auto afterPoint = static_cast<std::size_t>(significant - 1);
  const std::string scientific = plainFloatingText(flags, afterPoint, exponentMark, value);
  const int exponent = std::atoi(scientific.c_str() + scientific.find(exponentMark) + 1);
  if (exponent < -4 || exponent >= significant) return scientific;
  return plainFloatingText(flags, static_cast<std::size_t>(significant - 1 - exponent), 'f', value);
}

}  // namespace

std::string signedText(const FormatFlags& flags, std::optional<std::size_t> precision,
                       std::string_view length, unsigned long long bits) {
  const long long value = signedNumber(bits, length);
  const auto magnitude = static_cast<unsigned long long>(value);
  const std::string sign = value < 0 ? "-" : flags.plus ? "+" : flags.blank ? " " : "";
  return sign + digitsOf(value < 0 ? 0 - magnitude : magnitude, 'd', precision);
}

std::string unsignedText(const FormatFlags& flags, std::optional<std::size_t> precision,
                         std::string_view length, char conversion, unsigned long long bits) {
  const unsigned long long value = unsignedNumber(bits, length);
  const std::string digits = digitsOf(value, conversion, precision);
  if (!flags.alternate) return digits;
  if (conversion == 'o') return digits.starts_with('0') ? digits : "0" + digits;
  const bool isPrefixed = value != 0 && (conversion == 'x' || conversion == 'X');
  return isPrefixed ? std::string{'0', conversion} + digits : digits;
}

std::string floatingText(const FormatFlags& flags, std::optional<std::size_t> precision,
                         char conversion, double value) {
  if (flags.alternate && std::isfinite(value)) {
    if (conversion == 'g') return alternateGeneralText(flags, precision, 'e', value);
    if (conversion == 'G') return alternateGeneralText(flags, precision, 'E', value);
  }
  return plainFloatingText(flags, precision, conversion, value);
}

std::size_t startOfDigits(std::string_view number) noexcept {
  const std::size_t start = number.find_first_of("+- ") == 0 ? 1 : 0;
  const std::string_view digits = number.substr(start);
  return digits.starts_with("0x") || digits.starts_with("0X") ? start + 2 : start;
}

}  // namespace rvf
