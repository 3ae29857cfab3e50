// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CardReading/RVFCreditCardParser.h"

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFCreditCardParser::classObject);

bool isFirstDigitsBetween(std::string_view number, std::size_t digits, std::int32_t lowest,
                          std::int32_t highest) {
  const std::int32_t value = intValueOfText(substringUtf16(number, 0, digits));
  return value >= lowest && value <= highest;
}

RVFCardType typeOfSixteenDigits(std::string_view number) {
  if (number.starts_with('4')) return RVFCardTypeVisa;
  if (isFirstDigitsBetween(number, 2, 51, 55)) return RVFCardTypeMasterCard;
  if (isFirstDigitsBetween(number, 4, 3528, 3589)) return RVFCardTypeJCB;
  return number.starts_with("6011") ? RVFCardTypeDiscover : RVFCardTypeUnknown;
}

RVFCardType typeOfFifteenDigits(std::string_view number) {
  const bool isAmericanExpress = number.starts_with("34") || number.starts_with("37");
  return isAmericanExpress ? RVFCardTypeAmericanExpress : RVFCardTypeUnknown;
}

RVFCardType typeOfFourteenDigits(std::string_view number) {
  const bool isDinersClub = isFirstDigitsBetween(number, 3, 300, 305) || number.starts_with("36") ||
                            number.starts_with("38");
  return isDinersClub ? RVFCardTypeDinersClub : RVFCardTypeUnknown;
}

}  // namespace

Class RVFCreditCardParser::classObject() {
  static const Class kClass =
      ClassBuilder<RVFCreditCardParser>("RVFCreditCardParser", RVFMagneticCardParser::classObject())
          .property("cardType", "Ti,R,N")
          .method<&RVFCreditCardParser::parseTrack2>("parseTrack2:")
          .method<&RVFCreditCardParser::cardType>("cardType")
          .method("keyPathsForValuesAffectingCardType",
                  dependentKeyImplementation<
                      &RVFCreditCardParser::keyPathsForValuesAffectingCardType>())
          .registered();
  return kClass;
}

Class RVFCreditCardParser::isa() const {
  return classObject();
}

bool RVFCreditCardParser::parseTrack2(std::string_view) {
  return true;
}

std::set<std::string> RVFCreditCardParser::keyPathsForValuesAffectingCardType() {
  return {"accountNumber"};
}

std::int32_t RVFCreditCardParser::cardType() const {
  const std::string_view number = accountNumber().value_or("");
  switch (utf16Length(number)) {
    case 13:
      return RVFCardTypeVisa;
    case 14:
      return typeOfFourteenDigits(number);
    case 15:
      return typeOfFifteenDigits(number);
    case 16:
      return typeOfSixteenDigits(number);
    default:
      return RVFCardTypeUnknown;
  }
}

}  // namespace rvf
