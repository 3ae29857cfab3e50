// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CardReading/RVFMagneticCardParser.h"

#include <array>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "RVFoundation/CardReading/SecretAccessors.h"

namespace rvf {
namespace {

using Parser = RVFMagneticCardParser;

const ClassRegistration kRegistration(&Parser::classObject);

constexpr char kSegmentEnd = '?';
constexpr char kTrack1Sentinel = '%';
constexpr char kTrack1Separator = '^';
constexpr char kFormatCode = 'B';
constexpr char kTrack2Sentinel = ';';
constexpr char kTrack2Separator = '=';
constexpr char kEncryptedSentinel = '|';
constexpr char kEncryptedSeparator = '|';

constexpr std::size_t kLongestAccountField = 20;
constexpr std::size_t kShortestName = 2;
constexpr std::size_t kLongestName = 26;
constexpr std::int32_t kCentury = 2000;

/// Indexes into the fields of an encrypted block.
enum EncryptedField : std::size_t {
  kStatusBlock = 0,
  kTrackData = 2,
  kDataBlock = 5,
  kKeySerial = 8,
  kEncryptedFieldCount = 12,
};

struct StepSelectors {
  SEL track1{"parseTrack1:requiringValidName:"};
  SEL track2{"parseTrack2:"};
  SEL encryptedTrack{"parseEncryptedTrack:"};
};

/// The fields of a block with as many as it has to have, else absent.
std::optional<std::array<std::string_view, kEncryptedFieldCount>> encryptedFields(
    std::string_view body) {
  std::array<std::string_view, kEncryptedFieldCount> fields;
  TextPieces pieces(body, kEncryptedSeparator);
  for (std::string_view& field : fields) {
    const auto piece = pieces.next();
    if (!piece) return std::nullopt;
    field = *piece;
  }
  return pieces.next() ? std::nullopt : std::optional(fields);
}

}  // namespace

/// Keeps replaced swipe texts for as long as a parse may be reading them.
class RVFMagneticCardParser::RunningParse final {
 public:
  explicit RunningParse(RVFMagneticCardParser& parser) : parser_(parser) {
    ++parser_.runningParses_;
  }
  ~RunningParse() {
    if (--parser_.runningParses_ == 0) parser_.replacedSwipes_.clear();
  }
  RunningParse(const RunningParse&) = delete;
  RunningParse& operator=(const RunningParse&) = delete;

 private:
  RVFMagneticCardParser& parser_;
};

RVFMagneticCardParser::RVFMagneticCardParser() = default;
RVFMagneticCardParser::~RVFMagneticCardParser() = default;

Class RVFMagneticCardParser::classObject() {
  static const Class kClass =
      ClassBuilder<Parser>("RVFMagneticCardParser", NSObject::classObject())
          .property("accountNumber", "T@\"NSString\",C,N,V_accountNumber")
          .property("cardholderName", "T@\"NSString\",C,N,V_cardholderName")
          .property("expirationYear", "Ti,N,V_expirationYear")
          .property("expirationMonth", "Ti,N,V_expirationMonth")
          .property("trackInfo", "TQ,N,V_trackInfo")
          .property("swipeData", "T@\"NSString\",C,N,V_swipeData")
          .property("encryptedTrackData", "T@\"RVFEncryptedTrackData\",&,N,V_encryptedTrackData")
          .property("displayCardholderName", "T@\"NSString\",R,C,N")
          .ivar("_accountNumber", "@")
          .ivar("_cardholderName", "@")
          .ivar<&Parser::expirationYear_>("_expirationYear")
          .ivar<&Parser::expirationMonth_>("_expirationMonth")
          .ivar<&Parser::trackInfo_>("_trackInfo")
          .ivar("_swipeData", "@")
          .ivar<&Parser::encryptedTrackData_>("_encryptedTrackData")
          .method("accountNumber", &secretGetter<Parser, &Parser::accountNumber>)
          .method("setAccountNumber:", &secretSetter<Parser, &Parser::setAccountNumber>)
          .method("cardholderName", &secretGetter<Parser, &Parser::cardholderName>)
          .method("setCardholderName:", &secretSetter<Parser, &Parser::setCardholderName>)
          .method<&Parser::expirationYear>("expirationYear")
          .method<&Parser::setExpirationYear>("setExpirationYear:")
          .method<&Parser::expirationMonth>("expirationMonth")
          .method<&Parser::setExpirationMonth>("setExpirationMonth:")
          .method<&Parser::trackInfo>("trackInfo")
          .method<&Parser::setTrackInfo>("setTrackInfo:")
          .method("swipeData", &secretGetter<Parser, &Parser::swipeData>)
          .method("setSwipeData:", &secretSetter<Parser, &Parser::setSwipeData>)
          .method<&Parser::encryptedTrackData>("encryptedTrackData")
          .method<&Parser::setEncryptedTrackData>("setEncryptedTrackData:")
          .method<&Parser::displayCardholderName>("displayCardholderName")
          .method("keyPathsForValuesAffectingDisplayCardholderName",
                  dependentKeyImplementation<
                      &Parser::keyPathsForValuesAffectingDisplayCardholderName>())
          .method<&Parser::parseSwipeRequiringName>("parseSwipeRequiringName:")
          .method<&Parser::parseTrack1>("parseTrack1:requiringValidName:")
          .method<&Parser::parseTrack2>("parseTrack2:")
          .method<&Parser::parseEncryptedTrack>("parseEncryptedTrack:")
          .registered();
  return kClass;
}

Class RVFMagneticCardParser::isa() const {
  return classObject();
}

void RVFMagneticCardParser::setAccountNumber(std::optional<std::string_view> accountNumber) {
  SecretText text(accountNumber);  // before an observer can change what is viewed
  announceChange(*this, "accountNumber", [&] { accountNumber_ = std::move(text); });
}

void RVFMagneticCardParser::setCardholderName(std::optional<std::string_view> cardholderName) {
  SecretText text(cardholderName);  // before an observer can change what is viewed
  announceChange(*this, "cardholderName", [&] { cardholderName_ = std::move(text); });
}

void RVFMagneticCardParser::setExpirationYear(std::int32_t year) {
  announceChange(*this, "expirationYear", [&] { expirationYear_ = year; });
}

void RVFMagneticCardParser::setExpirationMonth(std::int32_t month) {
  announceChange(*this, "expirationMonth", [&] { expirationMonth_ = month; });
}

void RVFMagneticCardParser::setTrackInfo(std::uint64_t trackInfo) {
  announceChange(*this, "trackInfo", [&] { trackInfo_ = trackInfo; });
}

void RVFMagneticCardParser::setSwipeData(std::optional<std::string_view> swipeData) {
  SecretText text(swipeData);  // before an observer can change what is viewed
  announceChange(*this, "swipeData", [&] {
    SecretText former = std::exchange(swipeData_, std::move(text));
    if (runningParses_ > 0) replacedSwipes_.push_back(std::move(former));
  });
}

void RVFMagneticCardParser::setEncryptedTrackData(Ref<RVFEncryptedTrackData> data) {
  announceChange(*this, "encryptedTrackData", [&] { encryptedTrackData_ = std::move(data); });
}

std::set<std::string> RVFMagneticCardParser::keyPathsForValuesAffectingDisplayCardholderName() {
  return {"cardholderName"};
}

bool RVFMagneticCardParser::parseNewSwipe(std::optional<std::string_view> trackData,
                                          bool requireValidName) {
  setSwipeData(trackData);
  setTrackInfo(0);
  return parseSwipeRequiringName(requireValidName);
}

bool RVFMagneticCardParser::parseSwipeRequiringName(bool isNameRequired) {
  const id alive = weak_from_this().lock();  // an observer of a field may drop the last reference
  const auto swipe = swipeData();
  if (!swipe) return true;
  const RunningParse running(*this);
  TextPieces segments(*swipe, kSegmentEnd);
  while (const auto piece = segments.next()) {
    const std::string_view segment = trimText(*piece, &isWhiteSpaceOrNewline);
    if (segment.empty()) return true;
    if (!parseSegment(segment.front(), segment.substr(1), isNameRequired)) return false;
  }
  return true;
}

bool RVFMagneticCardParser::parseSegment(char sentinel, std::string_view body,
                                         bool isNameRequired) {
  static const StepSelectors kSteps;
  std::uint64_t parsed = 0;
  if (sentinel == kTrack1Sentinel) {
    if (send<bool>(*this, kSteps.track1, body, isNameRequired)) parsed = RVFTrackInfoTrack1;
  } else if (sentinel == kTrack2Sentinel) {
    if (send<bool>(*this, kSteps.track2, body)) parsed = RVFTrackInfoTrack2;
  } else if (sentinel == kEncryptedSentinel) {
    if (send<bool>(*this, kSteps.encryptedTrack, body)) parsed = RVFTrackInfoEncryptedTrack;
  }
  if (parsed == 0) return false;
  setTrackInfo(trackInfo() | parsed);
  return true;
}

bool RVFMagneticCardParser::parseTrack1(std::string_view body, bool requiringValidName) {
  TextPieces fields(body, kTrack1Separator);
  const std::string_view account = fields.next().value_or("");
  const auto name = fields.next();
  if (!name || !isUtf16LengthBetween(account, 1, kLongestAccountField) ||
      account.front() != kFormatCode) {
    return false;
  }
  setAccountNumber(account.substr(1));
  if (requiringValidName && !isUtf16LengthBetween(*name, kShortestName, kLongestName)) return false;
  setCardholderName(*name);
  const auto expiration = fields.next();
  if (!expiration) NSException::raise(NSRangeException, "index 2 beyond bounds [0 .. 1]");
  readExpiration(*expiration);
  return true;
}

void RVFMagneticCardParser::readExpiration(std::string_view field) {
  constexpr std::size_t kPartLength = 2;
  if (!isUtf16LengthBetween(field, 2 * kPartLength, std::string_view::npos)) return;
  const std::string_view year = substringUtf16(field, 0, kPartLength);
  const std::string_view month = substringUtf16(field, kPartLength, kPartLength);
  // A character across the border leaves half of it, which is no digit, before the month.
  const bool isMonthWhole = isUtf16LengthBetween(year, kPartLength, kPartLength);
  setExpirationYear(intValueOfText(year) + kCentury);
  setExpirationMonth(isMonthWhole ? intValueOfText(month) : 0);
}

bool RVFMagneticCardParser::parseTrack2(std::string_view body) {
  const std::string_view account = TextPieces(body, kTrack2Separator).next().value_or("");
  if (!isUtf16LengthBetween(account, 1, kLongestAccountField)) return false;
  setAccountNumber(account);
  return true;
}

bool RVFMagneticCardParser::parseEncryptedTrack(std::string_view body) {
  const auto fields = encryptedFields(body);
  if (!fields) return false;
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  record->setTrackData((*fields)[kTrackData]);
  record->setKeySerial((*fields)[kKeySerial]);
  record->setDataBlock((*fields)[kDataBlock]);
  record->setStatusBlock((*fields)[kStatusBlock]);
  setEncryptedTrackData(record);
  return true;
}

std::string RVFMagneticCardParser::displayCardholderName() const {
  const std::string_view name = cardholderName().value_or("");
  const std::size_t slash = name.find('/');
  const std::string_view last = trimText(name.substr(0, slash), &isWhiteSpace);
  if (slash == std::string_view::npos) return std::string(last);
  const std::string_view first = trimText(name.substr(slash + 1), &isWhiteSpace);
  std::string shown;
  shown.reserve(first.size() + 1 + last.size());
  shown.append(first).append(1, ' ').append(last);
  return shown;
}

}  // namespace rvf
