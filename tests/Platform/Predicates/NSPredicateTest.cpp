// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSPredicate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSNull.h"
#include "tests/Platform/Predicates/Predicates.h"

namespace rvf {
namespace {

std::string substituted(std::string_view format, NSDictionary::TextEntries values) {
  return predicate(format)->predicateWithSubstitutionVariables(record(values))->predicateFormat();
}

TEST(NSPredicate, ConstantsHoldAlwaysOrNever) {
  EXPECT_TRUE(NSPredicate::predicateWithValue(true)->evaluateWithObject(box(1)));
  EXPECT_FALSE(NSPredicate::predicateWithValue(false)->evaluateWithObject(nullptr));
  EXPECT_TRUE(NSPredicate::predicateWithValue(true)->isEqual(predicate("TRUEPREDICATE").get()));
  EXPECT_FALSE(NSPredicate::predicateWithValue(true)->isEqual(predicate("FALSEPREDICATE").get()));
}

TEST(NSPredicate, ABlockGetsTheObjectAndTheVariables) {
  id seenObject;
  Ref<NSDictionary> seenVariables;
  const auto block = NSPredicate::predicateWithBlock([&](const id& object, const auto& variables) {
    seenObject = object;
    seenVariables = variables;
    return object != nullptr;
  });
  const id object = box("x");
  const auto variables = record({{"V", box(1)}});
  EXPECT_TRUE(block->evaluateWithObject(object, variables));
  EXPECT_EQ(seenObject, object);
  EXPECT_EQ(seenVariables, variables);
  EXPECT_FALSE(block->evaluateWithObject(nullptr));
  EXPECT_EQ(seenVariables, nullptr);
}

TEST(NSPredicate, ABlockIsEqualToItselfOnly) {
  const auto make = [] {
    return NSPredicate::predicateWithBlock([](const id&, const auto&) { return true; });
  };
  const auto block = make();
  EXPECT_TRUE(block->isEqual(block.get()));
  EXPECT_FALSE(block->isEqual(make().get()));
  EXPECT_TRUE(block->predicateFormat().starts_with("BLOCKPREDICATE(0x"));
  EXPECT_EQ(raised([] { NSPredicate::predicateWithBlock(nullptr); }), NSInvalidArgumentException);
}

TEST(NSPredicate, AnExceptionOfABlockPassesThrough) {
  const auto block = NSPredicate::predicateWithBlock(
      [](const id&, const auto&) -> bool { throw std::runtime_error("no"); });
  EXPECT_THROW(block->evaluateWithObject(nullptr), std::runtime_error);
}

/// A block that gives up `holder` and answers whether the predicate is still there.
Ref<NSPredicate> givingUp(Ref<NSPredicate>& holder) {
  return NSPredicate::predicateWithBlock([&holder](const id&, const auto&) {
    const std::weak_ptr<NSPredicate> given = holder;
    holder.reset();
    return !given.expired();
  });
}

TEST(NSPredicate, ABlockMayGiveUpItsPredicate) {
  Ref<NSPredicate> holder;
  holder = givingUp(holder);
  const std::weak_ptr<NSPredicate> given = holder;
  EXPECT_TRUE(holder->evaluateWithObject(nullptr));
  EXPECT_TRUE(given.expired());
}

TEST(NSPredicate, ABlockMayGiveUpTheCompoundAroundIt) {
  for (const auto type : {NSAndPredicateType, NSOrPredicateType}) {
    Ref<NSPredicate> holder;
    bool isLastAsked = false;
    const id last = NSPredicate::predicateWithBlock(
        [&isLastAsked](const id&, const auto&) { return isLastAsked = true; });
    Ref<NSPredicate> first = givingUp(holder);
    if (type == NSOrPredicateType)  // fails, so that the last part is asked
      first = NSCompoundPredicate::notPredicateWithSubpredicate(first);
    holder = NSCompoundPredicate::initWithType(
        type, NSArray::arrayWithObjects({std::exchange(first, nullptr), last}));
    EXPECT_TRUE(holder->evaluateWithObject(nullptr)) << type;
    EXPECT_TRUE(isLastAsked) << type;
    EXPECT_EQ(holder, nullptr) << type;
  }
}

TEST(NSPredicate, ABlockOfAnExpressionMayGiveUpTheComparison) {
  Ref<NSPredicate> holder;
  const auto block = [&holder](const id&, const auto&, const auto&) -> id {
    const std::weak_ptr<NSPredicate> given = holder;
    holder.reset();
    return box(given.expired() ? "gone" : "there");
  };
  holder = NSComparisonPredicate::initWithLeftExpression(
      NSExpression::expressionForBlock(block, nullptr),
      NSExpression::expressionForConstantValue(box("THERE")), NSDirectPredicateModifier,
      NSEqualToPredicateOperatorType, NSCaseInsensitivePredicateOption);
  EXPECT_TRUE(holder->evaluateWithObject(nullptr));
  EXPECT_EQ(holder, nullptr);
}

TEST(NSPredicate, ABlockMayGiveUpThePredicateThatFilters) {
  Ref<NSPredicate> holder;
  Ref<NSArray> list = NSArray::arrayWithObjects({box(1), box(2), box(3)});
  int calls = 0;
  holder = NSPredicate::predicateWithBlock([&](const id&, const auto&) {
    holder.reset();
    list.reset();
    return ++calls > 1;
  });
  EXPECT_EQ(filteredArrayUsingPredicate(list, *holder)->count(), 2U);
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(holder, nullptr);
}

TEST(NSPredicate, SubstitutionReplacesVariables) {
  EXPECT_EQ(substituted("a == $A", {{"A", box("x")}}), "a == \"x\"");
  EXPECT_EQ(substituted("$A == a", {{"A", box(1)}}), "1 == a");
  EXPECT_EQ(substituted("NOT (a == $A OR b IN {$A, $B})", {{"A", box(1)}, {"B", box(2)}}),
            "NOT (a == 1 OR b IN {1, 2})");
  EXPECT_EQ(substituted("ANY a LIKE[cd] $A", {{"A", box("x*")}}), "ANY a LIKE[cd] \"x*\"");
}

TEST(NSPredicate, AVariableWithoutAnEntryStaysInPlace) {
  EXPECT_EQ(substituted("$A == $B", {{"B", box(1)}}), "$A == 1");
  EXPECT_EQ(substituted("$A == 1 AND $B == 2", {{"A", box(1)}}), "1 == 1 AND $B == 2");
}

TEST(NSPredicate, ABothSidedComparisonIsFilledInTwoPasses) {
  const auto once =
      predicate("$A == $B")->predicateWithSubstitutionVariables(record({{"B", box(1)}}));
  const auto twice = once->predicateWithSubstitutionVariables(record({{"A", box(1)}}));
  EXPECT_TRUE(twice->evaluateWithObject(nullptr));
}

TEST(NSPredicate, NullSubstitutesAsAbsent) {
  EXPECT_EQ(substituted("a == $A", {{"A", NSNull::null()}}), "a == nil");
}

TEST(NSPredicate, ASubstitutedTextIsNoFormat) {
  EXPECT_EQ(substituted("a == $A", {{"A", box("$B\" OR 1 == 1")}}), "a == \"$B\\\" OR 1 == 1\"");
}

TEST(NSPredicate, SubstitutionLeavesTheReceiverAsItWas) {
  const auto original = predicate("a == $A AND b == 1");
  original->predicateWithSubstitutionVariables(record({{"A", box(1)}}));
  EXPECT_EQ(original->predicateFormat(), "a == $A AND b == 1");
}

TEST(NSPredicate, IsItselfWhereNothingIsSubstituted) {
  for (const std::string_view format : {"a == 1", "a == 1 AND NOT b == $B", "TRUEPREDICATE"}) {
    const auto original = predicate(format);
    EXPECT_EQ(original->predicateWithSubstitutionVariables(record({{"A", box(1)}})), original)
        << format;
  }
}

TEST(NSPredicate, SubstitutionNeedsADictionary) {
  for (const std::string_view format : {"a == $A", "a == 1", "a == 1 OR b == 2", "TRUEPREDICATE"})
    EXPECT_EQ(raised([&] { predicate(format)->predicateWithSubstitutionVariables(nullptr); }),
              NSInvalidArgumentException)
        << format;
}

TEST(NSPredicate, AVariableThatIsLeftRaises) {
  const auto left = predicate("a == $A");
  EXPECT_EQ(raised([&] { left->evaluateWithObject(record({})); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([&] {
              left->evaluateWithObject(record({}), record({{"B", box(1)}}));
            }),
            NSInvalidArgumentException);
}

TEST(NSPredicate, AVariableThatNoEvaluationComesToMayLackItsValue) {
  EXPECT_FALSE(predicate("FALSEPREDICATE AND a == $A")->evaluateWithObject(record({})));
  EXPECT_TRUE(predicate("TRUEPREDICATE OR a == $A")->evaluateWithObject(record({})));
  EXPECT_EQ(raised([] { predicate("a == $A AND FALSEPREDICATE")->evaluateWithObject(record({})); }),
            NSInvalidArgumentException);
}

TEST(NSPredicate, TakesVariablesForOneEvaluation) {
  const auto search = predicate("name CONTAINS[cd] $S AND price < $MAX");
  const auto product = record({{"name", box("Café au lait")}, {"price", box(3)}});
  EXPECT_TRUE(search->evaluateWithObject(product, record({{"S", box("cafe")}, {"MAX", box(4)}})));
  EXPECT_FALSE(search->evaluateWithObject(product, record({{"S", box("tea")}, {"MAX", box(4)}})));
  EXPECT_FALSE(
      search->evaluateWithObject(product, record({{"S", NSNull::null()}, {"MAX", box(4)}})));
}

TEST(NSPredicate, FiltersAnArrayInItsOrder) {
  const auto numbers = NSArray::arrayWithObjects({box(3), box(1), box(2), box(0)});
  const auto found = filteredArrayUsingPredicate(numbers, *predicate("SELF > 0 AND SELF != 1"));
  EXPECT_TRUE(found->isEqual(NSArray::arrayWithObjects({box(3), box(2)}).get()));
  EXPECT_EQ(filteredArrayUsingPredicate(nullptr, *predicate("TRUEPREDICATE")), nullptr);
  EXPECT_EQ(filteredArrayUsingPredicate(NSArray::array(), *predicate("SELF > 0"))->count(), 0U);
}

TEST(NSPredicate, FilteringAnArrayThatThePredicateChangesRaises) {
  const auto list = NSMutableArray::array();
  list->addObject(box(1));
  list->addObject(box(2));
  const auto growing = NSPredicate::predicateWithBlock([&](const id&, const auto&) {
    list->addObject(box(3));
    return true;
  });
  EXPECT_EQ(raised([&] { filteredArrayUsingPredicate(list, *growing); }), NSGenericException);
}

TEST(NSPredicate, MayBeEvaluatedByManyThreadsAtOnce) {
  const auto shared = predicate(
      "name CONTAINS[cd] 'é' AND name LIKE[c] 'c*' AND name MATCHES '.{4}' AND name IN {'Café'}");
  const auto product = record({{"name", box("Café")}});
  std::atomic<int> held{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int round = 0; round < 50; ++round)
        held += shared->evaluateWithObject(product) ? 1 : 0;
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(held, 200);
}

TEST(NSPredicate, IsItsOwnCopyAndDescription) {
  const id original = predicate("a == 1");
  EXPECT_EQ(copyOfObject(original), original);
  EXPECT_EQ(original->description(), "a == 1");
  EXPECT_TRUE(original->isKindOfClass(NSPredicate::classObject()));
  EXPECT_TRUE(original->isMemberOfClass(NSComparisonPredicate::classObject()));
  EXPECT_FALSE(original->isKindOfClass(NSCompoundPredicate::classObject()));
}

}  // namespace
}  // namespace rvf
