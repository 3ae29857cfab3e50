// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NSScanner.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <limits>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Text/Text.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

TEST(NSScanner, ReadsIntegers) {
  struct Row {
    std::string text;
    bool isRead;
    std::int32_t value;
    std::size_t location;
  };
  constexpr std::int32_t kUntouched = -77;
  const Row rows[] = {{"12abc", true, 12, 2},
                      {" \n\t+7 ", true, 7, 5},
                      {"-01", true, -1, 3},
                      {"\u00A0\u20285", true, 5, 3},
                      {"99999999999x", true, std::numeric_limits<std::int32_t>::max(), 11},
                      {"-99999999999", true, std::numeric_limits<std::int32_t>::min(), 12},
                      {"", false, kUntouched, 0},
                      {"  ", false, kUntouched, 0},
                      {" abc", false, kUntouched, 0},
                      {"--1", false, kUntouched, 0},
                      {"- 1", false, kUntouched, 0},
                      {"\u0661", false, kUntouched, 0}};
  for (const Row& row : rows) {
    const auto scanner = NSScanner::scannerWithString(row.text);
    std::int32_t value = kUntouched;
    EXPECT_EQ(scanner->scanInt(&value), row.isRead) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
    EXPECT_EQ(scanner->scanLocation(), row.location) << row.text;
  }
}

TEST(NSScanner, ReadsOnWhereTheLastScanEnded) {
  const auto scanner = NSScanner::scannerWithString("1 -2x3");
  std::int32_t value = 0;
  EXPECT_TRUE(scanner->scanInt());
  EXPECT_TRUE(scanner->scanInt(&value));
  EXPECT_EQ(value, -2);
  EXPECT_FALSE(scanner->scanInt());
  EXPECT_TRUE(scanner->scanString("x"));
  EXPECT_TRUE(scanner->scanInt(&value));
  EXPECT_EQ(value, 3);
}

TEST(NSScanner, IsAtEndWhereOnlySkippedCharactersAreLeft) {
  const auto scanner = NSScanner::scannerWithString("1 \n");
  EXPECT_FALSE(scanner->isAtEnd());
  scanner->scanInt();
  EXPECT_TRUE(scanner->isAtEnd());
  scanner->setCharactersToBeSkipped(nullptr);
  EXPECT_FALSE(scanner->isAtEnd());
}

TEST(NSScanner, SkipsNothingWhenToldSo) {
  const auto scanner = NSScanner::scannerWithString(" 1");
  scanner->setCharactersToBeSkipped(nullptr);
  EXPECT_FALSE(scanner->scanInt());
  EXPECT_FALSE(scanner->scanString("1"));
  EXPECT_TRUE(scanner->scanString(" "));
  EXPECT_TRUE(scanner->scanInt());
}

TEST(NSScanner, MatchesLettersOfEitherCaseUnlessToldOtherwise) {
  EXPECT_TRUE(NSScanner::scannerWithString("KILO")->scanString("kilo"));
  EXPECT_TRUE(NSScanner::scannerWithString("ÄRGER")->scanString("ärger"));
  EXPECT_FALSE(NSScanner::scannerWithString("kil")->scanString("kilo"));
  EXPECT_FALSE(NSScanner::scannerWithString("kilo")->scanString(""));
  const auto strict = NSScanner::scannerWithString("KILO");
  strict->setCaseSensitive(true);
  EXPECT_FALSE(strict->scanString("kilo"));
  EXPECT_TRUE(strict->scanString("KI"));
}

TEST(NSScanner, MatchesBytesThatAreNoCharacterOnlyByThemselves) {
  EXPECT_TRUE(NSScanner::scannerWithString("\xFF")->scanString("\xFF"));
  EXPECT_FALSE(NSScanner::scannerWithString("\xFF")->scanString("\xFE"));
  EXPECT_FALSE(NSScanner::scannerWithString("\xFF")->scanString("\uFFFD"));
}

TEST(NSScanner, PassesOverEverythingUpToAText) {
  const auto scanner = NSScanner::scannerWithString(" name: value");
  std::string passed = "before";
  EXPECT_TRUE(scanner->scanUpToString(":", &passed));
  EXPECT_EQ(passed, "name");
  EXPECT_FALSE(scanner->scanUpToString(":", &passed));
  EXPECT_EQ(passed, "name");
  EXPECT_EQ(scanner->scanLocation(), 5U);
  EXPECT_TRUE(scanner->scanString(":"));
  EXPECT_TRUE(scanner->scanUpToString(":", &passed));
  EXPECT_EQ(passed, "value");
  EXPECT_TRUE(scanner->isAtEnd());
}

TEST(NSScanner, LooksForAnEmptyTextInVain) {
  std::string passed;
  EXPECT_TRUE(NSScanner::scannerWithString("rest")->scanUpToString("", &passed));
  EXPECT_EQ(passed, "rest");
}

TEST(NSScanner, ReadsBackWhatWasPrinted) {
  EXPECT_TRUE(rc::check([](std::int32_t number) {
    std::int32_t value = 0;
    const std::string text = " " + std::to_string(number) + "x";
    RC_ASSERT(NSScanner::scannerWithString(text)->scanInt(&value));
    RC_ASSERT(value == number);
  }));
}

TEST(NSScanner, ReadsWhatTheIntegerReadingReads) {
  EXPECT_TRUE(rc::check([] {
    const std::string text =
        *rc::gen::container<std::string>(rc::gen::element<char>('+', '-', ' ', '0', '1', '9', 'x'));
    std::int32_t value = 0;
    NSScanner::scannerWithString(text)->scanInt(&value);
    RC_ASSERT(value == intValueOfText(text));
  }));
}

TEST(NSScanner, IsAClassOfTheRuntime) {
  EXPECT_EQ(objc_getClass("NSScanner"), NSScanner::scannerWithString("")->isa());
}

}  // namespace
}  // namespace rvf
