// SPDX-License-Identifier: Apache-2.0
//
// A program that writes one amount of money with the library and ends. Status 0 if it is right.

#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"

#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSDecimalNumber.h"

int main() {
  rvf::RVFCurrencyFormatter formatter;
  formatter.setLocale(rvf::NSLocale::localeWithLocaleIdentifier("en_US"));
  const auto amount = rvf::NSDecimalNumber::decimalNumberWithMantissa(123450, -2, false);
  return formatter.stringForObjectValue(amount) == "1,234.50" ? 0 : 1;
}
