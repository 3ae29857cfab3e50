// SPDX-License-Identifier: Apache-2.0
//
// Parses any bytes as a card swipe: the answer is yes or no, or the one exception that a swipe may
// raise, which says nothing of the swipe. Fields keep to their limits.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <type_traits>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"

namespace {

using rvf::RVFMagneticCardParser;

void require(bool condition) {
  if (!condition) std::abort();
}

void requireFieldsWithinLimits(const RVFMagneticCardParser& card, bool isNameRequired) {
  require(card.trackInfo() <= 7);
  require(rvf::utf16Length(card.accountNumber().value_or("")) <= 20);
  require(card.expirationYear() >= 1991 || card.expirationYear() == 0);
  require(card.expirationMonth() >= -9 && card.expirationMonth() <= 99);
  const std::size_t nameLength = rvf::utf16Length(card.cardholderName().value_or(""));
  if (isNameRequired && card.cardholderName()) require(nameLength >= 2 && nameLength <= 26);
  require(rvf::utf16Length(card.displayCardholderName()) <= nameLength);
}

template <class Parser>
void parse(std::string_view swipe, bool isNameRequired) {
  const auto parser = std::make_shared<Parser>();
  parser->setSwipeData(swipe);
  try {
    parser->parseSwipeRequiringName(isNameRequired);
  } catch (const rvf::NSException& exception) {
    require(exception.name() == rvf::NSRangeException);
    require(exception.reason() == "index 2 beyond bounds [0 .. 1]");
  }
  requireFieldsWithinLimits(*parser, isNameRequired);
  if constexpr (std::is_same_v<Parser, rvf::RVFCreditCardParser>) {
    require(parser->cardType() >= rvf::RVFCardTypeUnknown);
    require(parser->cardType() <= rvf::RVFCardTypeDinersClub);
  }
  require(parser->swipeData() == swipe);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view swipe(reinterpret_cast<const char*>(data), size);
  parse<RVFMagneticCardParser>(swipe, false);
  parse<RVFMagneticCardParser>(swipe, true);
  parse<rvf::RVFCreditCardParser>(swipe, true);
  return 0;
}
