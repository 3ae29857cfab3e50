// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSComparisonPredicate.h"

#include <algorithm>
#include <functional>

#include "Platform/Predicates/OperatorNames.h"
#include "Platform/Predicates/PredicateNesting.h"
#include "Platform/Predicates/TextTest.h"
#include "Platform/Predicates/ValueComparison.h"
#include "Platform/Predicates/ValueKinds.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/HashMixing.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSComparisonPredicate::classObject);

struct OpenComparisonPredicate final : NSComparisonPredicate {
  OpenComparisonPredicate(const Ref<NSExpression>& left, const Ref<NSExpression>& right,
                          const NSComparisonOperation& operation)
      : NSComparisonPredicate(left, right, operation) {}
};

std::size_t depthOf(const Ref<NSExpression>& left, const Ref<NSExpression>& right) {
  if (!left || !right)
    NSException::raise(NSInvalidArgumentException, "comparison of an absent expression");
  return nestingAbove(std::max(left->depth(), right->depth()));
}

/// Whether a left text can be asked with a test that is made once.
bool isPreparable(NSPredicateOperatorType type) noexcept {
  return type <= NSEndsWithPredicateOperatorType || type == NSContainsPredicateOperatorType;
}

std::unique_ptr<const PreparedTextTest> preparedTest(const NSExpression& right,
                                                     const NSComparisonOperation& operation) {
  if (right.expressionType() != NSConstantValueExpressionType || !isPreparable(operation.type))
    return nullptr;
  const NSString* text = asText(right.constantValue().get());
  if (!text) return nullptr;
  return std::make_unique<PreparedTextTest>(operation.type, foldingOf(operation.options),
                                            text->string());
}

std::string_view modifierText(NSComparisonPredicateModifier modifier) noexcept {
  if (modifier == NSAllPredicateModifier) return "ALL ";
  return modifier == NSAnyPredicateModifier ? "ANY " : "";
}

}  // namespace

NSComparisonPredicate::NSComparisonPredicate(const Ref<NSExpression>& left,
                                             const Ref<NSExpression>& right,
                                             const NSComparisonOperation& operation)
    : NSPredicate(depthOf(left, right)),
      left_(left),
      right_(right),
      operation_(operation),
      prepared_(preparedTest(*right, operation)) {}

NSComparisonPredicate::~NSComparisonPredicate() = default;

Ref<NSComparisonPredicate> NSComparisonPredicate::initWithLeftExpression(
    const Ref<NSExpression>& left, const Ref<NSExpression>& rightExpression,
    NSComparisonPredicateModifier modifier, NSPredicateOperatorType type, unsigned options) {
  if (type == NSCustomSelectorPredicateOperatorType)
    NSException::raise(NSInvalidArgumentException, "custom comparison without a selector");
  return std::make_shared<OpenComparisonPredicate>(
      left, rightExpression, NSComparisonOperation{type, options, modifier, SEL()});
}

Ref<NSComparisonPredicate> NSComparisonPredicate::initWithLeftExpression(
    const Ref<NSExpression>& left, const Ref<NSExpression>& rightExpression, SEL customSelector) {
  return std::make_shared<OpenComparisonPredicate>(
      left, rightExpression,
      NSComparisonOperation{NSCustomSelectorPredicateOperatorType, 0, NSDirectPredicateModifier,
                            customSelector});
}

Class NSComparisonPredicate::classObject() {
  static const Class kClass =
      ClassBuilder<NSComparisonPredicate>("NSComparisonPredicate", NSPredicate::classObject())
          .method<&NSComparisonPredicate::leftExpression>("leftExpression")
          .method<&NSComparisonPredicate::rightExpression>("rightExpression")
          .method<&NSComparisonPredicate::predicateOperatorType>("predicateOperatorType")
          .method<&NSComparisonPredicate::comparisonPredicateModifier>(
              "comparisonPredicateModifier")
          .method<&NSComparisonPredicate::options>("options")
          .registered();
  return kClass;
}

Class NSComparisonPredicate::isa() const {
  return classObject();
}

bool NSComparisonPredicate::evaluates(const id& object, const Ref<NSDictionary>& variables) const {
  const id left = left_->valueWithObject(object, variables);
  const id right = right_->valueWithObject(object, variables);
  if (operation_.modifier == NSDirectPredicateModifier) return holdsFor(left.get(), right.get());
  const bool isAny = operation_.modifier == NSAnyPredicateModifier;
  if (!presentValue(left.get())) return !isAny;
  if (!isCollection(left.get()))
    NSException::raise(NSInvalidArgumentException,
                       "The left hand side for an ALL or ANY operator must be either an NSArray or "
                       "an NSSet.");
  const bool isFound = anyElement(
      *left, [&](const NSObject* element) { return holdsFor(element, right.get()) == isAny; });
  return isFound == isAny;
}

bool NSComparisonPredicate::holdsFor(const NSObject* leftValue, const NSObject* rightValue) const {
  const NSString* text = prepared_ ? asText(leftValue) : nullptr;
  return text ? prepared_->holdsFor(text->string())
              : comparesValues(operation_, leftValue, rightValue);
}

Ref<NSPredicate> NSComparisonPredicate::substituted(const NSDictionary& variables) {
  const auto left = left_->expressionWithSubstitutionVariables(variables);
  const auto right = right_->expressionWithSubstitutionVariables(variables);
  if (left == left_ && right == right_) return refTo(this);
  return std::make_shared<OpenComparisonPredicate>(left, right, operation_);
}

std::string NSComparisonPredicate::predicateFormat() const {
  const bool isCustom = operation_.type == NSCustomSelectorPredicateOperatorType;
  std::string text(modifierText(operation_.modifier));
  text += left_->description();
  text += ' ';
  text += isCustom ? operation_.customSelector.name() : operatorName(operation_.type);
  text += textOfOptions(operation_.options);
  text += ' ';
  return text += right_->description();
}

bool NSComparisonPredicate::isEqual(const NSObject* other) const {
  if (other == this) return true;
  const auto* comparison = dynamic_cast<const NSComparisonPredicate*>(other);
  return comparison && operation_ == comparison->operation_ &&
         left_->isEqual(comparison->left_.get()) && right_->isEqual(comparison->right_.get());
}

std::size_t NSComparisonPredicate::hash() const {
  return mixedHash(left_->hash() + operation_.type) + right_->hash();
}

}  // namespace rvf
