// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"

namespace rvf {
namespace {

Ref<NSNumberFormatter> formatter(NSNumberFormatterStyle style, NSNumberFormatterRoundingMode mode,
                                 std::string_view positiveFormat, std::string_view negativeFormat) {
  auto result = std::make_shared<NSNumberFormatter>();
  result->setNumberStyle(style);
  result->setGeneratesDecimalNumbers(true);
  result->setLenient(true);
  result->setRoundingMode(mode);
  result->setPositiveFormat(positiveFormat);
  result->setNegativeFormat(negativeFormat);
  return result;
}

}  // namespace

Ref<NSNumberFormatter> NSNumberFormatter_QMExtension::currencyFormatter() {
  return formatter(NSNumberFormatterCurrencyStyle, NSNumberFormatterRoundHalfEven, "¤ #,##0.00",
                   "-¤ #,##0.00");
}

Ref<NSNumberFormatter> NSNumberFormatter_QMExtension::quantityFormatter() {
  return formatter(NSNumberFormatterDecimalStyle, NSNumberFormatterRoundDown, "#0.##", "-#0.##");
}

Ref<NSNumberFormatter> NSNumberFormatter_QMExtension::discountFormatter() {
  return formatter(NSNumberFormatterCurrencyStyle, NSNumberFormatterRoundDown, "¤ #,##0.##",
                   "¤ -#,##0.##");
}

}  // namespace rvf
