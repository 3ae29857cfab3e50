// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Predicates/PredicateFormatException.h"
#include "tests/Platform/Predicates/Predicates.h"

namespace rvf {
namespace {

using namespace std::string_literals;

const NSComparisonPredicate& comparisonIn(const Ref<NSPredicate>& predicate) {
  return dynamic_cast<const NSComparisonPredicate&>(*predicate);
}

const NSCompoundPredicate& compoundIn(const Ref<NSPredicate>& predicate) {
  return dynamic_cast<const NSCompoundPredicate&>(*predicate);
}

/// The constant on the right of `a == …`.
id constant(std::string_view text) {
  return comparisonIn(predicate("a == " + std::string(text))).rightExpression()->constantValue();
}

struct Printed {
  std::string_view source;
  std::string_view format;
};

void expectPrinted(std::initializer_list<Printed> rows) {
  for (const Printed& row : rows)
    EXPECT_EQ(predicate(row.source)->predicateFormat(), row.format) << row.source;
}

TEST(PredicateParser, PrintsWhatItReads) {
  expectPrinted({
      {"name contains[cd] $S", "name CONTAINS[cd] $S"},
      {"a = 1 && (b = 'x' or c <> nil)", "a == 1 AND (b == \"x\" OR c != nil)"},
      {"not a == 1", "NOT a == 1"},
      {"n in {1, 2}", "n IN {1, 2}"},
      {"a == -0.0", "a == -0"},
      {"a == -0", "a == -0"},
      {"a IN {-0, 0}", "a IN {-0, 0}"},
  });
}

TEST(PredicateParser, ReadsEveryOperator) {
  expectPrinted({
      {"a = 1", "a == 1"},
      {"a == 1", "a == 1"},
      {"a != 1", "a != 1"},
      {"a <> 1", "a != 1"},
      {"a < 1", "a < 1"},
      {"a <= 1", "a <= 1"},
      {"a =< 1", "a <= 1"},
      {"a > 1", "a > 1"},
      {"a >= 1", "a >= 1"},
      {"a => 1", "a >= 1"},
      {"a beginswith 'x'", "a BEGINSWITH \"x\""},
      {"a EndsWith 'x'", "a ENDSWITH \"x\""},
      {"a CONTAINS 'x'", "a CONTAINS \"x\""},
      {"a Like 'x'", "a LIKE \"x\""},
      {"a mAtChEs 'x'", "a MATCHES \"x\""},
      {"a in b", "a IN b"},
      {"a between {1, 2}", "a BETWEEN {1, 2}"},
  });
}

TEST(PredicateParser, NumbersOperatorsOptionsAndModifiers) {
  const auto comparison = predicate("ANY a LIKE[cdnl] 'x'");
  EXPECT_EQ(comparisonIn(comparison).predicateOperatorType(), 7U);
  EXPECT_EQ(comparisonIn(comparison).options(), 15U);
  EXPECT_EQ(comparisonIn(comparison).comparisonPredicateModifier(), 2U);
  constexpr std::string_view kOperators[] = {
      "<", "<=", ">", ">=", "==", "!=", "MATCHES", "LIKE", "BEGINSWITH", "ENDSWITH", "IN"};
  unsigned number = 0;
  for (const std::string_view name : kOperators)
    EXPECT_EQ(comparisonIn(predicate("a " + std::string(name) + " b")).predicateOperatorType(),
              number++)
        << name;
  EXPECT_EQ(comparisonIn(predicate("a CONTAINS b")).predicateOperatorType(), 99U);
  EXPECT_EQ(comparisonIn(predicate("a BETWEEN b")).predicateOperatorType(), 100U);
}

TEST(PredicateParser, NumbersEachOption) {
  const std::pair<std::string_view, unsigned> rows[] = {{"c", 1}, {"d", 2}, {"n", 4}, {"l", 8}};
  for (const auto& [letter, number] : rows) {
    const auto comparison = predicate("a ==[" + std::string(letter) + "] b");
    EXPECT_EQ(comparisonIn(comparison).options(), number) << letter;
  }
  EXPECT_EQ(comparisonIn(predicate("a == b")).options(), 0U);
  EXPECT_EQ(NSCaseInsensitivePredicateOption, 1U);
  EXPECT_EQ(NSDiacriticInsensitivePredicateOption, 2U);
  EXPECT_EQ(NSNormalizedPredicateOption, 4U);
  EXPECT_EQ(NSLocaleSensitivePredicateOption, 8U);
}

TEST(PredicateParser, NumbersEachModifier) {
  const std::pair<std::string_view, unsigned> rows[] = {
      {"a == 1", 0}, {"ALL a == 1", 1}, {"ANY a == 1", 2}, {"SOME a == 1", 2}};
  for (const auto& [format, number] : rows)
    EXPECT_EQ(comparisonIn(predicate(format)).comparisonPredicateModifier(), number) << format;
}

TEST(PredicateParser, NumbersTheTypesOfExpressions) {
  const auto typeOf = [](std::string_view operand) {
    return static_cast<unsigned>(
        comparisonIn(predicate(std::string(operand) + " == 1")).leftExpression()->expressionType());
  };
  EXPECT_EQ(typeOf("'x'"), 0U);
  EXPECT_EQ(typeOf("SELF"), 1U);
  EXPECT_EQ(typeOf("$X"), 2U);
  EXPECT_EQ(typeOf("a.b"), 3U);
  EXPECT_EQ(typeOf("{a, 1}"), 14U);
  EXPECT_EQ(NSFunctionExpressionType, 4U);  // which no format makes
}

TEST(PredicateParser, NumbersTheTypesOfCompounds) {
  EXPECT_EQ(compoundIn(predicate("NOT a == 1")).compoundPredicateType(), 0U);
  EXPECT_EQ(compoundIn(predicate("a == 1 AND b == 1")).compoundPredicateType(), 1U);
  EXPECT_EQ(compoundIn(predicate("a == 1 OR b == 1")).compoundPredicateType(), 2U);
}

TEST(PredicateParser, ReadsOptionsInAnyOrderAndCase) {
  expectPrinted({
      {"a ==[c] 'x'", "a ==[c] \"x\""},
      {"a CONTAINS[DC] 'x'", "a CONTAINS[cd] \"x\""},
      {"a CONTAINS [c] 'x'", "a CONTAINS[c] \"x\""},
      {"a LIKE[ccc]'x'", "a LIKE[c] \"x\""},
      {"a LIKE[lndc] 'x'", "a LIKE[cdnl] \"x\""},
  });
}

TEST(PredicateParser, ReadsModifiers) {
  expectPrinted({
      {"all a == 1", "ALL a == 1"},
      {"any a == 1", "ANY a == 1"},
      {"some a == 1", "ANY a == 1"},
      {"none a == 1", "NOT ANY a == 1"},
  });
}

TEST(PredicateParser, NotBindsTighterThanAndAndTighterThanOr) {
  expectPrinted({
      {"NOT a == 1 AND b == 2", "NOT a == 1 AND b == 2"},
      {"NOT (a == 1 AND b == 2)", "NOT (a == 1 AND b == 2)"},
      {"a == 1 OR b == 2 AND c == 3", "a == 1 OR (b == 2 AND c == 3)"},
      {"a == 1 AND b == 2 OR c == 3", "(a == 1 AND b == 2) OR c == 3"},
      {"!a == 1 || !b == 2", "NOT a == 1 OR NOT b == 2"},
      {"NOT NOT a == 1", "NOT NOT a == 1"},
  });
  const auto both = predicate("NOT a == 1 AND b == 2");
  EXPECT_EQ(compoundIn(both).compoundPredicateType(), NSAndPredicateType);
}

TEST(PredicateParser, AChainOfOneConnectiveIsOneCompound) {
  const auto chain = predicate("a == 1 AND b == 2 && c == 3 and d == 4");
  EXPECT_EQ(compoundIn(chain).subpredicates()->count(), 4U);
  const auto alternatives = predicate("a == 1 OR b == 2 || c == 3");
  EXPECT_EQ(compoundIn(alternatives).subpredicates()->count(), 3U);
}

TEST(PredicateParser, ParenthesesKeepTheirCompound) {
  const auto nested = predicate("a == 1 AND (b == 2 AND c == 3)");
  EXPECT_EQ(compoundIn(nested).subpredicates()->count(), 2U);
  EXPECT_EQ(nested->predicateFormat(), "a == 1 AND (b == 2 AND c == 3)");
  EXPECT_EQ(predicate("(((a == 1)))")->predicateFormat(), "a == 1");
}

TEST(PredicateParser, ReadsConstantPredicates) {
  expectPrinted({
      {"TRUEPREDICATE", "TRUEPREDICATE"},
      {"falsePredicate", "FALSEPREDICATE"},
      {"NOT TRUEPREDICATE OR a == 1", "NOT TRUEPREDICATE OR a == 1"},
  });
}

TEST(PredicateParser, ReadsTextsWithEscapes) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {R"("plain")", "plain"},
      {R"('plain')", "plain"},
      {R"("it's")", "it's"},
      {R"('say "x"')", "say \"x\""},
      {R"("\"")", "\""},
      {R"('\'')", "'"},
      {R"("a\\b")", "a\\b"},
      {R"("a\nb\tc\rd")", "a\nb\tc\rd"},
      {R"('')", ""},
      {R"("50\%\_off\*")", R"(50\%\_off\*)"},
      {R"("\d+")", R"(\d+)"},
      {"'ünïcode 😀'", "ünïcode 😀"},
      {"'two\nlines'", "two\nlines"},
  };
  for (const auto& [source, text] : rows)
    EXPECT_EQ(unboxText(constant(source)), text) << source;
  EXPECT_EQ(unboxText(constant("'a\0b'"s)), "a\0b"s);
}

TEST(PredicateParser, VariablesAndConversionsInQuotesArePlainText) {
  EXPECT_EQ(unboxText(constant("'$X'")), "$X");
  EXPECT_EQ(unboxText(constant("\"%@ %K %d\"")), "%@ %K %d");
}

TEST(PredicateParser, ReadsNumbers) {
  const std::pair<std::string_view, Ref<NSNumber>> rows[] = {
      {"12", box(12)},
      {"-12", box(-12)},
      {"+7", box(7)},
      {"0", box(0)},
      {"1.5", box(1.5)},
      {"-1.5e3", box(-1500)},
      {"1E+2", box(100)},
      {".5", box(0.5)},
      {"2.", box(2)},
      {"1e-2", box(0.01)},
      {"9223372036854775807", box(std::numeric_limits<std::int64_t>::max())},
      {"-9223372036854775808", box(std::numeric_limits<std::int64_t>::min())},
      {"18446744073709551615", box(std::numeric_limits<std::uint64_t>::max())},
      {"18446744073709551616", box(18446744073709551616.0)},
  };
  for (const auto& [source, number] : rows)
    EXPECT_TRUE(objectsAreEqual(constant(source), number)) << source;
}

TEST(PredicateParser, TheSignOfZeroStays) {
  for (const std::string_view text : {"-0", "-0.0", "-00", "-0e5"})
    EXPECT_TRUE(std::signbit(dynamic_cast<const NSNumber&>(*constant(text)).doubleValue())) << text;
  for (const std::string_view text : {"0", "+0", "0.0"})
    EXPECT_FALSE(std::signbit(dynamic_cast<const NSNumber&>(*constant(text)).doubleValue()))
        << text;
  EXPECT_TRUE(predicate("0 == -0")->evaluateWithObject(nullptr));
}

TEST(PredicateParser, ReadsTheWordsForValues) {
  for (const std::string_view word : {"TRUE", "YES", "true", "Yes"})
    EXPECT_TRUE(objectsAreEqual(constant(word), box(true))) << word;
  for (const std::string_view word : {"FALSE", "NO", "false", "no"})
    EXPECT_TRUE(objectsAreEqual(constant(word), box(false))) << word;
  for (const std::string_view word : {"NIL", "NULL", "nil", "null"})
    EXPECT_EQ(constant(word), nullptr) << word;
  EXPECT_EQ(predicate("self == 1")->predicateFormat(), "SELF == 1");
}

TEST(PredicateParser, ReadsKeyPaths) {
  expectPrinted({
      {"a.b.c == d.e", "a.b.c == d.e"},
      {"_x9 == 1", "_x9 == 1"},
      {"größe == 1", "größe == 1"},
      {"a.in == 1", "a.in == 1"},
      {"SELF.name == 1", "name == 1"},
      {"inside == 1", "inside == 1"},
      {"self.IN == SELF.1", "SELF.IN == SELF.1"},
      {"SELF.self.a == SELF.self", "SELF.self.a == SELF.self"},
  });
}

TEST(PredicateParser, ReadsBracesOfAnyOperands) {
  expectPrinted({
      {"a IN {}", "a IN {}"},
      {"a IN {1,'x',nil,b.c,$V,{2}}", "a IN {1, \"x\", nil, b.c, $V, {2}}"},
  });
}

TEST(PredicateParser, NeedsNoBlanksAndTakesAnyWhiteSpace) {
  expectPrinted({
      {"a==1&&b!='x'||!(c<-2)", "(a == 1 AND b != \"x\") OR NOT c < -2"},
      {"\t a\r\n== \u00A01\u2028", "a == 1"},
      {"a=-1", "a == -1"},
  });
}

TEST(PredicateParser, FillsValuesIn) {
  EXPECT_EQ(predicate("a == %@", "it's")->predicateFormat(), "a == \"it's\"");
  EXPECT_EQ(predicate("a == %@", box("x"))->predicateFormat(), "a == \"x\"");
  EXPECT_EQ(predicate("a == %@ AND b == %@", box(1.5), nullptr)->predicateFormat(),
            "a == 1.5 AND b == nil");
  EXPECT_EQ(predicate("a == %d AND b > %ld AND c == %u", -1, 2L, 3U)->predicateFormat(),
            "a == -1 AND b > 2 AND c == 3");
  EXPECT_EQ(predicate("a < %f", 0.25)->predicateFormat(), "a < 0.25");
  EXPECT_EQ(predicate("a == %s", "t")->predicateFormat(), "a == \"t\"");
  EXPECT_EQ(predicate("a IN %@", NSArray::arrayWithObjects({box(1), box("x")}))->predicateFormat(),
            "a IN {1, \"x\"}");
}

TEST(PredicateParser, AnArgumentIsNeverReadAsFormat) {
  const auto injected = predicate("name == %@", "x' OR 'a' == 'a");
  EXPECT_FALSE(injected->evaluateWithObject(record({{"name", box("x")}})));
}

TEST(PredicateParser, FillsKeyPathsIn) {
  EXPECT_EQ(predicate("%K == %@", "a.b", 1)->predicateFormat(), "a.b == 1");
  EXPECT_EQ(predicate("%K == 1", box("in"))->predicateFormat(), "SELF.in == 1");
  EXPECT_EQ(comparisonIn(predicate("%K == 1", "true")).leftExpression()->expressionType(),
            NSKeyPathExpressionType);
}

TEST(PredicateParser, TakesArgumentsFromAnArray) {
  const auto arguments = NSArray::arrayWithObjects({box("name"), box("x"), box(3)});
  EXPECT_EQ(NSPredicate::predicateWithFormatArgumentArray("%K == %@ AND n == %d", arguments)
                ->predicateFormat(),
            "name == \"x\" AND n == 3");
  EXPECT_EQ(NSPredicate::predicateWithFormatArgumentArray("a == 1", nullptr)->predicateFormat(),
            "a == 1");
}

struct Refused {
  std::string_view format;
  std::size_t position;
};

TEST(PredicateParser, RefusesEverythingElse) {
  const Refused rows[] = {
      {"", 0},
      {"   ", 3},
      {"a", 1},
      {"a ==", 4},
      {"== 1", 0},
      {"a == 1 AND", 10},
      {"a == 1 b", 7},
      {"(a == 1", 7},
      {"a == 1)", 6},
      {"a 1", 2},
      {"a == 'x", 5},
      {"a == \"x\\\"", 5},
      {"a == 1 2", 7},
      {"a == {1, 2", 10},
      {"a == {1,}", 8},
      {"a == {,1}", 6},
      {"a ==[x] 1", 5},
      {"a ==[] 1", 5},
      {"a ==[c 1", 6},
      {"a == 12abc", 7},
      {"a == $", 6},
      {"a. == 1", 2},
      {".a == 1", 0},
      {"a + 1 == 2", 2},
      {"a == 1e999", 5},
      {"NOT", 3},
      {"a == AND", 5},
      {"in == 1", 0},
      {"a & b == 1", 2},
      {"TRUE", 4},
      {"a == 1 &", 7},
      {"ANY (a == 1)", 4},
      {"NONE ALL a == 1", 5},
      {"a SOUNDSLIKE 'x'", 2},
      {"a == 1 AND OR b == 1", 11},
      {"@count == 1", 0},
      {"#in == 1", 0},
      {"a[0] == 1", 1},
      {"\xFF == 1", 0},
      {"é == 1 ü", 7},
      {"(a) == 1", 2},
      {"a == 0x1F", 6},
      {"a == (1)", 5},
      {"TRUEPREDICATE == 1", 14},
      {"a == '\\", 5},
  };
  for (const Refused& row : rows) {
    try {
      predicate(row.format);
      ADD_FAILURE() << row.format;
    } catch (const PredicateFormatException& exception) {
      EXPECT_EQ(exception.name(), NSInvalidArgumentException) << row.format;
      EXPECT_EQ(exception.reason(),
                "Unable to parse the format string \"" + std::string(row.format) + "\"");
      EXPECT_EQ(exception.position(), row.position) << row.format;
      EXPECT_FALSE(exception.problem().empty()) << row.format;
    }
  }
}

TEST(PredicateParser, ReadsZeroBytesAsNothingItKnows) {
  EXPECT_THROW(predicate("a == 1\0"s), PredicateFormatException);
  EXPECT_THROW(predicate("\0"s), PredicateFormatException);
}

TEST(PredicateParser, RefusesArgumentsThatDoNotFit) {
  EXPECT_THROW(predicate("a == %@"), PredicateFormatException);
  EXPECT_THROW(predicate("a == %d", "text"), PredicateFormatException);
  EXPECT_THROW(predicate("a == %d", 1.5), PredicateFormatException);
  EXPECT_THROW(predicate("a == %f", "text"), PredicateFormatException);
  EXPECT_THROW(predicate("a == %s", 1), PredicateFormatException);
  EXPECT_THROW(predicate("%K == 1", 1), PredicateFormatException);
  EXPECT_THROW(predicate("%K == 1", ""), PredicateFormatException);
  EXPECT_THROW(predicate("%K == 1", nullptr), PredicateFormatException);
  EXPECT_THROW(predicate("a == %n", 1), PredicateFormatException);
  EXPECT_THROW(predicate("a == %", 1), PredicateFormatException);
  EXPECT_THROW(predicate("a == %l", 1), PredicateFormatException);
  EXPECT_THROW(predicate("a == %%", 1), PredicateFormatException);
  EXPECT_THROW(predicate("a == %@", static_cast<const void*>("x")), PredicateFormatException);
  EXPECT_NO_THROW(predicate("a == %@", 1, 2, "three"));
}

std::string repeated(std::string_view part, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i)
    text += part;
  return text;
}

/// What is wrong with a format, or "nothing".
std::string problemOf(const std::string& format) {
  try {
    predicate(format);
  } catch (const PredicateFormatException& exception) {
    return exception.problem();
  }
  return "nothing";
}

TEST(PredicateParser, NestsUpTo250Deep) {
  EXPECT_EQ(problemOf(repeated("(", 250) + "a == 1" + repeated(")", 250)), "nothing");
  EXPECT_EQ(problemOf(repeated("NOT ", 250) + "a == 1"), "nothing");
  EXPECT_EQ(problemOf("a IN " + repeated("{", 250) + repeated("}", 250)), "nothing");
  EXPECT_EQ(problemOf(repeated("a == 1 OR b == 1 AND NOT (", 125) + "a == 1" + repeated(")", 125)),
            "nothing");
}

TEST(PredicateParser, WhatALevelMakesStaysFarFromTheDeepestPredicate) {
  const auto deepest = predicate(repeated("a == 1 OR a == 1 AND (", 250) +
                                 "a == 1 OR a == 1 AND NONE a == 1" + repeated(")", 250));
  EXPECT_EQ(deepest->depth(), 2 * 251U + 3);
  EXPECT_LT(deepest->depth(), 1000U);
}

TEST(PredicateParser, RefusesToNestDeeper) {
  constexpr std::string_view kTooDeep = "the predicate nests deeper than 250 levels";
  EXPECT_EQ(problemOf(repeated("(", 251) + "a == 1" + repeated(")", 251)), kTooDeep);
  EXPECT_EQ(problemOf(repeated("(", 100'000) + "a == 1" + repeated(")", 100'000)), kTooDeep);
  EXPECT_EQ(problemOf(repeated("(", 100'000)), kTooDeep);
  EXPECT_EQ(problemOf(repeated("NOT ", 100'000) + "a == 1"), kTooDeep);
  EXPECT_EQ(problemOf(repeated("!", 100'000) + "a == 1"), kTooDeep);
  EXPECT_EQ(problemOf("a IN " + repeated("{", 100'000)), kTooDeep);
}

TEST(PredicateParser, ReadsLongChains) {
  const auto chain = predicate("a == 1" + repeated(" OR a == 1", 99'999));
  EXPECT_EQ(compoundIn(chain).subpredicates()->count(), 100'000U);
}

}  // namespace
}  // namespace rvf
