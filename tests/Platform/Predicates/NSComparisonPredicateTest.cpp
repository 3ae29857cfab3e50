// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSComparisonPredicate.h"

#include <gtest/gtest.h>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSSet.h"
#include "tests/Platform/Predicates/Predicates.h"

namespace rvf {
namespace {

/// An object that knows its order and answers a comparison of its own.
class Rank final : public NSObject {
 public:
  explicit Rank(long value) : value_(value) {}

  static Class classObject() {
    static const Class kClass = ClassBuilder<Rank>("PredicateTestRank", NSObject::classObject())
                                    .method<&Rank::compare>("compare:")
                                    .method<&Rank::isNextTo>("isNextTo:")
                                    .method<&Rank::value>("value")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  long value() const { return value_; }
  long compare(const Ref<Rank>& other) const { return value_ - other->value_; }
  bool isNextTo(const Ref<Rank>& other) const { return std::labs(compare(other)) == 1; }

 private:
  long value_;
};

/// Names are what they hold: n5 a number, t5 a text, missing nothing.
Ref<NSDictionary> values() {
  return record({
      {"n5", box(5)},
      {"t5", box("5")},
      {"x", box("x")},
      {"cafe", box("Café")},
      {"street", box("Straße")},
      {"nothing", NSNull::null()},
      {"list", NSArray::arrayWithObjects({box(1), box("b"), NSNull::null()})},
      {"set", NSSet::setWithObjects({box(1), box("b")})},
      {"map", record({{"k", box("b")}})},
      {"empty", NSArray::array()},
      {"early", NSDate::dateWithTimeIntervalSinceReferenceDate(1)},
      {"late", NSDate::dateWithTimeIntervalSinceReferenceDate(2)},
      {"one", std::make_shared<Rank>(1)},
      {"two", std::make_shared<Rank>(2)},
      {"four", std::make_shared<Rank>(4)},
  });
}

bool holds(std::string_view format) {
  return predicate(format)->evaluateWithObject(values());
}

struct Row {
  std::string_view format;
  bool holds;
};

void expectRows(std::initializer_list<Row> rows) {
  for (const Row& row : rows)
    EXPECT_EQ(holds(row.format), row.holds) << row.format;
}

void expectRefused(std::initializer_list<std::string_view> formats) {
  for (const std::string_view format : formats)
    EXPECT_EQ(raised([&] { holds(format); }), NSInvalidArgumentException) << format;
}

TEST(NSComparisonPredicate, AbsentEqualsOnlyAbsent) {
  expectRows({
      {"missing == nil", true},
      {"nil == missing", true},
      {"missing != \"x\"", true},
      {"\"x\" != missing", true},
      {"missing == \"x\"", false},
      {"missing != nil", false},
      {"x == nil", false},
      {"x != nil", true},
      {"missing == other", true},
      {"missing.further == nil", true},
  });
}

TEST(NSComparisonPredicate, EveryOtherOperatorFailsWithAnAbsentSide) {
  for (const std::string_view name : {"<", "<=", ">", ">=", "BEGINSWITH", "ENDSWITH", "CONTAINS",
                                      "LIKE", "MATCHES", "IN", "BETWEEN"}) {
    const std::string between = " " + std::string(name) + " ";
    EXPECT_FALSE(holds("missing" + between + "'x'")) << name;
    EXPECT_FALSE(holds("x" + between + "nil")) << name;
    EXPECT_FALSE(holds("nil" + between + "missing")) << name;
  }
  expectRows(
      {{"missing CONTAINS \"\"", false}, {"nil IN {nil}", false}, {"list CONTAINS nil", false}});
}

TEST(NSComparisonPredicate, NullCountsAsAbsent) {
  expectRows({
      {"nothing == nil", true},
      {"nothing == missing", true},
      {"nothing != 'x'", true},
      {"nothing < 1", false},
      {"nothing CONTAINS 'x'", false},
      {"nothing IN list", false},
  });
}

TEST(NSComparisonPredicate, ANumberNeverEqualsAText) {
  expectRows({
      {"n5 == \"5\"", false},
      {"5 == \"5\"", false},
      {"t5 == 5", false},
      {"n5 != t5", true},
      {"n5 == 5", true},
      {"n5 == 5.0", true},
      {"1 == TRUE", true},
      {"0 == NO", true},
  });
}

TEST(NSComparisonPredicate, OrdersNumbersByValue) {
  expectRows({
      {"n5 < 6", true},
      {"n5 < 5", false},
      {"n5 <= 5", true},
      {"n5 > 4.9", true},
      {"n5 > 5", false},
      {"n5 >= 5", true},
      {"-1 < 18446744073709551615", true},
      {"9007199254740993 > 9007199254740992", true},
  });
}

TEST(NSComparisonPredicate, ComparesMoneyExactly) {
  const auto price = record({{"price", NSDecimalNumber::decimalNumberWithString("1.10")}});
  EXPECT_TRUE(predicate("price == 1.1")->evaluateWithObject(price));
  EXPECT_FALSE(predicate("price > 1.1")->evaluateWithObject(price));
  EXPECT_TRUE(predicate("price BETWEEN {1.1, 1.2}")->evaluateWithObject(price));
  EXPECT_TRUE(predicate("1.2 > price")->evaluateWithObject(price));
}

TEST(NSComparisonPredicate, OrdersTextsByUTF16) {
  expectRows({
      {"\"a\" < \"b\"", true},
      {"\"B\" < \"a\"", true},
      {"\"B\" <[c] \"a\"", false},
      {"\"a\" <= \"a\"", true},
      {"\"É\" <=[cd] \"e\"", true},
      {"\"😀\" < \"\uFF5E\"", true},
      {"\"10\" < \"9\"", true},
      {"\"b\" > \"a\"", true},
      {"\"b\" >= \"c\"", false},
  });
}

TEST(NSComparisonPredicate, OrdersDates) {
  expectRows({
      {"early < late", true},
      {"late <= early", false},
      {"early >= early", true},
      {"late > early", true},
      {"early == late", false},
      {"early BETWEEN {early, late}", true},
  });
}

TEST(NSComparisonPredicate, AsksOtherObjectsForTheirOrder) {
  expectRows({{"one < two", true}, {"two <= one", false}, {"two BETWEEN {one, four}", true}});
}

TEST(NSComparisonPredicate, RefusesToOrderWhatHasNoOrder) {
  expectRefused({"n5 < '6'", "x > 1", "list < list", "early < 1", "n5 BETWEEN {'1', '9'}"});
}

TEST(NSComparisonPredicate, TextOperatorsRefuseWhatIsNoText) {
  for (const std::string_view name : {"BEGINSWITH", "ENDSWITH", "CONTAINS", "LIKE", "MATCHES"}) {
    const std::string between = " " + std::string(name) + " ";
    EXPECT_EQ(raised([&] { holds("n5" + between + "'5'"); }), NSInvalidArgumentException) << name;
    EXPECT_EQ(raised([&] { holds("x" + between + "5"); }), NSInvalidArgumentException) << name;
  }
  expectRefused({"5 IN 'x'", "'x' IN 5", "n5 CONTAINS[cd] 5"});
}

TEST(NSComparisonPredicate, CollectionsContainWhatEqualsAnElement) {
  expectRows({
      {"list CONTAINS 1", true},
      {"list CONTAINS 'b'", true},
      {"list CONTAINS 'B'", false},
      {"list CONTAINS[c] 'B'", true},
      {"list CONTAINS '1'", false},
      {"set CONTAINS 1.0", true},
      {"set CONTAINS 2", false},
      {"map CONTAINS 'b'", true},
      {"map CONTAINS 'k'", false},
      {"empty CONTAINS 1", false},
      {"{1, n5} CONTAINS 5", true},
  });
}

TEST(NSComparisonPredicate, InLooksIntoCollectionsAndTexts) {
  expectRows({
      {"n5 IN {1, 5}", true},
      {"n5 IN {1, '5'}", false},
      {"x IN {}", false},
      {"cafe IN[cd] {'tea', 'CAFE'}", true},
      {"1 IN list", true},
      {"'b' IN set", true},
      {"'b' IN map", true},
      {"'af' IN cafe", true},
      {"'AF' IN cafe", false},
      {"'AFE' IN[cd] cafe", true},
      {"cafe IN 'af'", false},
  });
}

TEST(NSComparisonPredicate, BetweenIncludesItsLimits) {
  expectRows({
      {"n5 BETWEEN {5, 6}", true},
      {"n5 BETWEEN {4, 5}", true},
      {"n5 BETWEEN {6, 9}", false},
      {"n5 BETWEEN {1, 4}", false},
      {"n5 BETWEEN {6, 4}", false},
      {"x BETWEEN {'a', 'z'}", true},
      {"x BETWEEN[c] {'A', 'Z'}", true},
      {"x BETWEEN {'A', 'Z'}", false},
      {"n5 BETWEEN {nil, 9}", false},
      {"n5 BETWEEN {1, missing}", false},
  });
  expectRefused({"n5 BETWEEN {1}", "n5 BETWEEN {1, 2, 3}", "n5 BETWEEN 5", "n5 BETWEEN set"});
}

TEST(NSComparisonPredicate, AnyHoldsIfAnElementDoes) {
  expectRows({
      {"ANY list == 'b'", true},
      {"ANY list == 'c'", false},
      {"ANY list == nil", true},
      {"SOME set == 1", true},
      {"ANY map == 'b'", true},
      {"ANY empty == 1", false},
      {"ANY missing == 1", false},
      {"ANY {1, 5} > 4", true},
      {"ANY {'x', 'y'} CONTAINS[c] 'Y'", true},
  });
}

TEST(NSComparisonPredicate, AllHoldsIfEveryElementDoes) {
  expectRows({
      {"ALL {1, 5} > 0", true},
      {"ALL {1, 5} > 1", false},
      {"ALL empty == 1", true},
      {"ALL missing == 1", true},
      {"ALL {'xa', 'xb'} BEGINSWITH 'x'", true},
  });
}

TEST(NSComparisonPredicate, NoneHoldsIfNoElementDoes) {
  expectRows({
      {"NONE {1, 5} > 4", false},
      {"NONE {1, 5} > 5", true},
      {"NONE empty == 1", true},
      {"NONE missing == 1", true},
  });
}

TEST(NSComparisonPredicate, ModifiersRefuseWhatIsNoCollection) {
  expectRefused({"ANY n5 == 5", "ALL x == 'x'", "NONE 5 == 5"});
}

TEST(NSComparisonPredicate, ReadsValuesByKeyPath) {
  const auto order = record({{"customer", record({{"name", box("Ada")}})},
                             {"lines", NSArray::arrayWithObjects({record({{"price", box(5)}}),
                                                                  record({{"price", box(20)}})})}});
  EXPECT_TRUE(predicate("customer.name == 'Ada'")->evaluateWithObject(order));
  EXPECT_TRUE(predicate("ANY lines.price > 10")->evaluateWithObject(order));
  EXPECT_FALSE(predicate("ALL lines.price > 10")->evaluateWithObject(order));
  EXPECT_FALSE(predicate("supplier.name == 'Ada'")->evaluateWithObject(order));
  EXPECT_TRUE(predicate("SELF.customer != nil")->evaluateWithObject(order));
}

TEST(NSComparisonPredicate, ReadsTheObjectsOwnAccessors) {
  const id rank = std::make_shared<Rank>(7);
  EXPECT_TRUE(predicate("value == 7")->evaluateWithObject(rank));
  EXPECT_EQ(raised([&] { predicate("missing == 7")->evaluateWithObject(rank); }),
            NSUndefinedKeyException);
}

TEST(NSComparisonPredicate, ComparesTheObjectItself) {
  EXPECT_TRUE(predicate("SELF == 'x'")->evaluateWithObject(box("x")));
  EXPECT_TRUE(predicate("SELF > 4")->evaluateWithObject(box(5)));
  EXPECT_TRUE(predicate("SELF == nil")->evaluateWithObject(nullptr));
  EXPECT_TRUE(predicate("name == nil")->evaluateWithObject(nullptr));
  EXPECT_FALSE(predicate("a.b == 1")->evaluateWithObject(nullptr));
}

TEST(NSComparisonPredicate, SendsACustomSelector) {
  const auto left = NSExpression::expressionForKeyPath("one");
  const auto nextTo = [&](std::string_view key) {
    const auto comparison = NSComparisonPredicate::initWithLeftExpression(
        left, NSExpression::expressionForKeyPath(key), SEL("isNextTo:"));
    return comparison->evaluateWithObject(values());
  };
  EXPECT_TRUE(nextTo("two"));
  EXPECT_FALSE(nextTo("four"));
  EXPECT_FALSE(nextTo("none"));
  EXPECT_EQ(raised([&] { nextTo("x"); }), NSInvalidArgumentException);
}

TEST(NSComparisonPredicate, KeepsWhatACustomComparisonIsMadeWith) {
  const auto comparison = NSComparisonPredicate::initWithLeftExpression(
      NSExpression::expressionForKeyPath("a"), NSExpression::expressionForKeyPath("b"),
      SEL("isNextTo:"));
  EXPECT_EQ(comparison->predicateOperatorType(), 11U);
  EXPECT_EQ(comparison->customSelector(), SEL("isNextTo:"));
  EXPECT_EQ(comparison->predicateFormat(), "a isNextTo: b");
}

TEST(NSComparisonPredicate, RefusesToBeMadeOfHalf) {
  const auto side = NSExpression::expressionForEvaluatedObject();
  const auto made = [](const auto& left, const auto& right, NSPredicateOperatorType type) {
    return raised([&] {
      NSComparisonPredicate::initWithLeftExpression(left, right, NSDirectPredicateModifier, type,
                                                    0);
    });
  };
  EXPECT_EQ(made(side, Ref<NSExpression>(), NSEqualToPredicateOperatorType),
            NSInvalidArgumentException);
  EXPECT_EQ(made(Ref<NSExpression>(), side, NSEqualToPredicateOperatorType),
            NSInvalidArgumentException);
  EXPECT_EQ(made(side, side, NSCustomSelectorPredicateOperatorType), NSInvalidArgumentException);
  EXPECT_EQ(made(side, side, NSEqualToPredicateOperatorType), "none");
}

TEST(NSComparisonPredicate, IsEqualByAllItsParts) {
  const auto comparison = predicate("ANY a CONTAINS[c] 'x'");
  EXPECT_TRUE(comparison->isEqual(predicate("ANY a CONTAINS[c] 'x'").get()));
  EXPECT_EQ(comparison->hash(), predicate("ANY a CONTAINS[c] 'x'")->hash());
  for (const std::string_view other :
       {"a CONTAINS[c] 'x'", "ALL a CONTAINS[c] 'x'", "ANY b CONTAINS[c] 'x'", "ANY a LIKE[c] 'x'",
        "ANY a CONTAINS[cd] 'x'", "ANY a CONTAINS 'x'", "ANY a CONTAINS[c] 'y'",
        "ANY a CONTAINS[c] x", "NOT ANY a CONTAINS[c] 'x'"})
    EXPECT_FALSE(comparison->isEqual(predicate(other).get())) << other;
}

}  // namespace
}  // namespace rvf
