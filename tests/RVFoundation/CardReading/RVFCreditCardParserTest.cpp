// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CardReading/RVFCreditCardParser.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

std::int32_t typeOf(std::optional<std::string_view> accountNumber) {
  const auto parser = std::make_shared<RVFCreditCardParser>();
  parser->setAccountNumber(accountNumber);
  return parser->cardType();
}

/// The digits, filled up with zeros.
std::string numberOf(std::string start, std::size_t length) {
  start.resize(length, '0');
  return start;
}

TEST(RVFCreditCardParser, TellsTheNetworkByLengthAndFirstDigits) {
  struct Row {
    std::size_t length;
    const char* start;
    std::int32_t type;
  };
  const Row rows[] = {
      {13, "4", 0},     {13, "5", 0},     {13, "", 0},      {13, "x", 0},     {16, "4", 0},
      {16, "50", -1},   {16, "51", 1},    {16, "55", 1},    {16, "56", -1},   {16, "3527", -1},
      {16, "3528", 2},  {16, "3530", 2},  {16, "3589", 2},  {16, "3590", -1}, {16, "6010", -1},
      {16, "6011", 3},  {16, "6012", -1}, {16, "34", -1},   {16, "37", -1},   {16, "36", -1},
      {16, "300", -1},  {15, "34", 4},    {15, "37", 4},    {15, "35", -1},   {15, "33", -1},
      {15, "4", -1},    {15, "51", -1},   {15, "6011", -1}, {14, "300", 5},   {14, "305", 5},
      {14, "306", -1},  {14, "299", -1},  {14, "36", 5},    {14, "38", 5},    {14, "37", -1},
      {14, "39", -1},   {14, "4", -1},    {12, "4", -1},    {17, "4", -1},    {19, "4", -1},
      {19, "6011", -1}, {0, "", -1},      {16, " 51", -1},  {16, "+352", -1}, {14, "+36", -1},
      {16, "5x", -1}};
  for (const Row& row : rows) {
    EXPECT_EQ(typeOf(numberOf(row.start, row.length)), row.type) << row.length << " " << row.start;
  }
}

TEST(RVFCreditCardParser, AnAbsentNumberIsNotRecognised) {
  EXPECT_EQ(typeOf(std::nullopt), RVFCardTypeUnknown);
}

TEST(RVFCreditCardParser, CountsTheNumberInUtf16Units) {
  EXPECT_EQ(typeOf("4\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC"), 0);
  EXPECT_EQ(typeOf("4" + numberOf("", 13) + "\U0001F600"), 0);
  EXPECT_EQ(typeOf("4" + numberOf("", 14) + "\U0001F600"), -1);
}

TEST(RVFCreditCardParser, FollowsTheAccountNumber) {
  const auto parser = std::make_shared<RVFCreditCardParser>();
  parser->setAccountNumber("4111111111111111");
  EXPECT_EQ(parser->cardType(), RVFCardTypeVisa);
  parser->setAccountNumber("6011000000000004");
  EXPECT_EQ(parser->cardType(), RVFCardTypeDiscover);
}

TEST(RVFCreditCardParser, KeepsTheNumberOfTrack1) {
  const auto parser = RVFCreditCardParser::cardParserForTrackData(
      "%B4111111111111111^DOE/JOHN^1512101?;5500000000000004=1512101?");
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->accountNumber(), "4111111111111111");
  EXPECT_EQ(parser->trackInfo(), RVFTrackInfoTrack1 | RVFTrackInfoTrack2);
  EXPECT_EQ(parser->cardType(), RVFCardTypeVisa);
}

TEST(RVFCreditCardParser, ATrack2AloneGivesAParserWithoutNumber) {
  const auto parser = RVFCreditCardParser::cardParserForTrackData(";4111111111111111=1512101?");
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->accountNumber(), std::nullopt);
  EXPECT_EQ(parser->trackInfo(), RVFTrackInfoTrack2);
  EXPECT_EQ(parser->cardType(), -1);
}

TEST(RVFCreditCardParser, AcceptsAnyTrack2) {
  EXPECT_NE(RVFCreditCardParser::cardParserForTrackData(";" + std::string(100, '4')), nullptr);
  EXPECT_NE(RVFCreditCardParser::cardParserForTrackData(";?"), nullptr);
}

TEST(RVFCreditCardParser, ASwipeOfNothingGivesNoParser) {
  for (const char* swipe : {"", " \n", "?", "?;1=?"})
    EXPECT_EQ(RVFCreditCardParser::cardParserForTrackData(swipe), nullptr) << swipe;
  EXPECT_EQ(RVFCreditCardParser::cardParserForTrackData(std::nullopt), nullptr);
}

TEST(RVFCreditCardParser, InsistsOnAName) {
  EXPECT_EQ(RVFCreditCardParser::cardParserForTrackData("%B4111111111111111^X^1512?"), nullptr);
  EXPECT_NE(RVFCreditCardParser::cardParserForTrackData("%B4111111111111111^XY^1512?"), nullptr);
}

TEST(RVFCreditCardParser, AMalformedSwipeGivesNoParser) {
  EXPECT_EQ(RVFCreditCardParser::cardParserForTrackData("%B4^XY^1512?+?"), nullptr);
  EXPECT_THROW(RVFCreditCardParser::cardParserForTrackData("%B4^XY?"), NSException);
}

TEST(RVFCreditCardParser, TheInheritedOperationMakesACreditCardParser) {
  const Ref<RVFCreditCardParser> parser = RVFCreditCardParser::cardParserForTrackData("", false);
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->trackInfo(), 0U);
}

class GiftCardParser final : public RVFCreditCardParser {};

TEST(RVFCreditCardParser, TheClassOperationMakesTheReceivingClass) {
  const Ref<GiftCardParser> parser =
      GiftCardParser::cardParserForTrackData<GiftCardParser>("%B4^XY^1512?");
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->accountNumber(), "4");
  EXPECT_EQ(GiftCardParser::cardParserForTrackData<GiftCardParser>(""), nullptr);
}

TEST(RVFCreditCardParser, IsDescribedToTheRuntime) {
  const Class described = objc_getClass("RVFCreditCardParser");
  ASSERT_EQ(class_getSuperclass(described), objc_getClass("RVFMagneticCardParser"));
  const auto properties = class_copyPropertyList(described);
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "cardType");
  EXPECT_EQ(properties[0].attributes, "Ti,R,N");
  EXPECT_TRUE(class_copyIvarList(described).empty());
  const auto parser = std::make_shared<RVFCreditCardParser>();
  EXPECT_EQ(send<std::int32_t>(parser, SEL("cardType")), -1);
  EXPECT_TRUE(send<bool>(parser, SEL("parseTrack2:"), std::string_view("no track")));
}

}  // namespace
}  // namespace rvf
