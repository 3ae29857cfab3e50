// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CardReading/RVFMagneticCardParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using OptionalText = std::optional<std::string>;
using OptionalView = std::optional<std::string_view>;

constexpr std::string_view kSwipe =
    "%B4111111111111111^DOE/JOHN^1512101?;4111111111111111=1512101?";

Ref<RVFMagneticCardParser> parserOf(OptionalView swipe) {
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  parser->setSwipeData(swipe);
  return parser;
}

TEST(RVFMagneticCardParser, HoldsNothingAtFirst) {
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  EXPECT_EQ(parser->accountNumber(), std::nullopt);
  EXPECT_EQ(parser->cardholderName(), std::nullopt);
  EXPECT_EQ(parser->swipeData(), std::nullopt);
  EXPECT_EQ(parser->expirationYear(), 0);
  EXPECT_EQ(parser->expirationMonth(), 0);
  EXPECT_EQ(parser->trackInfo(), 0U);
  EXPECT_EQ(parser->encryptedTrackData(), nullptr);
  EXPECT_EQ(parser->displayCardholderName(), "");
}

TEST(RVFMagneticCardParser, ReadsBothTracks) {
  const auto parser = RVFMagneticCardParser::cardParserForTrackData(kSwipe, true);
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->accountNumber(), "4111111111111111");
  EXPECT_EQ(parser->cardholderName(), "DOE/JOHN");
  EXPECT_EQ(parser->expirationYear(), 2015);
  EXPECT_EQ(parser->expirationMonth(), 12);
  EXPECT_EQ(parser->trackInfo(), RVFTrackInfoTrack1 | RVFTrackInfoTrack2);
  EXPECT_EQ(parser->displayCardholderName(), "JOHN DOE");
  EXPECT_EQ(parser->swipeData(), kSwipe);
  EXPECT_EQ(parser->encryptedTrackData(), nullptr);
}

/// What a parse leaves behind, also a failed one.
struct Outcome {
  bool isParsed = false;
  OptionalView account = {};
  OptionalView name = {};
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::uint64_t trackInfo = 0;
};

void expectOutcome(std::string_view swipe, bool isNameRequired, const Outcome& expected) {
  SCOPED_TRACE(testing::PrintToString(swipe.substr(0, 100)) + (isNameRequired ? " named" : ""));
  const auto parser = parserOf(swipe);
  EXPECT_EQ(parser->parseSwipeRequiringName(isNameRequired), expected.isParsed);
  EXPECT_EQ(parser->accountNumber(), expected.account);
  EXPECT_EQ(parser->cardholderName(), expected.name);
  EXPECT_EQ(parser->expirationYear(), expected.year);
  EXPECT_EQ(parser->expirationMonth(), expected.month);
  EXPECT_EQ(parser->trackInfo(), expected.trackInfo);
  const auto made = RVFMagneticCardParser::cardParserForTrackData(swipe, isNameRequired);
  EXPECT_EQ(made != nullptr, expected.isParsed);
}

void expectOutcome(std::string_view swipe, const Outcome& expected) {
  expectOutcome(swipe, true, expected);
  expectOutcome(swipe, false, expected);
}

TEST(RVFMagneticCardParser, ASwipeOfNothingIsWellFormed) {
  for (const char* swipe : {"", " ", " \t\r\n", "\u2028\u3000", "?", "??", " ? ?"})
    expectOutcome(swipe, {.isParsed = true});
  EXPECT_TRUE(parserOf(std::nullopt)->parseSwipeRequiringName(true));
  EXPECT_NE(RVFMagneticCardParser::cardParserForTrackData(std::nullopt, true), nullptr);
}

TEST(RVFMagneticCardParser, AnEmptySegmentEndsTheSwipe) {
  expectOutcome("?;123=1", {.isParsed = true});
  expectOutcome(";1=? \n ?;2=?", {.isParsed = true, .account = "1", .trackInfo = 2});
  expectOutcome(";1=??+", {.isParsed = true, .account = "1", .trackInfo = 2});
}

TEST(RVFMagneticCardParser, RefusesWhatOpensNoTrack) {
  for (const char* swipe : {"+123?", "123", "\u00FC;1=?", "\xFF", "B1^AB^1?", "\u200B;1=?"})
    expectOutcome(swipe, {});
  expectOutcome(";1=?x?", {.account = "1", .trackInfo = 2});
}

TEST(RVFMagneticCardParser, SegmentsAreTrimmedOfWhiteSpaceAndLineBreaks) {
  expectOutcome(" \r\n;1=2 \u2029?\u3000", {.isParsed = true, .account = "1", .trackInfo = 2});
  expectOutcome("; 1 =?", {.isParsed = true, .account = " 1 ", .trackInfo = 2});
  expectOutcome(";1 ?", {.isParsed = true, .account = "1", .trackInfo = 2});
}

TEST(RVFMagneticCardParser, TheLastSegmentNeedsNoEndSentinel) {
  expectOutcome(";1=2", {.isParsed = true, .account = "1", .trackInfo = 2});
}

TEST(RVFMagneticCardParser, LaterSegmentsOverwriteEarlierOnes) {
  expectOutcome("%B1^AB^1512?;2=?%B3^CD^1611?",
                {true, "3", "CD", 2016, 11, RVFTrackInfoTrack1 | RVFTrackInfoTrack2});
  expectOutcome("%B1^AB^1512?%B3^CD^?", {true, "3", "CD", 2015, 12, RVFTrackInfoTrack1});
  expectOutcome(";2=?%B1^AB^1512?;3=?", {true, "3", "AB", 2015, 12, 3});
}

TEST(RVFMagneticCardParser, NothingIsRolledBackOnFailure) {
  expectOutcome("%B1^AB^1512?;?", {false, "1", "AB", 2015, 12, RVFTrackInfoTrack1});
  expectOutcome("%B1^AB^1512?%B2?", {false, "1", "AB", 2015, 12, RVFTrackInfoTrack1});
}

TEST(RVFMagneticCardParser, AnExpiryOfLessThanFourUnitsIsNotSet) {
  const Outcome unset = {true, "123", "AB", 0, 0, RVFTrackInfoTrack1};
  for (const char* swipe : {"%B123^AB^99?", "%B123^AB^?", "%B123^AB^151?", "%B123^AB^1\u00FC2?",
                            "%B123^AB^1\U0001F600?", "%B123^AB^15^1512?"})
    expectOutcome(swipe, unset);
}

TEST(RVFMagneticCardParser, ReadsTheExpiryLeniently) {
  struct Row {
    const char* expiry;
    std::int32_t year;
    std::int32_t month;
  };
  const Row rows[] = {{"1512", 2015, 12},
                      {"1512101", 2015, 12},
                      {"1399", 2013, 99},
                      {"0000", 2000, 0},
                      {" 5 6", 2005, 6},
                      {"+7-8", 2007, -8},
                      {"-9+1", 1991, 1},
                      {"1x2x", 2001, 2},
                      {"abcd", 2000, 0},
                      {"\u00FC\u00E4\u20AC7", 2000, 0},
                      {"1\u00FC12", 2001, 12},
                      {"\U0001F60012", 2000, 12},
                      {"1\U0001F6002", 2001, 0},
                      {"15\U0001F600", 2015, 0},
                      {"\u0661\u0662\u0663\u0664", 2000, 0},
                      {"15\xFF"
                       "1",
                       2015, 0}};
  for (const Row& row : rows) {
    expectOutcome("%B1^AB^" + std::string(row.expiry) + "?",
                  {true, "1", "AB", row.year, row.month, RVFTrackInfoTrack1});
  }
}

TEST(RVFMagneticCardParser, ARequiredNameIs2To26UnitsLong) {
  const std::string longest(26, 'N');
  const std::string umlauts = "\u00C4\u00D6";
  const std::string faces = "\U0001F600";
  std::string thirteenFaces;
  for (int i = 0; i < 13; ++i)
    thirteenFaces += faces;
  for (const std::string& name : {std::string("AB"), longest, umlauts, faces, thirteenFaces}) {
    expectOutcome("%B123^" + name + "^1512?", {true, "123", name, 2015, 12, 1});
  }
  for (const std::string& name : {std::string(), std::string("X"), std::string("\u20AC"),
                                  longest + "N", thirteenFaces + "N"}) {
    expectOutcome("%B123^" + name + "^1512?", false, {true, "123", name, 2015, 12, 1});
    expectOutcome("%B123^" + name + "^1512?", true, {.account = "123"});
  }
}

TEST(RVFMagneticCardParser, Track1BeginsWithTheFormatCodeB) {
  for (const char* swipe :
       {"%A123^DOE/J^1512?", "%b123^DOE/J^1512?", "%^DOE/J^1512?", "% B1^DOE/J^1512?"})
    expectOutcome(swipe, {});
  expectOutcome("%B^AB^1512?", {true, "", "AB", 2015, 12, 1});
}

TEST(RVFMagneticCardParser, Track1HasAtLeastTwoFields) {
  for (const char* swipe : {"%?", "%B123?", "%B4111111111111111"})
    expectOutcome(swipe, {});
}

TEST(RVFMagneticCardParser, AnAccountFieldIs1To20UnitsLong) {
  const std::string nineteen(19, '4');
  expectOutcome("%B" + nineteen + "^AB^1512?", {true, nineteen, "AB", 2015, 12, 1});
  expectOutcome("%B4" + nineteen + "^AB^1512?", {});
  expectOutcome(";4" + nineteen + "=1?", {true, "4" + nineteen, {}, 0, 0, 2});
  expectOutcome(";44" + nineteen + "=1?", {});
  expectOutcome(";=1512?", {});
  expectOutcome(";?", {});
}

TEST(RVFMagneticCardParser, AnAccountFieldIsCountedInUtf16Units) {
  std::string tenFaces;
  for (int i = 0; i < 10; ++i)
    tenFaces += "\U0001F600";
  expectOutcome(";" + tenFaces + "=?", {true, tenFaces, {}, 0, 0, 2});
  expectOutcome(";" + tenFaces + "4=?", {});
  expectOutcome("%B" + tenFaces + "^AB^?", {});
  const std::string nineFacesAndAFigure = tenFaces.substr(4) + "4";
  expectOutcome("%B" + nineFacesAndAFigure + "^AB^1512?",
                {true, nineFacesAndAFigure, "AB", 2015, 12, 1});
}

TEST(RVFMagneticCardParser, Track2MayLackItsExpiry) {
  expectOutcome(";4111?", {true, "4111", {}, 0, 0, 2});
  expectOutcome(";4111==9?", {true, "4111", {}, 0, 0, 2});
}

TEST(RVFMagneticCardParser, ATrack1WithOneSeparatorRaises) {
  for (const bool isNameRequired : {false, true}) {
    const auto parser = parserOf("%B123^DOE/J?;9=?");
    try {
      parser->parseSwipeRequiringName(isNameRequired);
      ADD_FAILURE() << "nothing was raised";
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSRangeException);
      EXPECT_EQ(exception.reason(), "index 2 beyond bounds [0 .. 1]");
    }
    EXPECT_EQ(parser->accountNumber(), "123");
    EXPECT_EQ(parser->cardholderName(), "DOE/J");
    EXPECT_EQ(parser->trackInfo(), 0U);
    EXPECT_THROW(RVFMagneticCardParser::cardParserForTrackData("%B123^DOE/J?", isNameRequired),
                 NSException);
  }
}

TEST(RVFMagneticCardParser, ARefusedNameComesBeforeTheMissingField) {
  expectOutcome("%B123^X?", true, {.account = "123"});
  EXPECT_THROW(parserOf("%B123^X?")->parseSwipeRequiringName(false), NSException);
}

TEST(RVFMagneticCardParser, ReadsTheBlockOfAnEncryptingReader) {
  const auto parser = RVFMagneticCardParser::cardParserForTrackData(
      "|st|1|data|3|4|block|6|7|serial|9|10|11?", true);
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->trackInfo(), RVFTrackInfoEncryptedTrack);
  ASSERT_NE(parser->encryptedTrackData(), nullptr);
  EXPECT_EQ(parser->encryptedTrackData()->statusBlock(), "st");
  EXPECT_EQ(parser->encryptedTrackData()->trackData(), "data");
  EXPECT_EQ(parser->encryptedTrackData()->dataBlock(), "block");
  EXPECT_EQ(parser->encryptedTrackData()->keySerial(), "serial");
}

TEST(RVFMagneticCardParser, AnEncryptedBlockOfEmptyFieldsIsABlock) {
  const auto parser = parserOf("||||||||||||?");
  EXPECT_TRUE(parser->parseSwipeRequiringName(true));
  const auto record = parser->encryptedTrackData();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->statusBlock(), "");
  EXPECT_EQ(record->trackData(), "");
  EXPECT_EQ(record->dataBlock(), "");
  EXPECT_EQ(record->keySerial(), "");
}

TEST(RVFMagneticCardParser, RefusesABlockThatHasNotTwelveFields) {
  for (const char* swipe : {"|?", "|0|1|2|3|4|5|6|7|8|9|10?", "|0|1|2|3|4|5|6|7|8|9|10|11|12?"}) {
    const auto parser = parserOf(swipe);
    EXPECT_FALSE(parser->parseSwipeRequiringName(false)) << swipe;
    EXPECT_EQ(parser->encryptedTrackData(), nullptr) << swipe;
    EXPECT_EQ(parser->trackInfo(), 0U) << swipe;
  }
}

TEST(RVFMagneticCardParser, ANewBlockReplacesTheRecordAndARefusedOneDoesNot) {
  const auto parser = parserOf("|||1|||||||||?|||2|||||||||?|?");
  const auto former = std::make_shared<RVFEncryptedTrackData>();
  parser->setEncryptedTrackData(former);
  EXPECT_FALSE(parser->parseSwipeRequiringName(false));
  EXPECT_NE(parser->encryptedTrackData(), former);
  EXPECT_EQ(parser->encryptedTrackData()->trackData(), "2");
  EXPECT_EQ(parser->trackInfo(), RVFTrackInfoEncryptedTrack);
}

TEST(RVFMagneticCardParser, AllThreeKindsOfSegmentsGoTogether) {
  const auto parser = parserOf("|||t|||||||||?\r\n;2=?\r\n%B1^AB^1512?\r\n");
  EXPECT_TRUE(parser->parseSwipeRequiringName(true));
  EXPECT_EQ(parser->trackInfo(), 7U);
  EXPECT_EQ(parser->accountNumber(), "1");
}

TEST(RVFMagneticCardParser, OnlyTheClassOperationClearsTheTrackInfo) {
  const auto parser = parserOf("%B1^AB^1512?");
  parser->setTrackInfo(8);
  EXPECT_TRUE(parser->parseSwipeRequiringName(true));
  parser->setSwipeData(";2=?");
  EXPECT_TRUE(parser->parseSwipeRequiringName(true));
  EXPECT_EQ(parser->trackInfo(), 8U | 1U | 2U);
}

TEST(RVFMagneticCardParser, ShowsTheNameInReadingOrder) {
  struct Row {
    const char* name;
    const char* shown;
  };
  const Row rows[] = {{"DOE/JOHN", "JOHN DOE"},
                      {"DOE /JOHN Q  ", "JOHN Q DOE"},
                      {"\tDOE\t/ JOHN", "JOHN DOE"},
                      {"  JOHN DOE \t", "JOHN DOE"},
                      {"DOE/JOHN/JR", "JOHN/JR DOE"},
                      {"DOE\n/\nJOHN", "\nJOHN DOE\n"},
                      {"\nDOE", "\nDOE"},
                      {"/", " "},
                      {"DOE/", " DOE"},
                      {"/JOHN", "JOHN "},
                      {"", ""},
                      {"M\u00DCLLER/J\u00D6RG", "J\u00D6RG M\u00DCLLER"},
                      {"%@/%d", "%d %@"}};
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  for (const Row& row : rows) {
    parser->setCardholderName(row.name);
    EXPECT_EQ(parser->displayCardholderName(), row.shown) << row.name;
  }
}

TEST(RVFMagneticCardParser, DeclaresItsPropertiesInOrder) {
  std::vector<std::string> declared;
  for (const Property& property : class_copyPropertyList(objc_getClass("RVFMagneticCardParser")))
    declared.push_back(property.name + " " + property.attributes);
  EXPECT_THAT(
      declared,
      ElementsAre("accountNumber T@\"NSString\",C,N,V_accountNumber",
                  "cardholderName T@\"NSString\",C,N,V_cardholderName",
                  "expirationYear Ti,N,V_expirationYear", "expirationMonth Ti,N,V_expirationMonth",
                  "trackInfo TQ,N,V_trackInfo", "swipeData T@\"NSString\",C,N,V_swipeData",
                  "encryptedTrackData T@\"RVFEncryptedTrackData\",&,N,V_encryptedTrackData",
                  "displayCardholderName T@\"NSString\",R,C,N"));
}

TEST(RVFMagneticCardParser, AnswersMessages) {
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  send(parser, SEL("setSwipeData:"), OptionalText(kSwipe));
  EXPECT_TRUE(send<bool>(parser, SEL("parseSwipeRequiringName:"), true));
  EXPECT_EQ(send<OptionalText>(parser, SEL("accountNumber")), "4111111111111111");
  EXPECT_EQ(send<OptionalText>(parser, SEL("cardholderName")), "DOE/JOHN");
  EXPECT_EQ(send<OptionalText>(parser, SEL("swipeData")), kSwipe);
  EXPECT_EQ(send<std::string>(parser, SEL("displayCardholderName")), "JOHN DOE");
  EXPECT_EQ(send<std::int32_t>(parser, SEL("expirationYear")), 2015);
  EXPECT_EQ(send<std::uint64_t>(parser, SEL("trackInfo")), 3U);
  EXPECT_TRUE(send<bool>(parser, SEL("parseTrack2:"), std::string("77=")));
  EXPECT_EQ(parser->accountNumber(), "77");
  send(parser, SEL("setAccountNumber:"), OptionalText("88"));
  send(parser, SEL("setCardholderName:"), OptionalText());
  EXPECT_EQ(parser->accountNumber(), "88");
  EXPECT_EQ(parser->cardholderName(), std::nullopt);
}

/// A club's cards have a second track that holds the member's number behind "M".
class ClubCardParser final : public RVFMagneticCardParser {
 public:
  bool parseTrack2(std::string_view body) override {
    if (!body.starts_with("M")) return false;
    setAccountNumber(body.substr(1));
    return true;
  }
};

TEST(RVFMagneticCardParser, TheClassOperationMakesTheReceivingClass) {
  const Ref<ClubCardParser> parser =
      ClubCardParser::cardParserForTrackData<ClubCardParser>(";M12345?", true);
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->accountNumber(), "12345");
  EXPECT_EQ(parser->trackInfo(), RVFTrackInfoTrack2);
  EXPECT_EQ(ClubCardParser::cardParserForTrackData<ClubCardParser>(";12345=?", true), nullptr);
}

/// Drops the swipe as soon as it sees a track, which the parse goes on reading.
class ForgetfulParser final : public RVFMagneticCardParser {
 public:
  bool parseTrack2(std::string_view body) override {
    setSwipeData(std::nullopt);
    setSwipeData("");
    return RVFMagneticCardParser::parseTrack2(body);
  }
};

TEST(RVFMagneticCardParser, AStepMayReplaceTheSwipeThatIsBeingParsed) {
  const auto parser =
      ForgetfulParser::cardParserForTrackData<ForgetfulParser>(";1=?%B22^AB^1512?;333=?", true);
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->accountNumber(), "333");
  EXPECT_EQ(parser->cardholderName(), "AB");
  EXPECT_EQ(parser->swipeData(), "");
}

class ExtendedParser final : public RVFMagneticCardParser {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<ExtendedParser>("ExtendedParser", RVFMagneticCardParser::classObject())
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
};

bool refuseTrack(NSObject&, SEL, std::string_view) {
  return false;
}

TEST(RVFMagneticCardParser, AStepMayBeReplacedAtRunTime) {
  EXPECT_NE(ExtendedParser::cardParserForTrackData<ExtendedParser>(";1=?", true), nullptr);
  ASSERT_TRUE(class_addMethod(ExtendedParser::classObject(), SEL("parseTrack2:"), &refuseTrack));
  EXPECT_EQ(ExtendedParser::cardParserForTrackData<ExtendedParser>(";1=?", true), nullptr);
  EXPECT_NE(RVFMagneticCardParser::cardParserForTrackData(";1=?", true), nullptr);
}

bool refuseTrack1(NSObject&, SEL, std::string_view, bool) {
  return false;
}

TEST(RVFMagneticCardParser, EveryStepMayBeReplacedAtRunTime) {
  class RefusingParser final : public RVFMagneticCardParser {
   public:
    static Class classObject() {
      static const Class kClass =
          ClassBuilder<RefusingParser>("RefusingParser", RVFMagneticCardParser::classObject())
              .method("parseTrack1:requiringValidName:", &refuseTrack1)
              .method("parseEncryptedTrack:", &refuseTrack)
              .registered();
      return kClass;
    }
    Class isa() const override { return classObject(); }
  };
  for (const char* swipe : {"%B123^AB^1512?", "||||||||||||?"}) {
    EXPECT_NE(RVFMagneticCardParser::cardParserForTrackData(swipe, true), nullptr) << swipe;
    EXPECT_EQ(RefusingParser::cardParserForTrackData<RefusingParser>(swipe, true), nullptr)
        << swipe;
  }
}

TEST(RVFMagneticCardParser, KeepsTheVeryRecordThatItIsGiven) {
  const auto parser = std::make_shared<RVFMagneticCardParser>();
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  parser->setEncryptedTrackData(record);
  EXPECT_EQ(parser->encryptedTrackData(), record);
  send(parser, SEL("setEncryptedTrackData:"), Ref<RVFEncryptedTrackData>());
  EXPECT_EQ(parser->encryptedTrackData(), nullptr);
  send(parser, SEL("setExpirationYear:"), std::int32_t{2031});
  send(parser, SEL("setExpirationMonth:"), std::int32_t{7});
  send(parser, SEL("setTrackInfo:"), std::uint64_t{4});
  EXPECT_EQ(send<std::int32_t>(parser, SEL("expirationMonth")), 7);
  EXPECT_EQ(parser->expirationYear(), 2031);
  EXPECT_EQ(parser->trackInfo(), 4U);
}

TEST(RVFMagneticCardParser, DescribesItselfWithoutCardData) {
  const auto parser = RVFMagneticCardParser::cardParserForTrackData(kSwipe, true);
  EXPECT_EQ(parser->description().find("4111"), std::string::npos);
  EXPECT_EQ(parser->description().find("DOE"), std::string::npos);
}

}  // namespace
}  // namespace rvf
