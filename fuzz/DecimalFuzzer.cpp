// SPDX-License-Identifier: Apache-2.0
//
// Reads any bytes as two decimal numbers, written with one of several separators, and calculates
// with them: what is written reads back, and the laws of arithmetic that rounding leaves hold.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Numbers/NSDecimal.h"

namespace {

using rvf::NSDecimal;

void require(bool isTrue) {
  if (!isTrue) std::abort();
}

void calculate(const NSDecimal& a, const NSDecimal& b, rvf::NSRoundingMode mode, int scale) {
  require(rvf::NSDecimalAdd(a, b, mode, scale).value == rvf::NSDecimalAdd(b, a, mode, scale).value);
  require(rvf::NSDecimalMultiply(a, b, mode, scale).value ==
          rvf::NSDecimalMultiply(b, a, mode, scale).value);
  require(rvf::NSDecimalCompare(a, b) == -rvf::NSDecimalCompare(b, a));
  const auto difference = rvf::NSDecimalSubtract(a, b);
  if (!difference.value.isNaN() && !difference.error)
    require(rvf::NSDecimalCompare(difference.value, NSDecimal()) == rvf::NSDecimalCompare(a, b));
  const auto quotient = rvf::NSDecimalDivide(a, b, mode, scale);
  if (!quotient.error && !quotient.value.isNaN() && scale == rvf::NSDecimalNoScale) {
    const auto product = rvf::NSDecimalMultiply(quotient.value, b);
    require(product.error || product.value == a);
  }
  const auto rounded = rvf::NSDecimalRound(a, scale, mode).value;
  require(rvf::NSDecimalRound(rounded, scale, mode).value == rounded);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::string_view kSeparators[] = {".", ",", "\u066B", ""};
  if (size < 2) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
  const std::string_view separator = kSeparators[data[0] >> 2 & 3];
  const std::size_t end = text.find(';');
  const NSDecimal a = NSDecimal::fromText(text.substr(0, end), separator);
  const NSDecimal b =
      NSDecimal::fromText(text.substr(end == std::string_view::npos ? 0 : end + 1), separator);
  if (!separator.empty()) require(NSDecimal::fromText(a.text(separator), separator) == a);
  require(NSDecimal::fromParts(a.mantissa(), a.exponent(), a.isNegative()) == a || a.isNaN());
  const int scale = data[1] < 128 ? rvf::NSDecimalNoScale : data[1] - 192;
  calculate(a, b, static_cast<rvf::NSRoundingMode>(data[0] & 3), scale);
  return 0;
}
