// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSDecimalNumber.h"
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "RVFoundation/Formatters/RVFTimeFormatter.h"

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
  std::string problem;
  if (!RVFQuantityFormatter::sharedQuantityFormatter()->getObjectValue(&typed, "2 kg", &problem))
    std::cout << problem << '\n';
}
