// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// The application's ready-made number formatters. Each call makes a new one, which the caller may
/// change. All read forgivingly, give decimal numbers, and follow the user's current locale:
///
///                        1234.5 and -1234.5 in the United States    decimals
///     currencyFormatter  "$ 1,234.50"  "-$ 1,234.50"                two; halves to even
///     quantityFormatter  "1234.5"      "-1234.5"                    at most two; toward zero
///     discountFormatter  "$ 1,234.5"   "$ -1,234.5"                 at most two; toward zero
///
/// Thread: any; a formatter that is got serves one at a time. Lifetime: each formatter is the
/// caller's own.
struct RVF_EXPORT NSNumberFormatter_QMExtension {
  /// What each writes stands in the table above.
  static Ref<NSNumberFormatter> currencyFormatter();
  static Ref<NSNumberFormatter> quantityFormatter();
  static Ref<NSNumberFormatter> discountFormatter();
};

}  // namespace rvf
