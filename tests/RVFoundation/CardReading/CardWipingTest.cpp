// SPDX-License-Identifier: Apache-2.0
//
// Reads the memory that destroyed parsers and replaced texts stood in. The texts that are looked
// for are literals, so that no test leaves a copy of its own.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "tests/RVFoundation/CardReading/MemoryArena.h"

namespace rvf {
namespace {

constexpr std::string_view kAccount = "4111111111111111";
constexpr std::string_view kName = "DOE/JOHN";
constexpr std::string_view kTrack2 = ";5500000000000004=1512101?";
constexpr std::string_view kCiphertext = "0A1B2C3D4E5F";
constexpr std::string_view kSwipe =
    "%B4111111111111111^DOE/JOHN^1512101?;5500000000000004=1512101?"
    "|status0123|1|0A1B2C3D4E5F|3|4|block45678|6|7|serial8901|9|10|11?";
/// Every text that a parser of that swipe keeps.
constexpr std::string_view kKept[] = {kAccount,     kName,        kTrack2,     kCiphertext,
                                      "status0123", "block45678", "serial8901"};

/// The class objects and selectors are made before any memory is looked at.
class CardWipingTest : public testing::Test {
 protected:
  CardWipingTest() { RVFCreditCardParser::cardParserForTrackData("%B4^XY^1512?;1?"); }
};

void expectNothingIsLeft() {
  for (const std::string_view text : kKept)
    EXPECT_FALSE(MemoryArena::contains(text)) << text;
}

TEST_F(CardWipingTest, TheArenaShowsWhatWasNotWiped) {
  const MemoryArena arena;
  {
    const std::string longText(kSwipe);
    EXPECT_TRUE(MemoryArena::contains(kAccount));
  }
  EXPECT_TRUE(MemoryArena::contains(kAccount));
  EXPECT_TRUE(MemoryArena::contains(kTrack2));
}

TEST_F(CardWipingTest, TheArenaShowsShortStringsInsideDestroyedObjects) {
  struct Holder {
    std::string text{kName};
  };
  [[maybe_unused]] static const void* volatile seen;  // else the compiler leaves out what nobody
                                                      // reads
  const MemoryArena arena;
  {
    const auto holder = std::make_unique<Holder>();
    seen = holder.get();
    EXPECT_TRUE(MemoryArena::contains(kName));
  }
  EXPECT_TRUE(MemoryArena::contains(kName));
}

TEST_F(CardWipingTest, ADestroyedParserLeavesNothing) {
  const MemoryArena arena;
  {
    const auto card = RVFCreditCardParser::cardParserForTrackData(kSwipe);
    ASSERT_NE(card, nullptr);
    for (const std::string_view text : kKept)
      EXPECT_TRUE(MemoryArena::contains(text)) << text;
    EXPECT_EQ(card->cardType(), RVFCardTypeVisa);
  }
  expectNothingIsLeft();
}

TEST_F(CardWipingTest, ARefusedSwipeLeavesNothing) {
  const MemoryArena arena;
  std::optional<SecretText> swipe(std::in_place, kSwipe);
  {
    const auto parser = std::make_shared<RVFMagneticCardParser>();
    parser->setSwipeData(swipe->view());
    EXPECT_TRUE(parser->parseSwipeRequiringName(true));
    EXPECT_FALSE(parser->parseTrack1("B4111111111111111^D", true));
  }
  swipe.reset();
  expectNothingIsLeft();
  EXPECT_EQ(RVFMagneticCardParser::cardParserForTrackData("%B4111111111111111^D^1512?", true),
            nullptr);
  expectNothingIsLeft();
}

TEST_F(CardWipingTest, TheRangeExceptionHasNoCardData) {
  const MemoryArena arena;
  try {
    RVFMagneticCardParser::cardParserForTrackData("%B4111111111111111^DOE/JOHN?", true);
    ADD_FAILURE() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.reason().find('4'), std::string::npos);
    EXPECT_EQ(std::string_view(exception.what()).find("DOE"), std::string_view::npos);
    expectNothingIsLeft();
  }
}

TEST_F(CardWipingTest, ReplacedTextsAreWiped) {
  const MemoryArena arena;
  const auto parser = RVFMagneticCardParser::cardParserForTrackData(kSwipe, true);
  parser->setAccountNumber("1");
  parser->setCardholderName(std::nullopt);
  parser->setSwipeData("");
  parser->setEncryptedTrackData(nullptr);
  expectNothingIsLeft();
}

TEST_F(CardWipingTest, ReplacedTextsOfARecordAreWiped) {
  const MemoryArena arena;
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  record->setTrackData(kCiphertext);
  record->setDataBlock(kSwipe);
  record->setStatusBlock(kTrack2);
  record->setKeySerial(kAccount);
  EXPECT_TRUE(MemoryArena::contains(kCiphertext) && MemoryArena::contains(kAccount));
  record->setTrackData("");
  record->setDataBlock(std::nullopt);
  record->setStatusBlock("0");
  record->setKeySerial("0");
  expectNothingIsLeft();
}

TEST_F(CardWipingTest, ATextThatKeepsAPartOfItselfIsWiped) {
  const MemoryArena arena;
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  parser->setAccountNumber(kAccount);
  parser->setAccountNumber(parser->accountNumber()->substr(12));
  EXPECT_EQ(parser->accountNumber(), "1111");
  expectNothingIsLeft();
}

TEST_F(CardWipingTest, AParseAllocatesTheParserAndWhatItKeepsOnly) {
  const MemoryArena arena;
  const auto clear = RVFCreditCardParser::cardParserForTrackData(
      "%B4111111111111111^DOE/JOHN^1512101?;5500000000000004=1512101?");
  constexpr std::size_t kClear = 1 + 3;  // the parser; swipe, number, name
  EXPECT_EQ(MemoryArena::blockCount(), kClear);
  const auto whole = RVFCreditCardParser::cardParserForTrackData(kSwipe);
  EXPECT_EQ(MemoryArena::blockCount(), kClear + kClear + 1 + 4);  // a record and its texts
}

/// Replaces the swipe while it is parsed.
class ForgetfulParser final : public RVFMagneticCardParser {
 public:
  bool parseTrack2(std::string_view) override {
    setSwipeData("gone");
    isKeptMeanwhile_ = MemoryArena::contains(kTrack2);
    return true;
  }
  bool isKeptMeanwhile_ = false;
};

TEST_F(CardWipingTest, ASwipeThatIsReplacedWhileItIsParsedIsWipedAfterwards) {
  const MemoryArena arena;
  const auto parser = ForgetfulParser::cardParserForTrackData<ForgetfulParser>(kSwipe, true);
  EXPECT_TRUE(parser->isKeptMeanwhile_);
  EXPECT_FALSE(MemoryArena::contains(kTrack2));
  EXPECT_TRUE(MemoryArena::contains(kAccount));
}

TEST_F(CardWipingTest, ATextThatAMessageBringsIsWiped) {
  static const SEL kSetter("setAccountNumber:");
  const MemoryArena arena;
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  send(parser, kSetter, std::optional<std::string>(kAccount));
  EXPECT_EQ(parser->accountNumber(), kAccount);
  parser->setAccountNumber(std::nullopt);
  expectNothingIsLeft();
}

TEST_F(CardWipingTest, LongTextsAreWipedWhole) {
  const MemoryArena arena;
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  constexpr std::size_t kLength = 100'000;
  for (int round = 0; round < 2; ++round) {
    std::string swipe;
    swipe.reserve(kLength + kAccount.size());
    swipe.append(kLength, '|').append(kAccount);
    parser->setSwipeData(swipe);
    wipeText(swipe);
    EXPECT_TRUE(MemoryArena::contains(kAccount));
  }
  parser->setSwipeData(std::nullopt);
  EXPECT_FALSE(MemoryArena::contains(kAccount));
  EXPECT_FALSE(MemoryArena::contains("||||"));
}

}  // namespace
}  // namespace rvf
