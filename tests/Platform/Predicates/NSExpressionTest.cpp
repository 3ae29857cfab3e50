// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSExpression.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSCopying.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSNull.h"
#include "tests/Platform/Predicates/Predicates.h"

namespace rvf {
namespace {

Ref<NSExpression> constant(const id& value) {
  return NSExpression::expressionForConstantValue(value);
}

Ref<NSExpression> aggregate(const std::vector<Ref<NSExpression>>& elements) {
  return NSExpression::expressionForAggregate(NSArray::arrayWithObjects(elements));
}

TEST(NSExpression, KnowsWhatItIsMadeOf) {
  EXPECT_EQ(unboxText(constant(box("x"))->constantValue()), "x");
  EXPECT_EQ(NSExpression::expressionForVariable("S")->variable(), "S");
  EXPECT_EQ(NSExpression::expressionForKeyPath("a.b")->keyPath(), "a.b");
  EXPECT_EQ(aggregate({constant(box(1))})->collection()->count(), 1U);
}

TEST(NSExpression, RaisesForPartsThatItDoesNotHave) {
  const auto self = NSExpression::expressionForEvaluatedObject();
  EXPECT_EQ(raised([&] { self->constantValue(); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { self->variable(); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { self->keyPath(); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { self->collection(); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { self->arguments(); }), NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { self->expressionBlock(); }), NSInvalidArgumentException);
}

TEST(NSExpression, AnswersItsValueForAnObject) {
  const id object = record({{"a", record({{"b", box(3)}})}});
  EXPECT_TRUE(objectsAreEqual(constant(box(1))->expressionValueWithObject(object), box(1)));
  EXPECT_EQ(constant(nullptr)->expressionValueWithObject(object), nullptr);
  EXPECT_EQ(NSExpression::expressionForEvaluatedObject()->expressionValueWithObject(object),
            object);
  EXPECT_TRUE(objectsAreEqual(
      NSExpression::expressionForKeyPath("a.b")->expressionValueWithObject(object), box(3)));
  EXPECT_EQ(NSExpression::expressionForKeyPath("a")->expressionValueWithObject(nullptr), nullptr);
}

TEST(NSExpression, LooksVariablesUpInTheContext) {
  const auto variable = NSExpression::expressionForVariable("V");
  const auto context = record({{"V", box(1)}, {"N", NSNull::null()}});
  EXPECT_TRUE(objectsAreEqual(variable->expressionValueWithObject(nullptr, context), box(1)));
  EXPECT_EQ(NSExpression::expressionForVariable("N")->expressionValueWithObject(nullptr, context),
            nullptr);
  EXPECT_EQ(raised([&] { variable->expressionValueWithObject(nullptr); }),
            NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { variable->expressionValueWithObject(nullptr, record({})); }),
            NSInvalidArgumentException);
}

TEST(NSExpression, AnAggregateIsTheArrayOfItsValues) {
  const auto list = aggregate({constant(box(1)), NSExpression::expressionForKeyPath("a"),
                               constant(nullptr), aggregate({constant(box("x"))})});
  const id value = list->expressionValueWithObject(record({{"a", box(2)}}));
  EXPECT_TRUE(
      objectsAreEqual(value, NSArray::arrayWithObjects({box(1), box(2), NSNull::null(),
                                                        NSArray::arrayWithObjects({box("x")})})));
}

TEST(NSExpression, ABlockGetsObjectArgumentsAndContext) {
  const auto context = record({{"V", box(2)}});
  id seenObject;
  Ref<NSDictionary> seenContext;
  const auto expression = NSExpression::expressionForBlock(
      [&](const id& object, const Ref<NSArray>& arguments, const Ref<NSDictionary>& given) {
        seenObject = object;
        seenContext = given;
        return arguments->lastObject();
      },
      NSArray::arrayWithObjects({constant(nullptr), id(NSExpression::expressionForVariable("V"))}));
  const id object = box("x");
  EXPECT_TRUE(objectsAreEqual(expression->expressionValueWithObject(object, context), box(2)));
  EXPECT_EQ(seenObject, object);
  EXPECT_EQ(seenContext, context);
  EXPECT_EQ(expression->arguments()->count(), 2U);
  EXPECT_EQ(expression->expressionType(), 19U);
}

TEST(NSExpression, ABlockMayGiveUpTheExpressionAroundIt) {
  Ref<NSExpression> holder;
  const auto block = [&holder](const id&, const auto&, const auto&) -> id {
    const std::weak_ptr<NSExpression> given = holder;
    holder.reset();
    return box(!given.expired());
  };
  holder = aggregate({NSExpression::expressionForBlock(block, nullptr), constant(box(2))});
  const id value = holder->expressionValueWithObject(record({}));
  EXPECT_TRUE(objectsAreEqual(value, NSArray::arrayWithObjects({box(true), box(2)})));
  EXPECT_EQ(holder, nullptr);
}

TEST(NSExpression, ReplacesVariablesThatHaveAnEntry) {
  const auto values = record({{"A", box(1)}, {"N", NSNull::null()}});
  const auto replaced = [&](const Ref<NSExpression>& expression) {
    return expression->expressionWithSubstitutionVariables(*values)->description();
  };
  EXPECT_EQ(replaced(NSExpression::expressionForVariable("A")), "1");
  EXPECT_EQ(replaced(NSExpression::expressionForVariable("N")), "nil");
  EXPECT_EQ(replaced(NSExpression::expressionForVariable("B")), "$B");
  EXPECT_EQ(replaced(aggregate({NSExpression::expressionForVariable("A"),
                                aggregate({NSExpression::expressionForVariable("B")})})),
            "{1, {$B}}");
}

TEST(NSExpression, IsItselfWhereNothingIsReplaced) {
  const auto values = record({{"A", box(1)}});
  for (const auto& expression :
       {constant(box(1)), NSExpression::expressionForKeyPath("A"),
        NSExpression::expressionForVariable("B"), NSExpression::expressionForEvaluatedObject(),
        aggregate({constant(box(1)), NSExpression::expressionForVariable("B")})})
    EXPECT_EQ(expression->expressionWithSubstitutionVariables(*values), expression)
        << expression->description();
}

TEST(NSExpression, ReplacesVariablesInTheArgumentsOfABlock) {
  const auto sum = NSExpression::expressionForBlock(
      [](const id&, const Ref<NSArray>& arguments, const auto&) {
        return arguments->firstObject();
      },
      NSArray::arrayWithObjects({id(NSExpression::expressionForVariable("A"))}));
  const auto filled = sum->expressionWithSubstitutionVariables(*record({{"A", box(4)}}));
  EXPECT_TRUE(objectsAreEqual(filled->expressionValueWithObject(nullptr), box(4)));
}

TEST(NSExpression, PrintsAsInAFormat) {
  EXPECT_EQ(constant(box("say \"\\\""))->description(), R"("say \"\\\"")");
  EXPECT_EQ(constant(box(1.5))->description(), "1.5");
  EXPECT_EQ(constant(box(true))->description(), "1");
  EXPECT_EQ(constant(NSNull::null())->description(), "nil");
  EXPECT_EQ(constant(NSArray::arrayWithObjects({box(1), box("a")}))->description(), "{1, \"a\"}");
  EXPECT_EQ(NSExpression::expressionForVariable("V")->description(), "$V");
  EXPECT_EQ(NSExpression::expressionForEvaluatedObject()->description(), "SELF");
}

TEST(NSExpression, IsEqualByKindAndParts) {
  EXPECT_TRUE(constant(box(1))->isEqual(constant(box(1.0)).get()));
  EXPECT_EQ(constant(box(1))->hash(), constant(box(1.0))->hash());
  EXPECT_FALSE(constant(box("a"))->isEqual(NSExpression::expressionForKeyPath("a").get()));
  EXPECT_FALSE(NSExpression::expressionForVariable("a")->isEqual(
      NSExpression::expressionForKeyPath("a").get()));
  EXPECT_TRUE(aggregate({constant(nullptr)})->isEqual(aggregate({constant(nullptr)}).get()));
  EXPECT_FALSE(aggregate({constant(nullptr)})->isEqual(aggregate({}).get()));
  const auto block = NSExpression::expressionForBlock(
      [](const id&, const auto&, const auto&) { return id(); }, nullptr);
  EXPECT_TRUE(block->isEqual(block.get()));
}

TEST(NSExpression, RefusesWhatIsNoListOfExpressions) {
  EXPECT_EQ(raised([] { NSExpression::expressionForAggregate(nullptr); }),
            NSInvalidArgumentException);
  EXPECT_EQ(
      raised([] { NSExpression::expressionForAggregate(NSArray::arrayWithObjects({box(1)})); }),
      NSInvalidArgumentException);
  EXPECT_EQ(raised([] { NSExpression::expressionForBlock(nullptr, NSArray::array()); }),
            NSInvalidArgumentException);
}

TEST(NSExpression, NestsAThousandDeep) {
  auto nested = aggregate({});
  while (nested->depth() < 1000)
    nested = aggregate({nested});
  EXPECT_EQ(raised([&] { aggregate({nested}); }), NSInvalidArgumentException);
  EXPECT_EQ(nested->description().size(), 2000U);
}

TEST(NSExpression, IsItsOwnCopy) {
  const id expression = constant(box(1));
  EXPECT_EQ(copyOfObject(expression), expression);
}

}  // namespace
}  // namespace rvf
