// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "tests/Platform/Predicates/Predicates.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

/// Whether LEFT OPERATION RIGHT holds, with the right side known beforehand and read from the
/// object; both ways must agree.
bool holds(std::string_view left, const std::string& operation, std::string_view right) {
  const auto texts = record({{"left", box(left)}, {"right", box(right)}});
  const bool result = predicate("left " + operation + " %@", right)->evaluateWithObject(texts);
  EXPECT_EQ(predicate("left " + operation + " right")->evaluateWithObject(texts), result)
      << left << " " << operation << " " << right;
  return result;
}

struct Row {
  std::string_view left;
  std::string operation;
  std::string_view right;
  bool holds;
};

void expectRows(std::initializer_list<Row> rows) {
  for (const Row& row : rows)
    EXPECT_EQ(holds(row.left, row.operation, row.right), row.holds)
        << row.left << " " << row.operation << " " << row.right;
}

TEST(TextComparison, OptionsSayWhatIsOverlooked) {
  expectRows({
      {"Café", "==", "cafe", false},
      {"Café", "==[c]", "cafe", false},
      {"Café", "==[cd]", "cafe", true},
      {"Café", "==[d]", "Cafe", true},
      {"Café", "==[d]", "cafe", false},
      {"CAFÉ", "==[c]", "café", true},
      {"x", "!=[c]", "X", false},
      {"x", "!=", "X", true},
  });
}

TEST(TextComparison, CaseGoesByFullFolding) {
  expectRows({
      {"Straße", "CONTAINS[c]", "STRASSE", true},
      {"STRASSE", "==[c]", "straße", true},
      {"Straße", "ENDSWITH[c]", "SE", true},
      {"ﬁn", "BEGINSWITH[c]", "FI", true},
      {"ΣΊΣΥΦΟΣ", "==[c]", "σίσυφος", true},
      {"I", "==[c]", "ı", false},
      {"İ", "==[cd]", "i", true},
      {"𐐀", "==[c]", "𐐨", true},
  });
}

TEST(TextComparison, DiacriticsAreNonSpacingMarks) {
  expectRows({
      {"ø", "==[cd]", "o", false},
      {"ł", "==[cd]", "l", false},
      {"ç", "==[d]", "c", true},
      {"Ǆ", "==[d]", "D", false},
      {"e\u0301", "==[d]", "é", true},
      {"e\u0301", "==", "é", false},
      {"e\u0301", "==[c]", "é", false},
      {"ế", "==[d]", "e", true},
      {"한", "==[d]", "한", true},
      {"ά", "==[cd]", "Α", true},
      {"ᾳ", "==[cd]", "α", true},
      {"\u0301", "==[d]", "", true},
  });
}

TEST(TextComparison, NormalizedTextsAreComparedAsTheyAre) {
  expectRows({{"Café", "==[cdn]", "cafe", false}, {"cafe", "CONTAINS[cn]", "af", true}});
}

TEST(TextComparison, LocaleSensitivityChangesNothing) {
  expectRows({{"I", "==[cl]", "i", true}, {"b", ">[l]", "Z", true}});
}

TEST(TextComparison, TheEmptyTextIsContainedInEveryText) {
  expectRows({
      {"a", "CONTAINS", "", true},
      {"a", "CONTAINS[cd]", "", true},
      {"", "CONTAINS[cd]", "", true},
      {"", "CONTAINS", "a", false},
      {"a", "BEGINSWITH", "", true},
      {"a", "ENDSWITH[c]", "", true},
  });
}

TEST(TextComparison, LooksAtStartsEndsAndParts) {
  expectRows({
      {"Red shoe", "BEGINSWITH", "Red", true},
      {"Red shoe", "BEGINSWITH", "red", false},
      {"Red shoe", "BEGINSWITH[c]", "rED", true},
      {"Red shoe", "ENDSWITH", "shoe", true},
      {"Red shoe", "ENDSWITH", "Shoe", false},
      {"Red shoe", "CONTAINS", "d s", true},
      {"Red shoe", "CONTAINS", "shoes", false},
      {"shoe", "CONTAINS", "Red shoe", false},
  });
}

TEST(TextComparison, LikeTakesWildcards) {
  expectRows({
      {"abc", "LIKE", "a?c", true},
      {"abc", "LIKE", "a*", true},
      {"abc", "LIKE", "abc", true},
      {"abc", "LIKE", "ab", false},
      {"abc", "LIKE", "bc", false},
      {"abc", "LIKE", "*", true},
      {"", "LIKE", "*", true},
      {"", "LIKE", "", true},
      {"", "LIKE", "?", false},
      {"abc", "LIKE", "", false},
      {"abc", "LIKE", "???", true},
      {"abc", "LIKE", "????", false},
      {"abc", "LIKE", "*b*", true},
      {"abcabc", "LIKE", "*abc", true},
      {"aXbXc", "LIKE", "a*X?", true},
      {"ab\nc", "LIKE", "a*c", true},
      {"ABC", "LIKE", "a?c", false},
      {"ABC", "LIKE[c]", "a?c", true},
      {"a.c", "LIKE", "a.c", true},
      {"abc", "LIKE", "a.c", false},
      {"[a]", "LIKE", "[a]", true},
      {"50%", "LIKE", "50%", true},
      {"50 cents", "LIKE", "50%", false},
  });
}

TEST(TextComparison, ABackslashMakesAWildcardLiteral) {
  expectRows({
      {"50%_off*", "LIKE", R"(50\%\_off\*)", true},
      {"50%_off!", "LIKE", R"(50\%\_off\*)", false},
      {"a?", "LIKE", R"(a\?)", true},
      {"ab", "LIKE", R"(a\?)", false},
      {R"(a\b)", "LIKE", R"(a\\b)", true},
      {R"(a\)", "LIKE", R"(a\)", true},
      {"É*", "LIKE[cd]", R"(\e\*)", true},
  });
  EXPECT_TRUE(predicate(R"("50%_off*" LIKE "50\%\_off\*")")->evaluateWithObject(nullptr));
  EXPECT_FALSE(predicate(R"("50%_off!" LIKE "50\%\_off\*")")->evaluateWithObject(nullptr));
}

TEST(TextComparison, AQuestionMarkTakesOneCharacter) {
  expectRows({
      {"Straße", "LIKE[c]", "STRA?E", true},
      {"Straße", "LIKE[c]", "STRASSE", true},
      {"Strasse", "LIKE[c]", "stra?e", false},
      {"Straße", "LIKE[c]", "stras*", true},
      {"😀", "LIKE", "?", true},
      {"Cafe\u0301", "LIKE[d]", "Caf?", true},
      {"Cafe\u0301", "LIKE", "Caf?", false},
      {"Café", "LIKE[cd]", "*AFE", true},
      {"\xFF", "LIKE", "?", true},
      {"\xFF", "LIKE", "\uFFFD", false},
      {"\xFF", "LIKE", "\xFE", false},
  });
}

TEST(TextComparison, LikeIsFastForManyWildcards) {
  const std::string text(20'000, 'a');
  std::string pattern;
  for (int i = 0; i < 200; ++i)
    pattern += "*a";
  EXPECT_FALSE(holds(text, "LIKE", pattern + "b"));
  EXPECT_TRUE(holds(text, "LIKE", pattern));
}

TEST(TextComparison, MatchesTakesTheWholeText) {
  expectRows({
      {"abc", "MATCHES", "b", false},
      {"abc", "MATCHES", "a.c", true},
      {"abc", "MATCHES", ".*", true},
      {"abc", "MATCHES", "ab|abc", true},
      {"4711", "MATCHES", R"(\d{4})", true},
      {"47110", "MATCHES", R"(\d{4})", false},
      {"ABC", "MATCHES", "abc", false},
      {"ABC", "MATCHES[c]", "abc", true},
      {"a b", "MATCHES[c]", R"(A\Sb)", false},
      {"Café", "MATCHES[d]", "Cafe", true},
      {"Cafe", "MATCHES[cd]", "CAFÉ", true},
      {"Ж1", "MATCHES", R"(\p{L}\p{Nd})", true},
      {"", "MATCHES", "", true},
      {"Straße", "MATCHES[c]", "STRASSE", true},
      {"STRASSE", "MATCHES[c]", "Straße", true},
      {"Straße", "MATCHES", "STRASSE", false},
      {"\xFF", "MATCHES", ".", true},
      {"a\xFF", "MATCHES[cd]", "A.", true},
      {"a\xFF", "MATCHES", "a", false},
  });
}

TEST(TextComparison, RefusesAMalformedExpression) {
  const auto malformed = predicate("SELF MATCHES '('");
  for (int attempt = 0; attempt < 2; ++attempt)
    EXPECT_EQ(raised([&] { malformed->evaluateWithObject(box("x")); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([] { predicate("'x' MATCHES SELF")->evaluateWithObject(box("[")); }),
            NSInvalidArgumentException);
}

TEST(TextComparison, BytesThatAreNoCharacterStay) {
  expectRows({
      {"a\xFF"
       "B",
       "==[cd]",
       "A\xFF"
       "b",
       true},
      {"a\xFF", "==[cd]", "a\xFE", false},
      {"x\xC3", "ENDSWITH[c]", "\xC3", true},
      {"\xFFÉ", "CONTAINS[cd]", "e", true},
  });
}

TEST(TextComparison, LongTextsFoldLikeShortOnes) {
  const std::string filling(500, 'X');
  expectRows({
      {filling + "RED", "ENDSWITH[cd]", "red", true},
      {filling + "É", "ENDSWITH[cd]", "e", true},
      {"漢" + filling + "é", "ENDSWITH[cd]", "xE", true},
      {filling + "\xFF", "BEGINSWITH[c]", "xxx", true},
  });
}

/// Text of letters that change when folded.
rc::Gen<std::string> letters() {
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
                          "a", "A", "é", "É", "ß", "ss", "SS", "ø", "\u0301", "İ", "ﬁ", "漢", "Σ",
                          "ς", "\xFF", "ế", "Z", "\u0345", "ΐ", "𐐀", "가")),
                      [](const std::vector<std::string>& pieces) {
                        std::string text;
                        for (const std::string& piece : pieces)
                          text += piece;
                        return text;
                      });
}

TEST(TextComparison, AFoldedTextFoldsLikeItself) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::oneOf(letters(), anyText(), anyBytes());
    for (const std::string options : {"[c]", "[d]", "[cd]"}) {
      RC_ASSERT(holds(text, "==" + options, text));
      RC_ASSERT(holds(text, "CONTAINS" + options, text));
    }
  }));
}

TEST(TextComparison, WhatIsEqualBeginsEndsAndContainsAndIsInNoOrder) {
  EXPECT_TRUE(rc::check([] {
    const std::string left = *letters();
    const std::string right = *letters();
    for (const std::string options : {"", "[c]", "[d]", "[cd]"}) {
      const bool isEqual = holds(left, "==" + options, right);
      RC_ASSERT(isEqual != holds(left, "!=" + options, right));
      RC_ASSERT(isEqual ==
                (holds(left, "<=" + options, right) && holds(left, ">=" + options, right)));
      RC_ASSERT(isEqual == (holds(left, "BEGINSWITH" + options, right) &&
                            holds(right, "ENDSWITH" + options, left)));
    }
  }));
}

/// What LIKE means, word for word, for texts without folding.
bool isLike(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == '*')
    return isLike(text, pattern.substr(1)) || (!text.empty() && isLike(text.substr(1), pattern));
  return !text.empty() && (pattern.front() == '?' || pattern.front() == text.front()) &&
         isLike(text.substr(1), pattern.substr(1));
}

TEST(TextComparison, LikeAgreesWithItsMeaning) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::container<std::string>(rc::gen::element('a', 'b'));
    const std::string pattern =
        (*rc::gen::container<std::string>(rc::gen::element('a', 'b', '?', '*'))).substr(0, 10);
    RC_ASSERT(holds(text.substr(0, 12), "LIKE", pattern) == isLike(text.substr(0, 12), pattern));
  }));
}

}  // namespace
}  // namespace rvf
