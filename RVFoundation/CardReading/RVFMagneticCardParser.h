// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Text/SecretText.h"
#include "RVFoundation/CardReading/RVFEncryptedTrackData.h"

namespace rvf {

/// The bits of `RVFMagneticCardParser::trackInfo`: which parts of a swipe were parsed.
enum RVFTrackInfo : std::uint64_t {
  RVFTrackInfoTrack1 = 1,
  RVFTrackInfoTrack2 = 2,
  RVFTrackInfoEncryptedTrack = 4,
};

/// Reads the text that a magnetic-stripe reader delivers for one swipe (the tracks of ISO/IEC 7813
/// between their sentinels, and the "|" blocks of encrypting readers):
///
///     const auto card = RVFMagneticCardParser::cardParserForTrackData(
///         "%B4111111111111111^DOE/JOHN^1512101?;4111111111111111=1512101?", true);
///     if (card) greet(card->displayCardholderName());   // "JOHN DOE"
///
/// A swipe is a run of segments with "?" between them, opened by "%" (track 1), ";" (track 2) or
/// "|" (encrypted block). A "?" after the last one may be missing. They may come in any order and
/// repeat; a later one overwrites what an earlier one set. Lengths and positions count UTF-16 code
/// units; check digits are not tested.
///
/// The texts are wiped from memory when they are replaced and when the parser is destroyed, and are
/// in no description or exception. A text that was got is valid until then, except for the swipe
/// text, which stays until the parse that is reading it has ended. Setters keep a copy. What a
/// getter answers to a message is an ordinary text, which its sender has to wipe.
///
/// A subclass may override any of the three track operations. Each is also a message to the parser,
/// so a method that was added at run time may replace it; that one takes the body as a
/// `std::string_view` too.
///
/// Thread: one at a time; nothing is shared between parsers. Lifetime: owns its texts and wipes
/// them; keeps the encrypted block, which may outlive it.
class RVF_EXPORT RVFMagneticCardParser : public NSObject {
 public:
  /// A new `Parser`, the receiving class, that has parsed a swipe; absent if the swipe is
  /// malformed. Raises what `parseSwipeRequiringName` raises.
  template <std::derived_from<RVFMagneticCardParser> Parser = RVFMagneticCardParser>
  static Ref<Parser> cardParserForTrackData(std::optional<std::string_view> trackData,
                                            bool requireValidName) {
    auto parser = std::make_shared<Parser>();
    const bool isParsed = parser->parseNewSwipe(trackData, requireValidName);
    return isParsed ? std::move(parser) : nullptr;
  }

  RVFMagneticCardParser();
  ~RVFMagneticCardParser() override;

  static Class classObject();
  Class isa() const override;

  /// Parses `swipeData`, and adds to `trackInfo` what was there. True for a well-formed swipe: an
  /// absent or empty one is, and whatever stands behind an empty segment is not read. Nothing is
  /// rolled back on false: what earlier fields said stays set.
  ///
  /// Raises `NSRangeException` for a track 1 with exactly one "^", whose third field does not
  /// exist.
  bool parseSwipeRequiringName(bool isNameRequired);

  /// Reads a track 1 without its sentinels: "B" and the account number, "^", the name, "^", expiry
  /// and the rest. False for less than two fields, another format code, an account field that is
  /// not 1 to 20 units long, or a required name that is not 2 to 26 units long. Raises as
  /// `parseSwipeRequiringName` does. `body` is no text of this parser but its swipe text.
  virtual bool parseTrack1(std::string_view body, bool requiringValidName);
  /// Reads a track 2 without its sentinels: account number, "=", and what is not read. False for an
  /// account field that is not 1 to 20 units long.
  virtual bool parseTrack2(std::string_view body);
  /// Reads an encrypting reader's block without its sentinels into a new `encryptedTrackData`.
  /// False unless it has exactly twelve fields with "|" between them.
  virtual bool parseEncryptedTrack(std::string_view body);

  /// Of track 1 or 2, whichever was read last. Absent until set.
  std::optional<std::string_view> accountNumber() const noexcept { return accountNumber_.view(); }
  void setAccountNumber(std::optional<std::string_view> accountNumber);
  /// The name field as it was read: last name, "/", first name, perhaps with blanks.
  std::optional<std::string_view> cardholderName() const noexcept { return cardholderName_.view(); }
  void setCardholderName(std::optional<std::string_view> cardholderName);
  /// Four digits, the century being 2000; 0 until set.
  std::int32_t expirationYear() const noexcept { return expirationYear_; }
  void setExpirationYear(std::int32_t year);
  /// As it was read, not always 1 to 12; 0 until set.
  std::int32_t expirationMonth() const noexcept { return expirationMonth_; }
  void setExpirationMonth(std::int32_t month);
  /// Bits of `RVFTrackInfo`.
  std::uint64_t trackInfo() const noexcept { return trackInfo_; }
  void setTrackInfo(std::uint64_t trackInfo);
  /// The whole swipe as the reader delivered it.
  std::optional<std::string_view> swipeData() const noexcept { return swipeData_.view(); }
  void setSwipeData(std::optional<std::string_view> swipeData);
  const Ref<RVFEncryptedTrackData>& encryptedTrackData() const noexcept {
    return encryptedTrackData_;
  }
  void setEncryptedTrackData(Ref<RVFEncryptedTrackData> data);

  /// The name in reading order: DOE/JOHN is shown as JOHN DOE. White space around either part is
  /// left out. Empty for an absent name. The text is the caller's.
  std::string displayCardholderName() const;
  static std::set<std::string> keyPathsForValuesAffectingDisplayCardholderName();

 private:
  class RunningParse;

  bool parseNewSwipe(std::optional<std::string_view> trackData, bool requireValidName);
  bool parseSegment(char sentinel, std::string_view body, bool isNameRequired);
  void readExpiration(std::string_view field);

  SecretText accountNumber_;
  SecretText cardholderName_;
  std::int32_t expirationYear_ = 0;
  std::int32_t expirationMonth_ = 0;
  std::uint64_t trackInfo_ = 0;
  SecretText swipeData_;
  Ref<RVFEncryptedTrackData> encryptedTrackData_;
  std::vector<SecretText> replacedSwipes_;  // that a running parse is still reading
  int runningParses_ = 0;
};

}  // namespace rvf
