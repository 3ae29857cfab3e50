// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/SwipeCommand.h"

#include <array>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Utf8.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"
#include "tools/terminal/HiddenTyping.h"

namespace rvf::tool {
namespace {

struct SwipeOptions {
  bool asJson = false;
  bool isRevealed = false;      ///< account numbers whole; else only first six and last four digits
  bool isNameRequired = false;  ///< refuse a name that is not 2 to 26 characters long
  bool isCreditCard = false;    ///< read as a payment card, see `RVFCreditCardParser`
};

using Card = Ref<RVFMagneticCardParser>;

/// What standard input passes through, so that it can be wiped.
std::array<char, 4096> inputBuffer;

/// The lines of standard input, of which nothing stays in memory.
class SwipeLines final {
 public:
  SwipeLines() {
    std::setvbuf(stdin, inputBuffer.data(), _IOFBF, inputBuffer.size());
    line_.reserve(kUsualLength);
  }
  ~SwipeLines() {
    wipeText(line_);
    wipeMemory(inputBuffer.data(), inputBuffer.size());
  }
  SwipeLines(const SwipeLines&) = delete;
  SwipeLines& operator=(const SwipeLines&) = delete;

  /// The next line, valid until the one after; null at the end.
  const std::string* next() {
    wipeText(line_);
    ++number_;
    return std::getline(std::cin, line_) ? &line_ : nullptr;
  }
  std::size_t number() const { return number_; }

 private:
  static constexpr std::size_t kUsualLength = 65536;  // a longer one leaves copies as it grows

  std::string line_;
  std::size_t number_ = 0;
};

/// The account number with all but its first six and last four characters hidden; all of them
/// where that would hide none.
std::string masked(std::string_view number) {
  constexpr std::size_t kShownAtStart = 6;
  constexpr std::size_t kShownAtEnd = 4;
  std::size_t count = 0;
  for (std::string_view rest = number; !rest.empty(); ++count)
    rest.remove_prefix(firstUtf8Unit(rest).length);
  const bool isLong = count > kShownAtStart + kShownAtEnd;
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t length = firstUtf8Unit(number).length;
    const bool isShown = isLong && (i < kShownAtStart || i >= count - kShownAtEnd);
    text += isShown ? number.substr(0, length) : "*";
    number.remove_prefix(length);
  }
  return text;
}

std::string shownNumber(std::string_view number, const SwipeOptions& options) {
  return options.isRevealed ? std::string(number) : masked(number);
}

const char* networkName(std::int32_t cardType) {
  switch (cardType) {
    case RVFCardTypeVisa:
      return "Visa";
    case RVFCardTypeMasterCard:
      return "MasterCard";
    case RVFCardTypeJCB:
      return "JCB";
    case RVFCardTypeDiscover:
      return "Discover";
    case RVFCardTypeAmericanExpress:
      return "American Express";
    case RVFCardTypeDinersClub:
      return "Diners Club";
    default:
      return nullptr;
  }
}

/// The network of any card's number, also of one that was read from track 2.
const char* networkOf(const RVFMagneticCardParser& card) {
  const auto classifier = std::make_shared<RVFCreditCardParser>();
  classifier->setAccountNumber(card.accountNumber());
  return networkName(classifier->cardType());
}

std::string tracksText(std::uint64_t trackInfo) {
  std::string text;
  const auto add = [&](std::uint64_t bit, const char* name) {
    if (trackInfo & bit) text += (text.empty() ? "" : ", ") + std::string(name);
  };
  add(RVFTrackInfoTrack1, "1");
  add(RVFTrackInfoTrack2, "2");
  add(RVFTrackInfoEncryptedTrack, "encrypted");
  return text.empty() ? "none" : text;
}

void printField(const char* label, std::string_view value) {
  std::cout << label << printable(value) << "\n";
}

void printText(const RVFMagneticCardParser& card, const SwipeOptions& options) {
  printField("tracks       ", tracksText(card.trackInfo()));
  if (const auto number = card.accountNumber()) {
    printField("account      ", shownNumber(*number, options));
    if (const char* network = networkOf(card)) printField("network      ", network);
  }
  if (card.cardholderName()) printField("name         ", card.displayCardholderName());
  if (card.expirationYear() != 0) {
    const std::string month = std::to_string(card.expirationMonth());
    printField("expires      ", month + "/" + std::to_string(card.expirationYear()));
  }
  if (const auto& record = card.encryptedTrackData()) {
    printField("status       ", record->statusBlock().value_or(""));
    printField("track data   ", record->trackData().value_or(""));
    printField("data block   ", record->dataBlock().value_or(""));
    printField("key serial   ", record->keySerial().value_or(""));
  }
}

nlohmann::json jsonOf(std::optional<std::string_view> text) {
  return text ? nlohmann::json(std::string(*text)) : nlohmann::json();
}

nlohmann::json jsonOf(const Ref<RVFEncryptedTrackData>& record) {
  if (!record) return {};
  return {{"statusBlock", jsonOf(record->statusBlock())},
          {"trackData", jsonOf(record->trackData())},
          {"dataBlock", jsonOf(record->dataBlock())},
          {"keySerial", jsonOf(record->keySerial())}};
}

nlohmann::json jsonOf(const RVFMagneticCardParser& card, const SwipeOptions& options) {
  const auto number = card.accountNumber();
  const char* const network = networkOf(card);
  const bool hasName = card.cardholderName().has_value();
  const auto numberOrNull = [](std::int32_t value, bool isPresent) {
    return isPresent ? nlohmann::json(value) : nlohmann::json();
  };
  const bool hasExpiry = card.expirationYear() != 0;
  return {
      {"trackInfo", card.trackInfo()},
      {"accountNumber", number ? nlohmann::json(shownNumber(*number, options)) : nlohmann::json()},
      {"network", network ? nlohmann::json(network) : nlohmann::json()},
      {"cardholderName", jsonOf(card.cardholderName())},
      {"displayCardholderName",
       hasName ? nlohmann::json(card.displayCardholderName()) : nlohmann::json()},
      {"expirationYear", numberOrNull(card.expirationYear(), hasExpiry)},
      {"expirationMonth", numberOrNull(card.expirationMonth(), hasExpiry)},
      {"encryptedTrackData", jsonOf(card.encryptedTrackData())}};
}

Card cardOf(const std::string& swipe, const SwipeOptions& options) {
  if (options.isCreditCard) return RVFCreditCardParser::cardParserForTrackData(swipe);
  return RVFMagneticCardParser::cardParserForTrackData(swipe, options.isNameRequired);
}

/// Prints one swipe, or why there is nothing to print. Answers whether it was read.
bool show(const std::string& swipe, std::size_t line, const SwipeOptions& options) {
  Card card;
  std::string problem = "no card swipe";
  try {
    card = cardOf(swipe, options);
  } catch (const NSException& exception) {
    problem = exception.what();
  }
  if (options.asJson) {
    nlohmann::json value = card ? jsonOf(*card, options) : nlohmann::json{{"error", problem}};
    value["line"] = line;
    std::cout << jsonText(value) << std::endl;
  } else if (card) {
    if (line > 1) std::cout << "\n";
    printText(*card, options);
    std::cout.flush();
  } else {
    complain("line " + std::to_string(line) + ": " + problem);
  }
  return card != nullptr;
}

ExitCode swipeCommand(const SwipeOptions& options) {
  const HiddenTyping hidden;  // a reader types the whole swipe
  SwipeLines lines;
  bool areAllRead = true;
  while (const std::string* swipe = lines.next()) {
    areAllRead = show(*swipe, lines.number(), options) && areAllRead;
    if (!std::cout) return ExitCode::ioError;
  }
  if (std::ferror(stdin)) {
    return report({ExitCode::noInput, "standard input cannot be read"}, options.asJson);
  }
  return areAllRead ? ExitCode::ok : ExitCode::dataError;
}

}  // namespace

void addSwipeCommand(CommandLine& line) {
  const auto options = std::make_shared<SwipeOptions>();
  CLI::App& command = line.addCommand(
      "swipe", "Read card swipes from standard input, one a line, and print their fields",
      [options] { return swipeCommand(*options); });
  addJsonFlag(command, options->asJson, "One JSON object a line");
  command.add_flag("--reveal", options->isRevealed,
                   "Print account numbers whole, not only first six and last four digits");
  auto* requireName = command.add_flag("--require-name", options->isNameRequired,
                                       "Refuse a name that is not 2 to 26 characters long");
  command
      .add_flag("--credit-card", options->isCreditCard,
                "Read as a payment card: with a name, and the account number from track 1 only")
      ->excludes(requireName);
  command.footer(
      "What is typed on a terminal is not shown. A line that is no swipe is told by its number,\n"
      "without its text, and the next one is read.");
}

}  // namespace rvf::tool
