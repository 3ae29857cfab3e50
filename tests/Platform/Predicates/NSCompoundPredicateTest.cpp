// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSCompoundPredicate.h"

#include <gtest/gtest.h>

#include "Platform/Values/NSMutableArray.h"
#include "tests/Platform/Predicates/Predicates.h"

namespace rvf {
namespace {

Ref<NSArray> parts(const std::vector<bool>& values) {
  std::vector<id> list;
  for (const bool value : values)
    list.push_back(NSPredicate::predicateWithValue(value));
  return NSArray::arrayWithObjects(list);
}

bool holds(NSCompoundPredicateType type, const std::vector<bool>& values) {
  return NSCompoundPredicate::initWithType(type, parts(values))->evaluateWithObject(nullptr);
}

TEST(NSCompoundPredicate, AndHoldsIfAllDo) {
  EXPECT_TRUE(holds(NSAndPredicateType, {true, true, true}));
  EXPECT_FALSE(holds(NSAndPredicateType, {true, false, true}));
  EXPECT_TRUE(holds(NSAndPredicateType, {true}));
}

TEST(NSCompoundPredicate, OrHoldsIfOneDoes) {
  EXPECT_TRUE(holds(NSOrPredicateType, {false, true, false}));
  EXPECT_FALSE(holds(NSOrPredicateType, {false, false}));
}

TEST(NSCompoundPredicate, NotHoldsIfItsPartDoesNot) {
  EXPECT_TRUE(holds(NSNotPredicateType, {false}));
  EXPECT_FALSE(holds(NSNotPredicateType, {true}));
}

TEST(NSCompoundPredicate, AnEmptyAndIsTrueAnEmptyOrIsFalse) {
  EXPECT_TRUE(holds(NSAndPredicateType, {}));
  EXPECT_FALSE(holds(NSOrPredicateType, {}));
}

TEST(NSCompoundPredicate, EvaluatesInOrderAndOnlyAsFarAsNeeded) {
  std::string calls;
  const auto block = [&calls](char name, bool result) {
    return NSPredicate::predicateWithBlock([&calls, name, result](const id&, const auto&) {
      calls += name;
      return result;
    });
  };
  const auto list = NSArray::arrayWithObjects(
      std::vector<Ref<NSPredicate>>{block('a', true), block('b', false), block('c', true)});
  NSCompoundPredicate::andPredicateWithSubpredicates(list)->evaluateWithObject(nullptr);
  EXPECT_EQ(calls, "ab");
  calls.clear();
  NSCompoundPredicate::orPredicateWithSubpredicates(list)->evaluateWithObject(nullptr);
  EXPECT_EQ(calls, "a");
}

TEST(NSCompoundPredicate, KeepsItsPartsInOrder) {
  const id first = predicate("a == 1");
  const id second = predicate("b == 1");
  const auto compound =
      NSCompoundPredicate::orPredicateWithSubpredicates(NSArray::arrayWithObjects({first, second}));
  EXPECT_EQ(compound->compoundPredicateType(), NSOrPredicateType);
  EXPECT_EQ(compound->subpredicates()->objectAtIndex(0), first);
  EXPECT_EQ(compound->subpredicates()->objectAtIndex(1), second);
}

TEST(NSCompoundPredicate, DoesNotFollowChangesOfTheArray) {
  const auto list = NSMutableArray::array();
  list->addObject(NSPredicate::predicateWithValue(true));
  const auto compound = NSCompoundPredicate::andPredicateWithSubpredicates(list);
  list->addObject(NSPredicate::predicateWithValue(false));
  EXPECT_EQ(compound->subpredicates()->count(), 1U);
  EXPECT_TRUE(compound->evaluateWithObject(nullptr));
}

TEST(NSCompoundPredicate, RefusesWhatIsNoListOfPredicates) {
  const auto refused = [](NSCompoundPredicateType type, const Ref<NSArray>& list) {
    return raised([&] { NSCompoundPredicate::initWithType(type, list); }) ==
           NSInvalidArgumentException;
  };
  EXPECT_TRUE(refused(NSAndPredicateType, nullptr));
  EXPECT_TRUE(refused(NSAndPredicateType, NSArray::arrayWithObjects({box("a == 1")})));
  EXPECT_TRUE(refused(NSNotPredicateType, parts({})));
  EXPECT_TRUE(refused(NSNotPredicateType, parts({true, true})));
  EXPECT_EQ(raised([] { NSCompoundPredicate::notPredicateWithSubpredicate(nullptr); }),
            NSInvalidArgumentException);
}

TEST(NSCompoundPredicate, IsEqualByTypeAndParts) {
  const auto compound = predicate("a == 1 AND b == 2");
  EXPECT_TRUE(compound->isEqual(predicate("a == 1 AND b == 2").get()));
  EXPECT_EQ(compound->hash(), predicate("a == 1 AND b == 2")->hash());
  EXPECT_FALSE(compound->isEqual(predicate("b == 2 AND a == 1").get()));
  EXPECT_FALSE(compound->isEqual(predicate("a == 1 OR b == 2").get()));
  EXPECT_FALSE(compound->isEqual(predicate("a == 1").get()));
  EXPECT_FALSE(compound->isEqual(nullptr));
}

TEST(NSCompoundPredicate, PrintsFewerThanTwoPartsWithoutTheirConnective) {
  const auto printed = [](NSCompoundPredicateType type, const std::vector<bool>& values) {
    return NSCompoundPredicate::initWithType(type, parts(values))->predicateFormat();
  };
  EXPECT_EQ(printed(NSAndPredicateType, {}), "TRUEPREDICATE");
  EXPECT_EQ(printed(NSOrPredicateType, {}), "FALSEPREDICATE");
  EXPECT_EQ(printed(NSAndPredicateType, {false}), "FALSEPREDICATE");
  EXPECT_EQ(predicate("a == 1 OR b == 2")->description(), "a == 1 OR b == 2");
}

TEST(NSCompoundPredicate, NestsAThousandDeep) {
  Ref<NSPredicate> nested = predicate("$A IN {a}");
  while (nested->depth() < 1000)
    nested = NSCompoundPredicate::notPredicateWithSubpredicate(nested);
  EXPECT_EQ(raised([&] { NSCompoundPredicate::notPredicateWithSubpredicate(nested); }),
            NSInvalidArgumentException);
  const auto filled = nested->predicateWithSubstitutionVariables(record({{"A", box(1)}}));
  EXPECT_EQ(filled->depth(), 1000U);
  EXPECT_FALSE(filled->evaluateWithObject(record({{"a", box(1)}})));
  EXPECT_FALSE(filled->isEqual(nested.get()));
  EXPECT_EQ(filled->predicateFormat().size(), 997 * std::string("NOT ").size() + 8);
}

}  // namespace
}  // namespace rvf
