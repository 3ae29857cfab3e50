// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Numbers/NSDecimal.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

inline constexpr std::string_view NSDecimalNumberExactnessException =
    "NSDecimalNumberExactnessException";
inline constexpr std::string_view NSDecimalNumberOverflowException =
    "NSDecimalNumberOverflowException";
inline constexpr std::string_view NSDecimalNumberUnderflowException =
    "NSDecimalNumberUnderflowException";
inline constexpr std::string_view NSDecimalNumberDivideByZeroException =
    "NSDecimalNumberDivideByZeroException";

/// How a calculation with decimal numbers rounds, and which of its errors raise. Errors that do not
/// raise give what `NSCalculationError` says.
///
/// Thread: any; immutable. Lifetime: refers to nothing.
class RVF_EXPORT NSDecimalNumberHandler final : public NSObject {
 public:
  NSDecimalNumberHandler(NSRoundingMode roundingMode, int scale, bool raiseOnExactness,
                         bool raiseOnOverflow, bool raiseOnUnderflow, bool raiseOnDivideByZero);

  /// Rounds halves away from zero to 38 digits, and raises for everything but inexactness.
  static Ref<NSDecimalNumberHandler> defaultDecimalNumberHandler();
  static Ref<NSDecimalNumberHandler> decimalNumberHandlerWithRoundingMode(
      NSRoundingMode roundingMode, int scale, bool raiseOnExactness, bool raiseOnOverflow,
      bool raiseOnUnderflow, bool raiseOnDivideByZero);

  static Class classObject();
  Class isa() const override;

  /// Given back as set. A handler does not change.
  NSRoundingMode roundingMode() const noexcept { return roundingMode_; }
  /// Decimals that a result keeps at most.
  int scale() const noexcept { return scale_; }

  /// The value of a result. Raises the exception of the result's error if this handler raises it.
  NSDecimal valueOf(const NSDecimalResult& result) const;

 private:
  NSRoundingMode roundingMode_;
  int scale_;
  bool raiseOnExactness_;
  bool raiseOnOverflow_;
  bool raiseOnUnderflow_;
  bool raiseOnDivideByZero_;
};

}  // namespace rvf
