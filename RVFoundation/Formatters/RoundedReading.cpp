// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RoundedReading.h"

#include "Platform/Numbers/NSDecimalNumber.h"

namespace rvf {
namespace {

const NSDecimalNumberHandler& readingBehavior() {
  constexpr int kDecimals = 2;
  static const auto kBehavior = NSDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(
      NSRoundPlain, kDecimals, false, true, true, true);
  return *kBehavior;
}

}  // namespace

bool readRounded(const Ref<NSNumberFormatter>& formatter, id* object, std::string_view text,
                 std::string* errorDescription) {
  if (text.empty()) {
    if (object) *object = NSDecimalNumber::zero();
    return true;
  }
  id value;
  if (!formatter || !formatter->getObjectValue(&value, text, errorDescription)) return false;
  const auto number =
      NSDecimalNumber::decimalNumberWithNumber(std::dynamic_pointer_cast<NSNumber>(value));
  if (object && number)
    *object = number->decimalNumberByRoundingAccordingToBehavior(readingBehavior());
  return number != nullptr;
}

}  // namespace rvf
