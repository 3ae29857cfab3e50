// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSDecimal.h"
#include "Platform/Numbers/NSDecimalNumberHandler.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {

/// A decimal number as an object: money and quantities, without binary fractions anywhere on the
/// way.
///
/// Equality, order and hash are by value, with numbers of other kinds too: 1.50 equals 1.5, and 2
/// made from a text equals 2 made from an integer. A double counts as the shortest decimal that
/// reads back to it. Its type code is `d`. Integer readings truncate toward zero, then wrap like a
/// C cast; what 64 bits do not hold saturates.
///
/// Thread: any; immutable. Lifetime: refers to nothing.
class RVF_EXPORT NSDecimalNumber final : public NSNumber {
 public:
  explicit NSDecimalNumber(const NSDecimal& value);

  /// mantissa * 10^exponent; see `NSDecimal::fromParts` for what does not fit.
  static Ref<NSDecimalNumber> decimalNumberWithDecimal(const NSDecimal& value);
  static Ref<NSDecimalNumber> decimalNumberWithMantissa(std::uint64_t mantissa, short exponent,
                                                        bool isNegative);
  /// The number that a text begins with (see `NSDecimal::fromText`), written with the locale's
  /// decimal separator; absent stands for ".". Always a new object.
  static Ref<NSDecimalNumber> decimalNumberWithString(std::string_view text,
                                                      const Ref<NSLocale>& locale = nullptr);
  static Ref<NSDecimalNumber> numberWithDouble(double value);
  /// The decimal that stands for a number of any kind; itself if it is one.
  static Ref<NSDecimalNumber> decimalNumberWithNumber(const Ref<NSNumber>& number);

  /// Each call makes an object: compare by value.
  static Ref<NSDecimalNumber> zero();
  static Ref<NSDecimalNumber> one();
  static Ref<NSDecimalNumber> notANumber();

  static Class classObject();
  Class isa() const override;

  /// For arithmetic without objects: `NSDecimalAdd` and the like.
  const NSDecimal& decimalValue() const noexcept { return value_; }
  bool boolValue() const override { return !value_.isZero(); }
  double doubleValue() const override { return value_.doubleValue(); }
  std::string stringValue() const override { return value_.text(); }
  /// With the locale's decimal separator, without grouping; absent stands for ".".
  std::string descriptionWithLocale(const Ref<NSLocale>& locale) const;
  int compare(const NSNumber& other) const override;

  /// Arithmetic; the behaviour is the default one unless another is given. Raises what the
  /// behaviour raises.
  Ref<NSDecimalNumber> decimalNumberByAdding(const NSDecimalNumber& other) const;
  Ref<NSDecimalNumber> decimalNumberByAdding(const NSDecimalNumber& other,
                                             const NSDecimalNumberHandler& behavior) const;
  Ref<NSDecimalNumber> decimalNumberBySubtracting(const NSDecimalNumber& other) const;
  Ref<NSDecimalNumber> decimalNumberBySubtracting(const NSDecimalNumber& other,
                                                  const NSDecimalNumberHandler& behavior) const;
  Ref<NSDecimalNumber> decimalNumberByMultiplyingBy(const NSDecimalNumber& other) const;
  Ref<NSDecimalNumber> decimalNumberByMultiplyingBy(const NSDecimalNumber& other,
                                                    const NSDecimalNumberHandler& behavior) const;
  Ref<NSDecimalNumber> decimalNumberByDividingBy(const NSDecimalNumber& other) const;
  Ref<NSDecimalNumber> decimalNumberByDividingBy(const NSDecimalNumber& other,
                                                 const NSDecimalNumberHandler& behavior) const;
  Ref<NSDecimalNumber> decimalNumberByRoundingAccordingToBehavior(
      const NSDecimalNumberHandler& behavior) const;

 private:
  bool isDecimal() const noexcept override { return true; }
  Storage integerForm() const override;

  NSDecimal value_;
};

}  // namespace rvf
