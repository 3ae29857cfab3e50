// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdint>
#include <limits>
#include <string>

#include "Platform/Text/Utf8.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

constexpr std::size_t kMegabyte = 1 << 20;

TEST(Text, KnowsWellFormedUtf8) {
  for (const std::string& text :
       {""s, "a"s, "\0"s, "ü"s, "€"s, "😀"s, "\xED\x9F\xBF"s, "\xEE\x80\x80"s, "\xF4\x8F\xBF\xBF"s})
    EXPECT_TRUE(isValidUtf8(text)) << testing::PrintToString(text);
  for (const std::string& text :
       {"\x80"s, "\xC3"s, "\xC0\x80"s, "\xE2\x82"s, "\xE0\x80\x80"s, "\xED\xA0\x80"s,
        "\xF0\x80\x80\x80"s, "\xF4\x90\x80\x80"s, "\xF5\x80\x80\x80"s, "\xFF"s, "aü\xBC"s})
    EXPECT_FALSE(isValidUtf8(text)) << testing::PrintToString(text);
}

TEST(Text, LengthCountsUtf16CodeUnits) {
  struct Row {
    std::string text;
    std::size_t length;
  };
  const Row rows[] = {{"", 0},
                      {"abc", 3},
                      {"ü", 1},
                      {"€", 1},
                      {"😀", 2},
                      {"\0"s, 1},
                      {"\uFFFF", 1},
                      {"e\u0301", 2},
                      {"\xFF", 1},
                      {"\xE2\x82", 2},
                      {"\xED\xA0\x80", 3},
                      {"a\xF0\x9F\x98", 4},
                      {"\xC3\xBC\xBC", 2}};
  for (const Row& row : rows)
    EXPECT_EQ(utf16Length(row.text), row.length) << testing::PrintToString(row.text);
}

TEST(Text, ComparesByUtf16CodeUnit) {
  const std::vector<std::string> ascending = {
      "",  "\0"s, "A",      "A\0"s, "AB", "B",          "Z",      "a",      "aa",    "ü",
      "€", "€a",  "\uD7FF", "😀",    "😀a", "\U0010FFFF", "\uE000", "\uFF21", "\uFFFF"};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const int order = compareUtf16(ascending[i], ascending[j]);
      EXPECT_EQ(order < 0, i < j) << i << " " << j;
      EXPECT_EQ(order > 0, i > j) << i << " " << j;
    }
  }
}

TEST(Text, GeneratedTextsAreWellFormed) {
  EXPECT_TRUE(rc::check([] { RC_ASSERT(isValidUtf8(*anyText())); }));
}

TEST(Text, ReplacesBytesThatBelongToNoCharacter) {
  EXPECT_EQ(wellFormedUtf8(""), "");
  EXPECT_EQ(wellFormedUtf8("Käse \xF0\x9F\x98\x80"), "Käse \xF0\x9F\x98\x80");
  EXPECT_EQ(wellFormedUtf8("a\xC3"), "a\uFFFD");
  EXPECT_EQ(wellFormedUtf8("\xE4\xF6x"), "\uFFFD\uFFFDx");
  EXPECT_EQ(wellFormedUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
}

TEST(Text, ComparisonOfAnyBytesIsATotalOrder) {
  EXPECT_TRUE(rc::check([] {
    const std::string a = *anyBytes();
    const std::string b = *anyBytes();
    const std::string c = *anyBytes();
    RC_ASSERT((compareUtf16(a, b) == 0) == (a == b));
    RC_ASSERT((compareUtf16(a, b) < 0) == (compareUtf16(b, a) > 0));
    if (compareUtf16(a, b) < 0 && compareUtf16(b, c) < 0) RC_ASSERT(compareUtf16(a, c) < 0);
  }));
}

TEST(Text, ATruncatedCharacterDoesNotBreakTheOrder) {
  const std::string cut = "\xE2\x82";
  EXPECT_GT(compareUtf16(cut, "€"), 0);
  EXPECT_LT(compareUtf16("€", "\uD7FF"), 0);
  EXPECT_GT(compareUtf16(cut, "\uD7FF"), 0);
}

TEST(Text, SplitsAtEverySeparatorAndKeepsEmptyPieces) {
  EXPECT_THAT(splitText("", "?"), ElementsAre(""));
  EXPECT_THAT(splitText("?;1", "?"), ElementsAre("", ";1"));
  EXPECT_THAT(splitText("a^^b^", "^"), ElementsAre("a", "", "b", ""));
  EXPECT_THAT(splitText("aaaa", "aa"), ElementsAre("", "", ""));
  EXPECT_THAT(splitText("aaa", "aa"), ElementsAre("", "a"));
  EXPECT_THAT(splitText("1?", "?"), ElementsAre("1", ""));
  EXPECT_THAT(splitText("any text", ""), ElementsAre("any text"));
  EXPECT_THAT(splitText("", ""), ElementsAre(""));
  EXPECT_THAT(splitText("a\0b"s, "\0"s), ElementsAre("a", "b"));
  EXPECT_THAT(splitText("a\xFF"
                        "b",
                        "\xFF"),
              ElementsAre("a", "b"));
}

TEST(Text, LimitsOfALengthAreThoseOfTheCount) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    const auto shortest = *rc::gen::inRange<std::size_t>(0, 12);
    const auto longest = *rc::gen::inRange<std::size_t>(0, 12);
    const std::size_t length = utf16Length(text);
    const bool isBetween = length >= shortest && length <= longest;
    RC_ASSERT(isUtf16LengthBetween(text, shortest, longest) == isBetween);
    RC_ASSERT(isUtf16LengthBetween(text, shortest, std::string_view::npos) == (length >= shortest));
  }));
  EXPECT_TRUE(isUtf16LengthBetween("€€", 2, 2));
  EXPECT_FALSE(isUtf16LengthBetween("€", 2, 26));
  EXPECT_TRUE(isUtf16LengthBetween("😀", 2, 2));
  EXPECT_TRUE(isUtf16LengthBetween("", 0, 0));
}

TEST(Text, CutsAtUtf16Units) {
  struct Row {
    std::string text;
    std::size_t start;
    std::size_t length;
    std::string cut;
  };
  constexpr std::size_t kToTheEnd = std::string_view::npos;
  const Row rows[] = {{"1512", 0, 2, "15"},
                      {"1512", 2, 2, "12"},
                      {"1512", 3, 9, "2"},
                      {"1512", 4, 1, ""},
                      {"1512", 9, 1, ""},
                      {"1512", 1, kToTheEnd, "512"},
                      {"", 0, 3, ""},
                      {"aü€b", 1, 2, "ü€"},
                      {"a😀b", 1, 2, "😀"},
                      {"a😀b", 1, 1, ""},
                      {"a😀b", 2, 2, "b"},
                      {"a😀b", 2, 0, ""},
                      {"a😀b", 2, kToTheEnd, "b"},
                      {"a😀b", 0, 2, "a"},
                      {"\xFF\xE2\x82z", 1, 2, "\xE2\x82"},
                      {"0123456789abcdefü", 9, 8, "9abcdefü"}};
  for (const Row& row : rows) {
    EXPECT_EQ(substringUtf16(row.text, row.start, row.length), row.cut)
        << testing::PrintToString(row.text) << " " << row.start << " " << row.length;
  }
}

TEST(Text, CuttingInTwoLosesAtMostTheCharacterInBetween) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    const auto at = *rc::gen::inRange<std::size_t>(0, utf16Length(text) + 1);
    const std::string_view left = substringUtf16(text, 0, at);
    const std::string_view right = substringUtf16(text, at);
    RC_ASSERT(text.starts_with(left) && text.ends_with(right));
    const std::size_t lost = utf16Length(text) - utf16Length(left) - utf16Length(right);
    RC_ASSERT(lost == (utf16Length(left) == at ? 0U : 2U));
  }));
}

TEST(Text, PiecesOneByOneAreThoseOfTheSplit) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    std::vector<std::string_view> walked;
    TextPieces pieces(text, '?');
    while (const auto piece = pieces.next())
      walked.push_back(*piece);
    RC_ASSERT(walked == splitText(text, "?"));
    RC_ASSERT(!pieces.next());
  }));
}

TEST(Text, TrimsTheEndsOnly) {
  EXPECT_EQ(trimText(" \t\u00A0a b\u3000 ", &isWhiteSpace), "a b");
  EXPECT_EQ(trimText("\n a \r\n", &isWhiteSpace), "\n a \r\n");
  EXPECT_EQ(trimText("\n\u2028 a \r\n\u0085", &isWhiteSpaceOrNewline), "a");
  EXPECT_EQ(trimText(" \u200B ", &isWhiteSpace), "\u200B");
  EXPECT_EQ(trimText(" \n ", &isWhiteSpaceOrNewline), "");
  EXPECT_EQ(trimText("", &isWhiteSpaceOrNewline), "");
  EXPECT_EQ(trimText("\x80 \xA0", &isWhiteSpace), "\x80 \xA0");
}

TEST(Text, TrimmingFindsTheSameCharactersFromBothEnds) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    std::vector<std::size_t> forward;
    for (std::string_view rest = text; !rest.empty();) {
      forward.push_back(firstUtf8Unit(rest).length);
      rest.remove_prefix(forward.back());
    }
    std::vector<std::size_t> backward;
    for (std::string_view rest = text; !rest.empty();) {
      backward.insert(backward.begin(), lastUtf8Unit(rest).length);
      rest.remove_suffix(backward.front());
    }
    RC_ASSERT(forward == backward);
  }));
}

TEST(Text, KnowsTheDigitsOfEveryScript) {
  for (const char32_t digit : {U'0', U'9', U'\u0660', U'\u0967', U'\uFF11', U'\U0001D7CE'})
    EXPECT_TRUE(isDecimalDigit(digit)) << static_cast<unsigned>(digit);
  for (const char32_t other : {U'/', U':', U'a', U'\u00B2', U'\u2160', U'\uFFFD'})
    EXPECT_FALSE(isDecimalDigit(other)) << static_cast<unsigned>(other);
}

TEST(Text, ReadsIntegers) {
  struct Row {
    std::string text;
    std::int32_t value;
  };
  const Row rows[] = {{"12abc", 12},
                      {" +7", 7},
                      {"-01", -1},
                      {"", 0},
                      {"abc", 0},
                      {"--1", 0},
                      {"+ 1", 0},
                      {"\n\u00A0 3", 3},
                      {"99999999999", 2147483647},
                      {"-99999999999", -2147483647 - 1},
                      {"2147483647", 2147483647},
                      {"2147483648", 2147483647},
                      {"-2147483648", -2147483647 - 1},
                      {"00000000000000000000000000000012", 12},
                      {"0x1F", 0},
                      {"010", 10},
                      {"1.9", 1},
                      {"1e3", 1},
                      {"\u0661", 0},
                      {"inf", 0}};
  for (const Row& row : rows)
    EXPECT_EQ(intValueOfText(row.text), row.value) << testing::PrintToString(row.text);
}

TEST(Text, JoinsPieces) {
  EXPECT_EQ(joinText({}, "&"), "");
  EXPECT_EQ(joinText({"a"}, "&"), "a");
  EXPECT_EQ(joinText({"", "a", ""}, "&"), "&a&");
  EXPECT_EQ(joinText({"a", "b"}, ""), "ab");
}

TEST(Text, JoiningThePiecesGivesTheTextBack) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    const std::string separator = *rc::gen::element("A"s, "&"s, "aA"s, ""s);
    RC_ASSERT(joinText(splitText(text, separator), separator) == text);
  }));
}

TEST(Text, ReadsBooleans) {
  struct Row {
    std::string text;
    bool value;
  };
  const Row rows[] = {{"12abc", true},
                      {" +7", true},
                      {"-01", true},
                      {"", false},
                      {"abc", false},
                      {"--1", false},
                      {"yes", true},
                      {"True", true},
                      {"no", false},
                      {"0", false},
                      {"000", false},
                      {"off", false},
                      {"99999999999", true},
                      {"0x1F", false},
                      {"010", true},
                      {"1.9", true},
                      {"1,5", true},
                      {"1e3", true},
                      {"inf", false},
                      {"nan", false},
                      {"t", true},
                      {"Y", true},
                      {" \t\u00A0\u30001", true},
                      {"\n1", false},
                      {" \u2028yes", false},
                      {"\u200B1", false},
                      {"+", false},
                      {"+ 1", false},
                      {"-0", false},
                      {"\xFF"
                       "1",
                       false},
                      {"\0"
                       "1"s,
                       false},
                      {"١", false},
                      {"0.1", false}};
  for (const Row& row : rows)
    EXPECT_EQ(boolValueOfText(row.text), row.value) << testing::PrintToString(row.text);
}

TEST(Text, ReadsAMegabyte) {
  const std::string blanks(kMegabyte, ' ');
  EXPECT_FALSE(boolValueOfText(blanks + "0"));
  EXPECT_EQ(utf16Length(blanks), kMegabyte);
  EXPECT_EQ(splitText(blanks, " ").size(), kMegabyte + 1);
  EXPECT_LT(
      compareUtf16(std::string(kMegabyte, '\x80') + "a", std::string(kMegabyte, '\x80') + "b"), 0);
}

TEST(Text, StepsThroughAnyBytesWithoutLosingOne) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    std::string rest = text;
    std::size_t bytes = 0;
    while (!rest.empty()) {
      const Utf8Unit unit = firstUtf8Unit(rest);
      RC_ASSERT(unit.length >= 1 && unit.length <= rest.size());
      RC_ASSERT(unit.wellFormed || unit.length == 1);
      bytes += unit.length;
      rest.erase(0, unit.length);
    }
    RC_ASSERT(bytes == text.size());
  }));
}

TEST(Text, KnowsWhiteSpaceAndNewlines) {
  for (const unsigned blank :
       {0x09U, 0x20U, 0xA0U, 0x1680U, 0x2000U, 0x200AU, 0x202FU, 0x205FU, 0x3000U})
    EXPECT_TRUE(isWhiteSpace(blank) && !isNewline(blank)) << std::hex << blank;
  for (const unsigned newline : {0x0AU, 0x0BU, 0x0CU, 0x0DU, 0x85U, 0x2028U, 0x2029U})
    EXPECT_TRUE(isNewline(newline) && !isWhiteSpace(newline)) << std::hex << newline;
  for (const unsigned other : {0x08U, 0x0EU, 0x41U, 0x86U, 0x180EU, 0x1FFFU, 0x200BU, 0xFEFFU})
    EXPECT_FALSE(isWhiteSpaceOrNewline(other)) << std::hex << other;
}

TEST(Text, ReadsIntegersOf64BitsAndFractions) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr auto kGreatest = std::numeric_limits<std::int64_t>::max();
  const struct {
    std::string_view text;
    std::int64_t integer;
    double fraction;
  } rows[] = {
      {"12abc", 12, 12},
      {" \n+7", 7, 7},
      {"-01", -1, -1},
      {"", 0, 0},
      {"abc", 0, 0},
      {"--1", 0, 0},
      {"+-1", 0, 0},
      {"-", 0, 0},
      {"yes", 0, 0},
      {"99999999999", 99999999999, 99999999999.0},
      {"9223372036854775807", kGreatest, 9223372036854775807.0},
      {"99999999999999999999", kGreatest, 1e20},
      {"-99999999999999999999", -kGreatest - 1, -1e20},
      {"0x1F", 0, 0},
      {"010", 10, 10},
      {"1.9", 1, 1.9},
      {"1,5", 1, 1},
      {"1e3", 1, 1000},
      {"-1.5e-3x", -1, -0.0015},
      {".5", 0, 0.5},
      {"5.", 5, 5},
      {".", 0, 0},
      {"1e400", 1, kInfinity},
      {"-1e400", -1, -kInfinity},
      {"1e-400", 1, 0},
      {"inf", 0, 0},
      {"nan", 0, 0},
      {"-inf", 0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(integerValueOfText(row.text), row.integer) << row.text;
    EXPECT_EQ(doubleValueOfText(row.text), row.fraction) << row.text;
  }
  EXPECT_EQ(doubleValueOfText(std::string(400, '9')), kInfinity);
  EXPECT_EQ(doubleValueOfText("0." + std::string(400, '0') + "1"), 0);
}

}  // namespace
}  // namespace rvf
