// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSDecimalNumber.h"

namespace rvf {

/// How decimal numbers travel as text that does not depend on the user: with "." before the
/// decimals and without grouping.
///
/// Thread: any. Lifetime: keeps nothing.
struct RVF_EXPORT NSDecimalNumber_RVFExtensions {
  /// The locale "en_US_POSIX", always the same object. Thread-safe.
  static Ref<NSLocale> RVF_POSIXLocale();

  /// The number that the text begins with; NaN if there is none.
  static Ref<NSDecimalNumber> RVF_decimalNumberWithPOSIXString(std::string_view text);
  /// The same, and the number keeps the text, so that it can be written back exactly as it came:
  /// "1.50" stays "1.50".
  static Ref<NSDecimalNumber> RVF_decimalNumberWithPOSIXStringAndStrictOutput(
      std::string_view text);
};

/// The text that the number was made from by the operation for strict output; absent for a number
/// that was made in any other way.
RVF_EXPORT std::optional<std::string> RVF_descriptionForStrictOutput(
    const Ref<NSDecimalNumber>& number);

/// The number as text: "1.5" for 1.50. Absent for an absent number.
RVF_EXPORT std::optional<std::string> RVF_POSIXString(const Ref<NSDecimalNumber>& number);

/// The number without its sign; the very object if it has none.
RVF_EXPORT Ref<NSDecimalNumber> RVF_absoluteDecimalNumber(const Ref<NSDecimalNumber>& number);

}  // namespace rvf
