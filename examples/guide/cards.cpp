// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"

using namespace rvf;

int main() {
  const auto card = RVFCreditCardParser::cardParserForTrackData(
      "%B4111111111111111^DOE/JOHN^3112101?;4111111111111111=3112101?");
  if (!card) return 1;  // not a well-formed swipe, or no name on it
  std::cout << card->displayCardholderName() << '\n';
  std::cout << card->expirationMonth() << '/' << card->expirationYear() << '\n';
  std::cout << (card->cardType() == RVFCardTypeVisa) << '\n';

  std::int32_t month = 0;
  std::int32_t year = 0;
  Ref<NSError> error;
  if (getExpiryMonth("12/31", &month, &year, &error)) std::cout << month << ' ' << year << '\n';
  if (!getExpiryMonth("13/31", &month, &year, &error))
    std::cout << error->localizedDescription() << '\n';
}
