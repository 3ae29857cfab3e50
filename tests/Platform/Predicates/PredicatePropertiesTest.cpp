// SPDX-License-Identifier: Apache-2.0
//
// Random predicates: what they print reads back, and what they answer is what a direct evaluator
// and logic say.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/NSCompoundPredicate.h"
#include "tests/Platform/Predicates/Predicates.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using Predicates = std::vector<Ref<NSPredicate>>;

Ref<NSPredicate> compound(NSCompoundPredicateType type, const Predicates& parts) {
  return NSCompoundPredicate::initWithType(type, NSArray::arrayWithObjects(parts));
}

rc::Gen<std::string> name() {
  return rc::gen::element<std::string>("a", "name", "price", "größe", "_1", "insight", "a.b.in",
                                       "in", "1st", "self.x", "SELF", "Between.a");
}

rc::Gen<id> anyConstant() {
  return rc::gen::oneOf(
      rc::gen::just(id()),
      rc::gen::map(rc::gen::arbitrary<std::int64_t>(), [](std::int64_t n) { return id(box(n)); }),
      rc::gen::map(rc::gen::arbitrary<double>(), [](double n) { return id(box(n)); }),
      rc::gen::map(rc::gen::oneOf(anyText(), anyBytes()),
                   [](const std::string& text) { return id(box(text)); }));
}

Ref<NSExpression> anyExpression(int depth) {
  switch (*rc::gen::inRange(0, depth > 0 ? 5 : 4)) {
    case 0:
      return NSExpression::expressionForEvaluatedObject();
    case 1:
      return NSExpression::expressionForVariable(
          *rc::gen::element<std::string>("S", "search", "IN"));
    case 2:
      return NSExpression::expressionForKeyPath(*name());
    case 3:
      return NSExpression::expressionForConstantValue(*anyConstant());
    default:
      break;
  }
  std::vector<Ref<NSExpression>> elements;
  for (int count = *rc::gen::inRange(0, 4); count > 0; --count)
    elements.push_back(anyExpression(depth - 1));
  return NSExpression::expressionForAggregate(NSArray::arrayWithObjects(elements));
}

constexpr std::array kOperators = {
    NSLessThanPredicateOperatorType,    NSLessThanOrEqualToPredicateOperatorType,
    NSGreaterThanPredicateOperatorType, NSGreaterThanOrEqualToPredicateOperatorType,
    NSEqualToPredicateOperatorType,     NSNotEqualToPredicateOperatorType,
    NSMatchesPredicateOperatorType,     NSLikePredicateOperatorType,
    NSBeginsWithPredicateOperatorType,  NSEndsWithPredicateOperatorType,
    NSInPredicateOperatorType,          NSContainsPredicateOperatorType,
    NSBetweenPredicateOperatorType};

Ref<NSPredicate> anyComparison() {
  const auto left = anyExpression(2);
  const auto right = anyExpression(2);
  const auto modifier =
      *rc::gen::element(NSDirectPredicateModifier, NSAllPredicateModifier, NSAnyPredicateModifier);
  const auto type = kOperators[*rc::gen::inRange<std::size_t>(0, kOperators.size())];
  return NSComparisonPredicate::initWithLeftExpression(left, right, modifier, type,
                                                       *rc::gen::inRange(0U, 16U));
}

/// A tree over leaves that `leaf` makes.
template <class Leaf>
Ref<NSPredicate> anyTree(int depth, const Leaf& leaf) {
  const int choice = *rc::gen::inRange(0, depth > 0 ? 5 : 2);
  if (choice == 0) return NSPredicate::predicateWithValue(*rc::gen::arbitrary<bool>());
  if (choice == 1) return leaf();
  if (choice == 2)
    return NSCompoundPredicate::notPredicateWithSubpredicate(anyTree(depth - 1, leaf));
  Predicates parts;
  for (int count = *rc::gen::inRange(2, 5); count > 0; --count)
    parts.push_back(anyTree(depth - 1, leaf));
  return compound(choice == 3 ? NSAndPredicateType : NSOrPredicateType, parts);
}

TEST(PredicateProperties, WhatIsPrintedReadsBackAsAnEqualPredicate) {
  EXPECT_TRUE(rc::check([] {
    const auto original = anyTree(4, &anyComparison);
    const auto read = predicate(original->predicateFormat());
    RC_ASSERT(read->isEqual(original.get()));
    RC_ASSERT(read->hash() == original->hash());
    RC_ASSERT(read->predicateFormat() == original->predicateFormat());
  }));
}

/// A record of a till, and conditions on it that are plain code as well. Their texts have one byte
/// a character: 0xE9 is "é".
struct Product {
  std::optional<std::string> name;
  std::optional<int> price;
  std::optional<std::vector<std::string>> tags;
};

struct Condition {
  std::string format;
  std::function<bool(const Product&)> holds;
};

constexpr char kAccented = '\xE9';

std::string utf8(const std::string& text) {
  std::string encoded;
  for (const char c : text)
    encoded += c == kAccented ? std::string("é") : std::string(1, c);
  return encoded;
}

/// `options` is empty or as in a format.
std::string folded(std::string text, std::string_view options) {
  for (char& c : text) {
    if (c == kAccented && options.find('d') != options.npos) c = 'e';
    if (c >= 'A' && c <= 'Z' && options.find('c') != options.npos) c = static_cast<char>(c + 32);
  }
  return text;
}

bool fits(const std::string& text, const std::string& pattern, char joker) {
  return std::ranges::equal(text, pattern,
                            [joker](char c, char p) { return c == p || p == joker; });
}

struct TextOperator {
  std::string_view name;
  bool (*holds)(const std::string& left, const std::string& right);
  char joker = 'a';  ///< what stands for any character on the right, or a plain one
};

constexpr TextOperator kTextOperators[] = {
    {"==", [](const auto& left, const auto& right) { return left == right; }},
    {"!=", [](const auto& left, const auto& right) { return left != right; }},
    {"<", [](const auto& left, const auto& right) { return left < right; }},
    {"<=", [](const auto& left, const auto& right) { return left <= right; }},
    {">", [](const auto& left, const auto& right) { return left > right; }},
    {">=", [](const auto& left, const auto& right) { return left >= right; }},
    {"BEGINSWITH", [](const auto& left, const auto& right) { return left.starts_with(right); }},
    {"ENDSWITH", [](const auto& left, const auto& right) { return left.ends_with(right); }},
    {"CONTAINS", [](const auto& left, const auto& right) { return left.find(right) != left.npos; }},
    {"LIKE", [](const auto& left, const auto& right) { return fits(left, right, '?'); }, '?'},
    {"MATCHES", [](const auto& left, const auto& right) { return fits(left, right, '.'); }, '.'},
};

std::string shortText(char joker = 'a') {
  return *rc::gen::container<std::string>(*rc::gen::inRange<std::size_t>(0, 4),
                                          rc::gen::element('a', 'A', 'e', kAccented, joker));
}

/// A comparison with one text, without what stands on its left.
struct TextComparison {
  std::string format;
  std::function<bool(const std::string& left)> holds;
  bool holdsForAbsent;
};

TextComparison textComparison(const TextOperator& operation) {
  const auto options = *rc::gen::element<std::string>("", "[c]", "[d]", "[cd]");
  const std::string right = shortText(operation.joker);
  return {std::string(operation.name) + options + " '" + utf8(right) + "'",
          [=](const std::string& left) {
            return operation.holds(folded(left, options), folded(right, options));
          },
          operation.name == "!="};
}

TextComparison anyTextComparison() {
  return textComparison(
      kTextOperators[*rc::gen::inRange<std::size_t>(0, std::size(kTextOperators))]);
}

Condition nameCondition(const TextComparison& comparison) {
  return {"name " + comparison.format, [=](const Product& product) {
            return product.name ? comparison.holds(*product.name) : comparison.holdsForAbsent;
          }};
}

Condition anyNameCondition() {
  return nameCondition(anyTextComparison());
}

Condition nameInCondition() {
  const auto options = *rc::gen::element<std::string>("", "[c]", "[d]", "[cd]");
  const std::string first = shortText();
  const std::string second = shortText();
  return {"name IN" + options + " {'" + utf8(first) + "', '" + utf8(second) + "'}",
          [=](const Product& product) {
            if (!product.name) return false;
            const std::string name = folded(*product.name, options);
            return name == folded(first, options) || name == folded(second, options);
          }};
}

Condition tagsCondition() {
  const auto modifier = *rc::gen::element<std::string>("ANY", "SOME", "ALL", "NONE");
  const TextComparison comparison = anyTextComparison();
  return {modifier + " tags " + comparison.format, [=](const Product& product) {
            const auto tags = product.tags.value_or(std::vector<std::string>());
            if (modifier == "ALL") return std::ranges::all_of(tags, comparison.holds);
            return std::ranges::any_of(tags, comparison.holds) == (modifier != "NONE");
          }};
}

Condition priceCondition() {
  const auto operation = *rc::gen::element<std::string>("<", "<=", ">", ">=", "==", "!=");
  const int limit = *rc::gen::inRange(-3, 4);
  return {"price " + operation + " " + std::to_string(limit), [=](const Product& product) {
            if (!product.price) return operation == "!=";
            const int price = *product.price;
            if (operation == "!=") return price != limit;
            if (price == limit) return operation.ends_with('=');
            return operation.starts_with(price < limit ? '<' : '>');
          }};
}

Condition priceRangeCondition() {
  const int from = *rc::gen::inRange(-3, 4);
  const int to = *rc::gen::inRange(-3, 4);
  return {"price BETWEEN {" + std::to_string(from) + ", " + std::to_string(to) + "}",
          [=](const Product& product) {
            return product.price && from <= *product.price && *product.price <= to;
          }};
}

constexpr std::array kConditions = {&anyNameCondition, &nameInCondition, &tagsCondition,
                                    &priceCondition, &priceRangeCondition};

Condition anyCondition() {
  return kConditions[*rc::gen::inRange<std::size_t>(0, kConditions.size())]();
}

/// Conditions joined at random, as text and as code.
Condition anyFormula(int depth) {
  const int choice = depth > 0 ? *rc::gen::inRange(0, 4) : 0;
  if (choice == 0) return anyCondition();
  const Condition a = anyFormula(depth - 1);
  if (choice == 1)
    return {"NOT (" + a.format + ")", [a](const Product& product) { return !a.holds(product); }};
  const Condition b = anyFormula(depth - 1);
  if (choice == 2)
    return {"(" + a.format + ") AND (" + b.format + ")",
            [a, b](const Product& product) { return a.holds(product) && b.holds(product); }};
  return {"(" + a.format + ") OR (" + b.format + ")",
          [a, b](const Product& product) { return a.holds(product) || b.holds(product); }};
}

Ref<NSDictionary> recordOf(const Product& product) {
  NSDictionary::Entries entries;
  if (product.name) entries.emplace(box("name"), box(utf8(*product.name)));
  if (product.price) entries.emplace(box("price"), box(*product.price));
  if (product.tags) {
    std::vector<id> tags;
    for (const std::string& tag : *product.tags)
      tags.push_back(box(utf8(tag)));
    entries.emplace(box("tags"), NSArray::arrayWithObjects(std::move(tags)));
  }
  return std::make_shared<NSDictionary>(std::move(entries));
}

Product anyProduct() {
  Product product;
  if (*rc::gen::inRange(0, 5) > 0) product.name = shortText();
  if (*rc::gen::inRange(0, 5) > 0) product.price = *rc::gen::inRange(-3, 4);
  if (*rc::gen::inRange(0, 5) > 0) {
    product.tags.emplace(*rc::gen::inRange<std::size_t>(0, 3));
    std::ranges::generate(*product.tags, [] { return shortText(); });
  }
  return product;
}

void requireAgreement(const Condition& condition) {
  const auto read = predicate(condition.format);
  for (int i = 0; i < 5; ++i) {
    const Product product = anyProduct();
    RC_ASSERT(read->evaluateWithObject(recordOf(product)) == condition.holds(product));
  }
}

TEST(PredicateProperties, EvaluationAgreesWithPlainCode) {
  EXPECT_TRUE(rc::check([] { requireAgreement(anyFormula(3)); }));
}

TEST(PredicateProperties, EveryTextOperatorAgreesWithPlainCode) {
  for (const TextOperator& operation : kTextOperators)
    EXPECT_TRUE(rc::check([&] { requireAgreement(nameCondition(textComparison(operation))); }))
        << operation.name;
}

TEST(PredicateProperties, EveryKindOfConditionAgreesWithPlainCode) {
  for (const auto condition : kConditions)
    EXPECT_TRUE(rc::check([&] { requireAgreement(condition()); }));
}

TEST(PredicateProperties, SubstitutedVariablesAnswerAsGivenOnes) {
  EXPECT_TRUE(rc::check([] {
    const auto search = predicate("name CONTAINS[c] $S AND price >= $P OR name == $S");
    const auto variables =
        record({{"S", box(utf8(shortText()))}, {"P", box(*rc::gen::inRange(-3, 4))}});
    const auto object = recordOf(anyProduct());
    RC_ASSERT(search->predicateWithSubstitutionVariables(variables)->evaluateWithObject(object) ==
              search->evaluateWithObject(object, variables));
  }));
}

TEST(PredicateProperties, DeMorgan) {
  EXPECT_TRUE(rc::check([] {
    const auto leaf = [] { return predicate(anyCondition().format); };
    const auto negated = [](const Ref<NSPredicate>& part) {
      return Ref<NSPredicate>(NSCompoundPredicate::notPredicateWithSubpredicate(part));
    };
    const Predicates parts = {anyTree(2, leaf), anyTree(2, leaf), anyTree(2, leaf)};
    const Predicates negations = {negated(parts[0]), negated(parts[1]), negated(parts[2])};
    const auto object = recordOf(anyProduct());
    RC_ASSERT(negated(compound(NSAndPredicateType, parts))->evaluateWithObject(object) ==
              compound(NSOrPredicateType, negations)->evaluateWithObject(object));
    RC_ASSERT(negated(compound(NSOrPredicateType, parts))->evaluateWithObject(object) ==
              compound(NSAndPredicateType, negations)->evaluateWithObject(object));
  }));
}

}  // namespace
}  // namespace rvf
