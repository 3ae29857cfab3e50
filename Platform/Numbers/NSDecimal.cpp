// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSDecimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "Platform/Numbers/DecimalArithmetic.h"
#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Larger exponents than this in a text make no difference, even to a mantissa of many digits.
constexpr int kLargestTextExponent = 1'000'000'000;

/// Reads the digits of a number and remembers where the decimal point is.
class DigitReader final {
 public:
  /// Reads digits from the front of the text; those behind the point lower the exponent.
  void read(std::string_view& text, bool isFraction) noexcept {
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
      add(static_cast<unsigned>(text.front() - '0'), isFraction);
    }
  }

  bool hasDigits() const noexcept { return hasDigits_; }
  NSDecimal::Mantissa mantissa() const noexcept { return mantissa_; }
  std::int64_t exponent() const noexcept { return exponent_; }

 private:
  void add(unsigned digit, bool isFraction) noexcept {
    hasDigits_ = true;
    const bool isKept = count_ < NSDecimal::kMaximumDigits;
    if (isKept) {
      mantissa_ = mantissa_ * 10 + digit;
      if (mantissa_ != 0) ++count_;
    }
    if (isKept && isFraction) --exponent_;
    if (!isKept && !isFraction) ++exponent_;
  }

  NSDecimal::Mantissa mantissa_ = 0;
  std::int64_t exponent_ = 0;
  int count_ = 0;  ///< of digits in the mantissa
  bool hasDigits_ = false;
};

/// Takes one "+" or "-" off the front; whether it is a "-".
bool takeSign(std::string_view& text) noexcept {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  return isNegative;
}

/// The exponent that a text begins with; 0 if it is not whole.
int readExponent(std::string_view text) noexcept {
  if (!text.starts_with('e') && !text.starts_with('E')) return 0;
  text.remove_prefix(1);
  const bool isNegative = takeSign(text);
  std::int64_t exponent = 0;
  for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
    exponent = std::min<std::int64_t>(exponent * 10 + (text.front() - '0'), kLargestTextExponent);
  }
  return static_cast<int>(isNegative ? -exponent : exponent);
}

/// Writes the digits without leading zeros; returns their end.
char* writeDigits(char* buffer, UInt128 value) noexcept {
  constexpr UInt128 kStep = powerOfTen(19);
  if (value >= kStep) {
    buffer = writeDigits(buffer, value / kStep);
    std::array<char, 20> lower{};
    const char* end =
        std::to_chars(lower.begin(), lower.end(), static_cast<std::uint64_t>(value % kStep)).ptr;
    buffer = std::fill_n(buffer, 19 - (end - lower.data()), '0');
    return std::copy(static_cast<const char*>(lower.data()), end, buffer);
  }
  return std::to_chars(buffer, buffer + 20, static_cast<std::uint64_t>(value)).ptr;
}

}  // namespace

NSDecimal NSDecimal::notANumber() noexcept {
  NSDecimal value;
  value.isNaN_ = true;
  return value;
}

NSDecimal NSDecimal::fromInteger(std::int64_t value) noexcept {
  const auto bits = static_cast<std::uint64_t>(value);
  return fromParts(value < 0 ? 0 - bits : bits, 0, value < 0);
}

NSDecimal NSDecimal::fromInteger(std::uint64_t value) noexcept {
  return fromParts(value, 0, false);
}

NSDecimal NSDecimal::fromDouble(double value) noexcept {
  std::array<char, 32> text{};
  const char* end =
      std::to_chars(text.begin(), text.end(), value, std::chars_format::scientific).ptr;
  return fromText({text.data(), static_cast<std::size_t>(end - text.data())});
}

NSDecimal NSDecimal::fromParts(Mantissa mantissa, int exponent, bool isNegative) noexcept {
  return DecimalArithmetic::rounded({UInt256(mantissa), exponent, isNegative, false},
                                    DecimalRounding::towardZero, NSDecimalNoScale)
      .value;
}

NSDecimal NSDecimal::fromText(std::string_view text, std::string_view separator) noexcept {
  text = withoutPrefix(text, &isWhiteSpace);
  const bool isNegative = takeSign(text);
  DigitReader digits;
  digits.read(text, false);
  if (!separator.empty() && text.starts_with(separator)) {
    text.remove_prefix(separator.size());
    digits.read(text, true);
  }
  if (!digits.hasDigits()) return notANumber();
  constexpr std::int64_t kLimit = std::numeric_limits<int>::max() / 2;
  const std::int64_t exponent =
      std::clamp<std::int64_t>(digits.exponent() + readExponent(text), -kLimit, kLimit);
  return fromParts(digits.mantissa(), static_cast<int>(exponent), isNegative);
}

std::string NSDecimal::text(std::string_view separator) const {
  std::array<char, kLongestText> buffer{};
  const std::string_view plain(buffer.data(),
                               static_cast<std::size_t>(write(buffer.data()) - buffer.data()));
  std::string text(plain);
  const std::size_t point = separator == "." ? std::string::npos : text.find('.');
  if (point != std::string::npos) text.replace(point, 1, separator);
  return text;
}

char* NSDecimal::write(char* buffer) const noexcept {
  if (isNaN_) return std::ranges::copy(std::string_view("NaN"), buffer).out;
  if (isNegative_) *buffer++ = '-';
  std::array<char, kMaximumDigits + 1> digits{};
  const auto count = static_cast<int>(writeDigits(digits.data(), mantissa_) - digits.data());
  if (exponent_ >= 0) {
    return std::fill_n(std::copy_n(digits.data(), count, buffer), exponent_, '0');
  }
  const int whole = count + exponent_;
  if (whole <= 0) {
    *buffer++ = '0';
    *buffer++ = '.';
    return std::copy_n(digits.data(), count, std::fill_n(buffer, -whole, '0'));
  }
  buffer = std::copy_n(digits.data(), whole, buffer);
  *buffer++ = '.';
  return std::copy_n(digits.data() + whole, -exponent_, buffer);
}

double NSDecimal::doubleValue() const noexcept {
  if (isNaN_) return std::numeric_limits<double>::quiet_NaN();
  std::array<char, kLongestText> text{};
  const char* end = write(text.data());
  double value = 0;
  std::from_chars(text.data(), end, value);
  return value;
}

NSDecimal NSDecimal::truncated() const noexcept {
  return NSDecimalRound(*this, 0, isNegative_ ? NSRoundUp : NSRoundDown).value;
}

}  // namespace rvf
