// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/NSDecimalNumber-RVFExtensions.h"

#include "Platform/Runtime/AssociatedObjects.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr char kStrictOutputKey = 0;  // only its address counts

}  // namespace

Ref<NSLocale> NSDecimalNumber_RVFExtensions::RVF_POSIXLocale() {
  static const auto kLocale = NSLocale::localeWithLocaleIdentifier("en_US_POSIX");
  return kLocale;
}

Ref<NSDecimalNumber> NSDecimalNumber_RVFExtensions::RVF_decimalNumberWithPOSIXString(
    std::string_view text) {
  return NSDecimalNumber::decimalNumberWithString(text, RVF_POSIXLocale());
}

Ref<NSDecimalNumber> NSDecimalNumber_RVFExtensions::RVF_decimalNumberWithPOSIXStringAndStrictOutput(
    std::string_view text) {
  auto number = RVF_decimalNumberWithPOSIXString(text);
  objc_setAssociatedObject(number, &kStrictOutputKey, box(text), OBJC_ASSOCIATION_COPY);
  return number;
}

std::optional<std::string> RVF_descriptionForStrictOutput(const Ref<NSDecimalNumber>& number) {
  return unboxText(objc_getAssociatedObject(number, &kStrictOutputKey));
}

std::optional<std::string> RVF_POSIXString(const Ref<NSDecimalNumber>& number) {
  if (!number) return std::nullopt;
  return number->descriptionWithLocale(NSDecimalNumber_RVFExtensions::RVF_POSIXLocale());
}

Ref<NSDecimalNumber> RVF_absoluteDecimalNumber(const Ref<NSDecimalNumber>& number) {
  if (!number || number->compare(*NSDecimalNumber::zero()) >= 0) return number;
  return number->decimalNumberByMultiplyingBy(
      *NSDecimalNumber::decimalNumberWithMantissa(1, 0, true));
}

}  // namespace rvf
