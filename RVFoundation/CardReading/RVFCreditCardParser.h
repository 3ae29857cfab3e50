// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Export.h"
#include "RVFoundation/CardReading/RVFMagneticCardParser.h"

namespace rvf {

/// The codes of `RVFCreditCardParser::cardType`, one a card network.
enum RVFCardType : std::int32_t {
  RVFCardTypeUnknown = -1,
  RVFCardTypeVisa = 0,
  RVFCardTypeMasterCard = 1,
  RVFCardTypeJCB = 2,
  RVFCardTypeDiscover = 3,
  RVFCardTypeAmericanExpress = 4,
  RVFCardTypeDinersClub = 5,
};

/// Reads the swipe of a payment card: insists on a cardholder name, takes the account number from
/// track 1 only, and tells the card's network from it.
///
/// Thread: as `RVFMagneticCardParser`. Lifetime: as `RVFMagneticCardParser`.
class RVF_EXPORT RVFCreditCardParser : public RVFMagneticCardParser {
 public:
  /// A new `Parser`, the receiving class, that has parsed a swipe; absent if the swipe is
  /// malformed, has a name that is not 2 to 26 units long, or holds nothing. Raises
  /// `NSRangeException` as the parse does.
  template <std::derived_from<RVFCreditCardParser> Parser = RVFCreditCardParser>
  static Ref<Parser> cardParserForTrackData(std::optional<std::string_view> trackData) {
    auto parser = cardParserForTrackData<Parser>(trackData, true);
    return parser && parser->trackInfo() != 0 ? std::move(parser) : nullptr;
  }
  /// The inherited form, which accepts a swipe that holds nothing.
  template <std::derived_from<RVFCreditCardParser> Parser = RVFCreditCardParser>
  static Ref<Parser> cardParserForTrackData(std::optional<std::string_view> trackData,
                                            bool requireValidName) {
    return RVFMagneticCardParser::cardParserForTrackData<Parser>(trackData, requireValidName);
  }

  static Class classObject();
  Class isa() const override;

  /// Reads nothing and accepts everything: track 2 never replaces the account number of track 1.
  bool parseTrack2(std::string_view body) override;

  /// The card's network, a code of `RVFCardType`, by length and first digits of `accountNumber` as
  /// it is now. Check digits are not tested.
  std::int32_t cardType() const;
  static std::set<std::string> keyPathsForValuesAffectingCardType();
};

}  // namespace rvf
