// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSDecimalNumber.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "Platform/Numbers/DecimalArithmetic.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Storage/NSCoder.h"
#include "Platform/Values/NSData.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSDecimalNumber::classObject);

using Operation = NSDecimalResult (*)(const NSDecimal&, const NSDecimal&, NSRoundingMode,
                                      int) noexcept;

Ref<NSDecimalNumber> calculated(Operation operation, const NSDecimalNumber& a,
                                const NSDecimalNumber& b, const NSDecimalNumberHandler& behavior) {
  return NSDecimalNumber::decimalNumberWithDecimal(behavior.valueOf(
      operation(a.decimalValue(), b.decimalValue(), behavior.roundingMode(), behavior.scale())));
}

const NSDecimalNumberHandler& defaultBehavior() {
  static const auto kHandler = NSDecimalNumberHandler::defaultDecimalNumberHandler();
  return *kHandler;
}

std::string separatorOf(const Ref<NSLocale>& locale) {
  return locale ? locale->decimalSeparator() : ".";
}

bool isFractional(const NSNumber& number) {
  return number.objCType() == "d" || number.objCType() == "f";
}

/// The exact value of an integer object.
NSDecimal decimalOfInteger(const NSNumber& number) {
  const bool isUnsigned = number.objCType().find_first_of("QICS") == 0;
  if (isUnsigned) return NSDecimal::fromInteger(std::uint64_t{number.unsignedLongValue()});
  return NSDecimal::fromInteger(std::int64_t{number.longValue()});
}

/// A float stands for the decimal that it prints as.
NSDecimal decimalOfFraction(const NSNumber& number) {
  if (number.objCType() == "f") return NSDecimal::fromText(number.stringValue());
  return NSDecimal::fromDouble(number.doubleValue());
}

/// Compares with a double. One that is a 64-bit integer counts as that integer, because it equals
/// the integer object; beyond the range of decimals, only its sign and size matter.
int compareToFraction(const NSDecimal& value, const NSNumber& other) {
  const double fraction = other.doubleValue();
  if (std::isnan(fraction)) return value.isNaN() ? 0 : 1;
  if (value.isNaN()) return -1;
  if (fraction == std::trunc(fraction) && std::fabs(fraction) < 0x1p63)
    return NSDecimalCompare(value, NSDecimal::fromInteger(static_cast<std::int64_t>(fraction)));
  if (fraction == std::trunc(fraction) && fraction > 0 && fraction < 0x1p64)
    return NSDecimalCompare(value, NSDecimal::fromInteger(static_cast<std::uint64_t>(fraction)));
  const NSDecimal decimal = NSDecimal::fromDouble(fraction);
  if (decimal.isNaN()) return fraction > 0 ? -1 : 1;
  if (decimal.isZero() && value.isZero()) return fraction > 0 ? -1 : 1;
  return NSDecimalCompare(value, decimal);
}

constexpr std::size_t kMantissaBytes = sizeof(NSDecimal::Mantissa);
constexpr std::size_t kMantissaUnit = 2;

/// In an archive a decimal is its exponent, its sign, and its mantissa in 16 bytes, the least
/// significant one first, with a count of the 16-bit units in use. None and a sign are NaN.
void encodeDecimal(NSObject& self, SEL, Ref<NSCoder> coder) {
  const NSDecimal& value = static_cast<const NSDecimalNumber&>(self).decimalValue();
  std::vector<std::byte> mantissa(kMantissaBytes);
  std::size_t used = 0;
  NSDecimal::Mantissa rest = value.isNaN() ? 0 : value.mantissa();
  for (std::size_t i = 0; i < kMantissaBytes; ++i, rest >>= 8U) {
    mantissa[i] = static_cast<std::byte>(rest & 0xFF);
    if (mantissa[i] != std::byte{0}) used = i / kMantissaUnit + 1;
  }
  coder->encodeInteger(value.isNaN() ? 0 : value.exponent(), "NS.exponent");
  coder->encodeInteger(static_cast<long>(used), "NS.length");
  coder->encodeBool(value.isNaN() || value.isNegative(), "NS.negative");
  coder->encodeObject(std::make_shared<NSData>(std::move(mantissa)), "NS.mantissa");
}

/// Parts that no decimal has make NaN.
id initDecimal(NSObject&, SEL, Ref<NSCoder> coder) {
  const long exponent = coder->decodeIntegerForKey("NS.exponent");
  const long length = coder->decodeIntegerForKey("NS.length");
  const bool isNegative = coder->decodeBoolForKey("NS.negative");
  const auto bytes = std::dynamic_pointer_cast<NSData>(coder->decodeObjectForKey("NS.mantissa"));
  const bool isNumber = bytes && bytes->length() == kMantissaBytes && (length > 0 || !isNegative) &&
                        exponent >= NSDecimal::kMinimumExponent &&
                        exponent <= NSDecimal::kMaximumExponent;
  if (!isNumber) return NSDecimalNumber::notANumber();
  NSDecimal::Mantissa mantissa = 0;
  for (std::size_t i = kMantissaBytes; i-- > 0;)
    mantissa = mantissa << 8U | std::to_integer<unsigned>(bytes->bytes()[i]);
  return NSDecimalNumber::decimalNumberWithDecimal(
      NSDecimal::fromParts(mantissa, static_cast<int>(exponent), isNegative));
}

/// Decimals are immutable, so the one that is read takes the place of this one.
id makeDecimal(NSObject&, SEL) {
  return NSDecimalNumber::zero();
}

}  // namespace

NSDecimalNumber::NSDecimalNumber(const NSDecimal& value) : NSNumber(0.0, "d"), value_(value) {}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberWithDecimal(const NSDecimal& value) {
  return std::make_shared<NSDecimalNumber>(value);
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberWithMantissa(std::uint64_t mantissa,
                                                                short exponent, bool isNegative) {
  return decimalNumberWithDecimal(NSDecimal::fromParts(mantissa, exponent, isNegative));
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberWithString(std::string_view text,
                                                              const Ref<NSLocale>& locale) {
  return decimalNumberWithDecimal(NSDecimal::fromText(text, separatorOf(locale)));
}

Ref<NSDecimalNumber> NSDecimalNumber::numberWithDouble(double value) {
  return decimalNumberWithDecimal(NSDecimal::fromDouble(value));
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberWithNumber(const Ref<NSNumber>& number) {
  if (!number) return nullptr;
  if (auto decimal = std::dynamic_pointer_cast<NSDecimalNumber>(number)) return decimal;
  return decimalNumberWithDecimal(isFractional(*number) ? decimalOfFraction(*number)
                                                        : decimalOfInteger(*number));
}

Ref<NSDecimalNumber> NSDecimalNumber::zero() {
  return decimalNumberWithDecimal(NSDecimal());
}

Ref<NSDecimalNumber> NSDecimalNumber::one() {
  return decimalNumberWithMantissa(1, 0, false);
}

Ref<NSDecimalNumber> NSDecimalNumber::notANumber() {
  return decimalNumberWithDecimal(NSDecimal::notANumber());
}

Class NSDecimalNumber::classObject() {
  static const Class kClass =
      ClassBuilder<NSDecimalNumber>("NSDecimalNumber", NSNumber::classObject())
          .method<&NSDecimalNumber::descriptionWithLocale>("descriptionWithLocale:")
          .method("copy", immutableCopyImplementation())
          .method("encodeWithCoder:", IMP(&encodeDecimal))
          .method("initWithCoder:", IMP(&initDecimal))
          .method("alloc", IMP(&makeDecimal))
          .conformsTo("NSCopying")
          .registered();
  return kClass;
}

Class NSDecimalNumber::isa() const {
  return classObject();
}

std::string NSDecimalNumber::descriptionWithLocale(const Ref<NSLocale>& locale) const {
  return value_.text(separatorOf(locale));
}

int NSDecimalNumber::compare(const NSNumber& other) const {
  if (const auto* decimal = dynamic_cast<const NSDecimalNumber*>(&other))
    return NSDecimalCompare(value_, decimal->value_);
  if (isFractional(other)) return compareToFraction(value_, other);
  return NSDecimalCompare(value_, decimalOfInteger(other));
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByAdding(const NSDecimalNumber& other) const {
  return calculated(&NSDecimalAdd, *this, other, defaultBehavior());
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByAdding(
    const NSDecimalNumber& other, const NSDecimalNumberHandler& behavior) const {
  return calculated(&NSDecimalAdd, *this, other, behavior);
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberBySubtracting(
    const NSDecimalNumber& other) const {
  return calculated(&NSDecimalSubtract, *this, other, defaultBehavior());
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberBySubtracting(
    const NSDecimalNumber& other, const NSDecimalNumberHandler& behavior) const {
  return calculated(&NSDecimalSubtract, *this, other, behavior);
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByMultiplyingBy(
    const NSDecimalNumber& other) const {
  return calculated(&NSDecimalMultiply, *this, other, defaultBehavior());
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByMultiplyingBy(
    const NSDecimalNumber& other, const NSDecimalNumberHandler& behavior) const {
  return calculated(&NSDecimalMultiply, *this, other, behavior);
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByDividingBy(
    const NSDecimalNumber& other) const {
  return calculated(&NSDecimalDivide, *this, other, defaultBehavior());
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByDividingBy(
    const NSDecimalNumber& other, const NSDecimalNumberHandler& behavior) const {
  return calculated(&NSDecimalDivide, *this, other, behavior);
}

Ref<NSDecimalNumber> NSDecimalNumber::decimalNumberByRoundingAccordingToBehavior(
    const NSDecimalNumberHandler& behavior) const {
  return decimalNumberWithDecimal(
      behavior.valueOf(NSDecimalRound(value_, behavior.scale(), behavior.roundingMode())));
}

NSNumber::Storage NSDecimalNumber::integerForm() const {
  constexpr int kDigitsOf64Bits = 20;
  constexpr UInt128 kLargestNegative = UInt128{1} << 63;
  const NSDecimal whole = value_.truncated();
  if (whole.isNaN() || digitCount(whole.mantissa()) + whole.exponent() > kDigitsOf64Bits)
    return whole.doubleValue();
  const UInt128 magnitude = whole.mantissa() * powerOfTen(whole.exponent());
  const auto bits = static_cast<std::uint64_t>(magnitude);
  if (whole.isNegative() && magnitude <= kLargestNegative)
    return static_cast<std::int64_t>(0 - bits);
  if (whole.isNegative() || magnitude >> 64 != 0) return whole.doubleValue();
  return bits;
}

}  // namespace rvf
