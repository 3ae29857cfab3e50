// SPDX-License-Identifier: Apache-2.0
//
// What holds for every swipe: well-formed ones are read back, and whatever else is delivered is
// answered or raises the one exception that it may.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <array>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

std::string withoutAny(std::string text, std::string_view bytes) {
  std::erase_if(text, [bytes](char c) { return bytes.find(c) != std::string_view::npos; });
  return text;
}

/// Some text without the marks that separate the parts of a swipe, and white space at its ends.
std::string anyField() {
  return std::string(trimText(withoutAny(*anyText(), "?^=|"), &isWhiteSpaceOrNewline));
}

std::string anyDigits(std::size_t shortest, std::size_t longest) {
  const auto length = *rc::gen::inRange(shortest, longest + 1);
  return *rc::gen::container<std::string>(length, rc::gen::inRange('0', ':'));
}

/// A field of `shortest` to `longest` UTF-16 units.
std::string anyFieldOfLength(std::size_t shortest, std::size_t longest) {
  std::string field(substringUtf16(anyField(), 0, longest));
  field = trimText(field, &isWhiteSpaceOrNewline);
  return utf16Length(field) < shortest ? "JO" : field;
}

std::string twoDigits(int number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

struct Track1 {
  std::string account = anyDigits(1, 19);
  std::string name = anyFieldOfLength(2, 26);
  int year = *rc::gen::inRange(0, 100);
  int month = *rc::gen::inRange(0, 100);
  std::string rest = anyField();

  std::string segment() const {
    return "%B" + account + "^" + name + "^" + twoDigits(year) + twoDigits(month) + rest + "?";
  }
};

TEST(SwipeProperties, Track1IsReadBack) {
  EXPECT_TRUE(rc::check([] {
    const Track1 track;
    const auto card = RVFMagneticCardParser::cardParserForTrackData(track.segment(), true);
    RC_ASSERT(card);
    RC_ASSERT(card->accountNumber() == track.account);
    RC_ASSERT(card->cardholderName() == track.name);
    RC_ASSERT(card->expirationYear() == 2000 + track.year);
    RC_ASSERT(card->expirationMonth() == track.month);
    RC_ASSERT(card->trackInfo() == RVFTrackInfoTrack1);
  }));
}

TEST(SwipeProperties, AnEncryptedBlockIsReadBack) {
  EXPECT_TRUE(rc::check([] {
    std::array<std::string, 12> fields;
    std::string block;
    for (std::string& field : fields) {
      field = anyField();
      block += "|" + field;
    }
    const auto card = RVFMagneticCardParser::cardParserForTrackData(block + "?", true);
    RC_ASSERT(card);
    const auto record = card->encryptedTrackData();
    RC_ASSERT(record->statusBlock() == fields[0]);
    RC_ASSERT(record->trackData() == fields[2]);
    RC_ASSERT(record->dataBlock() == fields[5]);
    RC_ASSERT(record->keySerial() == fields[8]);
  }));
}

TEST(SwipeProperties, SegmentsComeInAnyOrder) {
  EXPECT_TRUE(rc::check([] {
    const Track1 track1;
    const std::string track2Account = anyDigits(1, 20);
    std::array<std::string, 3> segments = {track1.segment(), ";" + track2Account + "=" + "?",
                                           "|||data|||||||||?"};
    std::ranges::sort(segments);
    const int turns = *rc::gen::inRange(0, 6);
    for (int i = 0; i < turns; ++i)
      std::ranges::next_permutation(segments);
    const std::string swipe = segments[0] + "\r\n" + segments[1] + " " + segments[2];
    const bool isTrack2Last = swipe.find(track1.segment()) < swipe.find(";" + track2Account + "=?");

    const auto card = RVFMagneticCardParser::cardParserForTrackData(swipe, true);
    RC_ASSERT(card && card->trackInfo() == 7U);
    RC_ASSERT(card->accountNumber() == (isTrack2Last ? track2Account : track1.account));
    RC_ASSERT(card->encryptedTrackData()->trackData() == "data");
    const auto credit = RVFCreditCardParser::cardParserForTrackData(swipe);
    RC_ASSERT(credit && credit->accountNumber() == track1.account);
  }));
}

TEST(SwipeProperties, AnyBytesAreAnsweredOrRaiseTheRangeException) {
  const auto bytes = rc::gen::container<std::string>(rc::gen::element<char>(
      '%', ';', '|', '?', '^', '=', 'B', '1', ' ', '\n', '\0', '\xC3', '\xBC', '\xF0', '\xFF'));
  EXPECT_TRUE(rc::check([&bytes] {
    const std::string swipe = *bytes;
    const bool isNameRequired = *rc::gen::arbitrary<bool>();
    try {
      const auto card = RVFMagneticCardParser::cardParserForTrackData(swipe, isNameRequired);
      if (card) RC_ASSERT(card->swipeData() == swipe);
      const auto credit = RVFCreditCardParser::cardParserForTrackData(swipe);
      if (credit) RC_ASSERT(credit->cardType() <= RVFCardTypeDinersClub);
    } catch (const NSException& exception) {
      RC_ASSERT(exception.name() == NSRangeException);
      RC_ASSERT(swipe.find("%B") != std::string::npos && swipe.find('^') != std::string::npos);
    }
  }));
}

constexpr std::size_t kTenMegabytes = 10'000'000;

TEST(SwipeProperties, TenMegabytesOfGarbageAreRefused) {
  std::string garbage(kTenMegabytes, '\0');
  std::uint32_t state = 1;
  for (char& c : garbage)
    c = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24);
  for (const std::string_view start : {"x", "%B", "%", ";", "|", ";1=?|"}) {
    garbage.replace(0, start.size(), start);
    const auto parser = std::make_shared<RVFMagneticCardParser>();
    parser->setSwipeData(garbage);
    EXPECT_FALSE(parser->parseSwipeRequiringName(true)) << start;
  }
}

TEST(SwipeProperties, FieldsOfTenMegabytesAreMeasured) {
  const std::string longField(kTenMegabytes, '4');
  const auto parse = [](const std::string& swipe) {
    return RVFMagneticCardParser::cardParserForTrackData(swipe, true);
  };
  EXPECT_EQ(parse("%B" + longField + "^AB^1512?"), nullptr);
  EXPECT_EQ(parse("%B1^" + longField + "^1512?"), nullptr);
  EXPECT_EQ(parse(";" + longField + "=?"), nullptr);
  EXPECT_EQ(parse("%B1^AB^1512" + longField + "?")->expirationMonth(), 12);
  EXPECT_EQ(parse("|" + longField + "|||||||||||?")->encryptedTrackData()->statusBlock(),
            longField);
}

/// The parse's steps, counted.
class CountingParser final : public RVFMagneticCardParser {
 public:
  bool parseTrack2(std::string_view body) override {
    bytes_ += body.size();
    ++segments_;
    return true;
  }
  std::size_t bytes_ = 0;
  std::size_t segments_ = 0;
};

TEST(SwipeProperties, AMillionSegmentsAreEachReadOnce) {
  constexpr std::size_t kSegments = 1'000'000;
  std::string swipe;
  for (std::size_t i = 0; i < kSegments; ++i)
    swipe += ";1=?";
  const auto parser = CountingParser::cardParserForTrackData<CountingParser>(swipe, true);
  ASSERT_NE(parser, nullptr);
  EXPECT_EQ(parser->segments_, kSegments);
  EXPECT_EQ(parser->bytes_, 2 * kSegments);
}

TEST(SwipeProperties, AMillionEndSentinelsAreAnEmptySwipe) {
  const std::string sentinels(1'000'000, '?');
  EXPECT_EQ(RVFMagneticCardParser::cardParserForTrackData(sentinels, true)->trackInfo(), 0U);
  const auto parser =
      CountingParser::cardParserForTrackData<CountingParser>(";1=" + sentinels, true);
  EXPECT_EQ(parser->segments_, 1U);
}

}  // namespace
}  // namespace rvf
