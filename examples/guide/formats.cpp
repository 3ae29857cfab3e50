// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"
#include "RVFoundation/Formatters/RVFBooleanFormatter.h"
#include "RVFoundation/Formatters/RVFByteSizeFormatter.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFPhoneNumberFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "RVFoundation/Formatters/RVFSecondsToHoursFormatter.h"
#include "RVFoundation/Formatters/RVFTimeFormatter.h"
#include "RVFoundation/Formatters/RVFUppercaseFormatter.h"

using namespace rvf;

int main() {
  NSLocale::setCurrentLocaleIdentifier("de_DE");  // a till follows its user's settings instead
  const auto price = NSDecimalNumber::decimalNumberWithString("1234.5");
  const auto money = std::make_shared<RVFCurrencyFormatter>();
  std::cout << money->stringForObjectValue(price).value_or("") << '\n';
  const auto withSymbol = NSNumberFormatter_QMExtension::currencyFormatter();
  std::cout << withSymbol->stringForObjectValue(price).value_or("") << '\n';
  const auto time = std::make_shared<RVFTimeFormatter>();
  std::cout << time->stringForObjectValue(box(3725)).value_or("") << '\n';

  id typed;
  if (money->getObjectValue(&typed, "1.999,995")) std::cout << typed->description() << '\n';
  if (money->getObjectValue(&typed, "10.99")) std::cout << typed->description() << '\n';

  NSLocale::setCurrentLocaleIdentifier("en_US");
  std::string problem;
  if (!RVFQuantityFormatter::sharedQuantityFormatter()->getObjectValue(&typed, "2 kg", &problem))
    std::cout << problem << '\n';

  const auto hours = std::make_shared<RVFSecondsToHoursFormatter>();
  hours->setDecimalFormatter(NSNumberFormatter_QMExtension::quantityFormatter());
  std::cout << hours->stringForObjectValue(box(5400)).value_or("") << '\n';
  std::cout << RVFPhoneNumberFormatter::stringFromPhoneNumber("6045551234") << '\n';
  std::cout << RVFByteSizeFormatter::stringFromByteCount(1536, true) << '\n';
  std::cout << RVFBooleanFormatter().stringForObjectValue(box(true)).value_or("") << '\n';
  std::cout << RVFUppercaseFormatter().stringForObjectValue(box("straße")).value_or("") << '\n';
}
