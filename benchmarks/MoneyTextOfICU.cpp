// SPDX-License-Identifier: Apache-2.0
//
// A program that writes one amount of money with ICU and ends. Status 0 if it is right.

#include <unicode/decimfmt.h>

#include <memory>
#include <string>

int main() {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::NumberFormat> format(
      icu::NumberFormat::createInstance(icu::Locale("en_US"), UNUM_CURRENCY, status));
  dynamic_cast<icu::DecimalFormat&>(*format).applyPattern("#,##0.00;-#,##0.00", status);
  icu::UnicodeString text;
  std::string result;
  format->format(icu::StringPiece("1234.50"), text, nullptr, status).toUTF8String(result);
  return result == "1,234.50" ? 0 : 1;
}
