// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSPredicate-RVFExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

Ref<NSPredicate> predicate(std::string_view format) {
  return NSPredicate::predicateWithFormat(format);
}

Ref<NSDictionary> values(NSDictionary::TextEntries entries) {
  return NSDictionary::dictionaryWithEntries(entries);
}

/// The text of the rewritten predicate, or "absent".
std::string rewritten(std::string_view format, NSDictionary::TextEntries entries) {
  const auto result =
      RVF_predicateWithMultiWordSubstitutionVariables(predicate(format), values(entries));
  return result ? result->predicateFormat() : "absent";
}

template <class Call>
std::string raised(const Call& call) {
  try {
    call();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "none";
}

TEST(MultiWordSubstitution, SeveralWordsBecomeAnAndInTheirOrder) {
  EXPECT_EQ(rewritten("name CONTAINS[cd] $S", {{"S", box("red shoe")}}),
            "name CONTAINS[cd] \"red\" AND name CONTAINS[cd] \"shoe\"");
}

TEST(MultiWordSubstitution, OneWordBecomesASingleComparison) {
  const auto result = RVF_predicateWithMultiWordSubstitutionVariables(
      predicate("name CONTAINS[cd] $S"), values({{"S", box(" red ")}}));
  EXPECT_EQ(result->predicateFormat(), "name CONTAINS[cd] \"red\"");
  EXPECT_EQ(std::dynamic_pointer_cast<NSCompoundPredicate>(result), nullptr);
}

TEST(MultiWordSubstitution, TwoBlanksGiveAnEmptyWord) {
  EXPECT_EQ(rewritten("name CONTAINS $S", {{"S", box("red  shoe")}}),
            "name CONTAINS \"red\" AND name CONTAINS \"\" AND name CONTAINS \"shoe\"");
  EXPECT_EQ(rewritten("name CONTAINS $S", {{"S", box("  ")}}), "name CONTAINS \"\"");
}

TEST(MultiWordSubstitution, AnExtraBlankHidesNothing) {
  const auto search = RVF_predicateWithMultiWordSubstitutionVariables(
      predicate("name CONTAINS[cd] $S"), values({{"S", box("red  shoe")}}));
  EXPECT_TRUE(search->evaluateWithObject(values({{"name", box("Shoes, RÉD")}})));
  EXPECT_FALSE(search->evaluateWithObject(values({{"name", box("Shoes, green")}})));
}

TEST(MultiWordSubstitution, ACompoundIsRewrittenPartByPart) {
  EXPECT_EQ(rewritten("name CONTAINS $S OR code == $S", {{"S", box("a b")}}),
            "(name CONTAINS \"a\" AND name CONTAINS \"b\") OR (code == \"a\" AND code == \"b\")");
  EXPECT_EQ(rewritten("NOT name CONTAINS $S", {{"S", box("a b")}}),
            "NOT (name CONTAINS \"a\" AND name CONTAINS \"b\")");
  EXPECT_EQ(rewritten("a == $S AND NOT (b == $S OR c == 1)", {{"S", box("x y")}}),
            "(a == \"x\" AND a == \"y\") AND NOT ((b == \"x\" AND b == \"y\") OR c == 1)");
}

TEST(MultiWordSubstitution, WithoutSeveralWordsACompoundIsSubstitutedPlainly) {
  EXPECT_EQ(rewritten("name CONTAINS $S OR code == $S", {{"S", box("a")}}),
            "name CONTAINS \"a\" OR code == \"a\"");
  // Plainly, so the text is not even trimmed, and other kinds are no obstacle.
  EXPECT_EQ(rewritten("name CONTAINS $S OR code == $S", {{"S", box(" a ")}}),
            "name CONTAINS \" a \" OR code == \" a \"");
  EXPECT_EQ(rewritten("name CONTAINS $S AND TRUEPREDICATE", {{"S", box("a")}}),
            "name CONTAINS \"a\" AND TRUEPREDICATE");
  EXPECT_EQ(rewritten("{$S} CONTAINS a AND b == 1", {{"S", box("x")}}),
            "{\"x\"} CONTAINS a AND b == 1");
}

TEST(MultiWordSubstitution, AnyTextOfTheDictionaryDecides) {
  EXPECT_EQ(rewritten("a == $S AND b == 1", {{"S", box(" x ")}, {"UNUSED", box("two words")}}),
            "a == \"x\" AND b == 1");
}

TEST(MultiWordSubstitution, APlainSubstitutionOfNothingIsTheCompoundItself) {
  const auto compound = predicate("a == $S AND b == 1");
  EXPECT_EQ(RVF_predicateWithMultiWordSubstitutionVariables(compound, values({})), compound);
}

TEST(MultiWordSubstitution, TheOnlyVariableMayBeOnTheLeft) {
  EXPECT_EQ(rewritten("$S IN tags", {{"S", box("red shoe")}}),
            "\"red\" IN tags AND \"shoe\" IN tags");
  EXPECT_EQ(rewritten("$S IN tags", {{"S", box("red")}}), "\"red\" IN tags");
}

TEST(MultiWordSubstitution, VariablesOnBothSidesAreFilledRightThenLeft) {
  EXPECT_EQ(rewritten("$L == $R", {{"L", box("l")}, {"R", box("r")}}), "\"l\" == \"r\"");
  EXPECT_EQ(rewritten("$L == $R", {{"L", box("l")}, {"R", box("r1 r2")}}),
            "\"l\" == \"r1\" AND \"l\" == \"r2\"");
  EXPECT_EQ(rewritten("$L == $R", {{"L", box("l1 l2")}, {"R", box("r")}}),
            "\"l1\" == \"r\" AND \"l2\" == \"r\"");
  EXPECT_EQ(rewritten("$L == $R", {{"L", box("l1 l2")}, {"R", box("r1 r2")}}),
            "(\"l1\" == \"r1\" AND \"l2\" == \"r1\") AND (\"l1\" == \"r2\" AND \"l2\" == \"r2\")");
  EXPECT_EQ(rewritten("$S == $S", {{"S", box("a")}}), "\"a\" == \"a\"");
  // A word replaces the name wherever it stands.
  EXPECT_EQ(rewritten("$S == $S", {{"S", box("a b")}}), "\"a\" == \"a\" AND \"b\" == \"b\"");
}

TEST(MultiWordSubstitution, OnlyTheLeftVariableOfBothMayLackItsText) {
  EXPECT_EQ(rewritten("$L == $R", {{"R", box("r")}}), "$L == \"r\"");
}

TEST(MultiWordSubstitution, NeverReturnsForBothSidesWithoutATextForTheRightOne) {
  const auto bothSides = predicate("$L == $R");
  const auto leftOnly = values({{"L", box("l")}});
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const itimerval patience{{0, 0}, {0, 100'000}};  // µs of its own CPU time
    if (setitimer(ITIMER_VIRTUAL, &patience, nullptr) != 0 || write(ends[1], "x", 1) != 1) _exit(2);
    RVF_predicateWithMultiWordSubstitutionVariables(bothSides, leftOnly);
    _exit(0);
  }
  close(ends[1]);
  char called = 0;
  EXPECT_EQ(read(ends[0], &called, 1), 1);
  close(ends[0]);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGVTALRM) << status;
}

TEST(MultiWordSubstitution, AComparisonWithoutVariablesOrTextsIsItself) {
  for (const std::string_view format : {"a == 1", "a == $S", "$S == a", "{$S} CONTAINS a"}) {
    const auto comparison = predicate(format);
    EXPECT_EQ(RVF_predicateWithMultiWordSubstitutionVariables(comparison,
                                                              values({{"OTHER", box("x y")}})),
              comparison)
        << format;
    EXPECT_EQ(RVF_predicateWithMultiWordSubstitutionVariables(comparison, nullptr), comparison)
        << format;
  }
}

TEST(MultiWordSubstitution, ComparisonsInARewrittenCompoundMayStayThemselves) {
  const auto compound = predicate("a == 1 AND b == $S");
  const auto result =
      RVF_predicateWithMultiWordSubstitutionVariables(compound, values({{"S", box("x y")}}));
  EXPECT_EQ(
      std::dynamic_pointer_cast<NSCompoundPredicate>(result)->subpredicates()->firstObject(),
      std::dynamic_pointer_cast<NSCompoundPredicate>(compound)->subpredicates()->firstObject());
}

TEST(MultiWordSubstitution, OtherKindsAtTheTopGiveAbsent) {
  const auto block = NSPredicate::predicateWithBlock([](const id&, const auto&) { return true; });
  const auto words = values({{"S", box("a b")}});
  EXPECT_EQ(RVF_predicateWithMultiWordSubstitutionVariables(predicate("TRUEPREDICATE"), words),
            nullptr);
  EXPECT_EQ(RVF_predicateWithMultiWordSubstitutionVariables(block, words), nullptr);
  EXPECT_EQ(RVF_predicateWithMultiWordSubstitutionVariables(nullptr, words), nullptr);
}

TEST(MultiWordSubstitution, OtherKindsInsideRaiseWhereThereAreSeveralWords) {
  EXPECT_EQ(raised([] {
              rewritten("a == $S AND TRUEPREDICATE", {{"S", box("x y")}});
            }),
            NSInvalidArgumentException);
  EXPECT_EQ(raised([] {
              rewritten("NOT FALSEPREDICATE", {{"S", box("x y")}});
            }),
            NSInvalidArgumentException);
}

TEST(MultiWordSubstitution, ABlockInsideRaisesWhereThereAreSeveralWords) {
  const id block = NSPredicate::predicateWithBlock([](const id&, const auto&) { return true; });
  const Ref<NSPredicate> compound = NSCompoundPredicate::andPredicateWithSubpredicates(
      NSArray::arrayWithObjects({predicate("a == $S"), block}));
  EXPECT_EQ(
      raised([&] {
        RVF_predicateWithMultiWordSubstitutionVariables(compound, values({{"S", box("x y")}}));
      }),
      NSInvalidArgumentException);
  const auto filled =
      RVF_predicateWithMultiWordSubstitutionVariables(compound, values({{"S", box("x")}}));
  const auto parts = std::dynamic_pointer_cast<NSCompoundPredicate>(filled)->subpredicates();
  EXPECT_EQ(parts->firstObject()->description(), "a == \"x\"");
  EXPECT_EQ(parts->lastObject(), block);
}

TEST(MultiWordSubstitution, RaisesWhereTheWordsWouldNestTooDeep) {
  Ref<NSPredicate> nested = predicate("a == $S");
  while (nested->depth() < 1000)
    nested = NSCompoundPredicate::notPredicateWithSubpredicate(nested);
  const auto filled = [&](std::string_view text) {
    return RVF_predicateWithMultiWordSubstitutionVariables(nested, values({{"S", box(text)}}));
  };
  EXPECT_EQ(raised([&] { filled("x y"); }), NSInvalidArgumentException);
  EXPECT_EQ(filled("x")->depth(), 1000U);
}

TEST(MultiWordSubstitution, TheTextOfAComparisonsVariableMustBeOne) {
  EXPECT_EQ(raised([] { rewritten("a == $S", {{"S", box(5)}}); }), NSInvalidArgumentException);
  EXPECT_EQ(rewritten("a == $S", {{"S", box("x")}, {"OTHER", box(5)}}), "a == \"x\"");
}

TEST(MultiWordSubstitution, EveryEntryMustBeATextForACompound) {
  const auto refused = [](NSDictionary::TextEntries entries) {
    return raised([&] { rewritten("a == $S AND b == 2", entries); }) == NSInvalidArgumentException;
  };
  EXPECT_TRUE(refused({{"OTHER", box(5)}}));
  // In whichever order a dictionary has them.
  for (const std::string_view other : {"A", "B", "C", "D", "E", "F", "G", "H"}) {
    EXPECT_TRUE(refused({{"S", box("x y")}, {other, box(5)}})) << other;
    EXPECT_TRUE(refused({{other, box(5)}, {"S", box("x y")}})) << other;
  }
}

TEST(MultiWordSubstitution, ACompoundNeedsADictionary) {
  EXPECT_EQ(raised([] {
              RVF_predicateWithMultiWordSubstitutionVariables(predicate("a == 1 OR b == 1"),
                                                              nullptr);
            }),
            NSInvalidArgumentException);
}

TEST(MultiWordSubstitution, LeavesTheReceiverAsItWas) {
  const auto search = predicate("name CONTAINS $S OR code == $S");
  RVF_predicateWithMultiWordSubstitutionVariables(search, values({{"S", box("a b")}}));
  EXPECT_EQ(search->predicateFormat(), "name CONTAINS $S OR code == $S");
}

TEST(MultiWordSubstitution, KeepsOperatorOptionsAndModifier) {
  EXPECT_EQ(rewritten("ANY tags LIKE[cd] $S", {{"S", box("a* b?")}}),
            "ANY tags LIKE[cd] \"a*\" AND ANY tags LIKE[cd] \"b?\"");
}

TEST(MultiWordSubstitution, FindsWhatHoldsEveryWord) {
  EXPECT_TRUE(rc::check([] {
    const auto word = rc::gen::element<std::string>("a", "b", "ab", "ba");
    const std::vector<std::string> words = {*word, *word};
    const std::string name = *rc::gen::container<std::string>(rc::gen::element('a', 'b', ' '));
    const auto search = RVF_predicateWithMultiWordSubstitutionVariables(
        predicate("name CONTAINS $S"), values({{"S", box(words[0] + " " + words[1])}}));
    const bool expected = name.find(words[0]) != name.npos && name.find(words[1]) != name.npos;
    RC_ASSERT(search->evaluateWithObject(values({{"name", box(name)}})) == expected);
  }));
}

}  // namespace
}  // namespace rvf
