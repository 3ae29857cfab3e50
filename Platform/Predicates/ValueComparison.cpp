// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/ValueComparison.h"

#include "Platform/Predicates/TextTest.h"
#include "Platform/Predicates/ValueKinds.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

/// A message needs a receiver that it may change; values are compared, not changed.
NSObject& receiver(const NSObject& value) {
  return const_cast<NSObject&>(value);
}

[[noreturn]] void raiseIncomparable(const NSObject& left, const NSObject& right) {
  NSException::raise(NSInvalidArgumentException,
                     stringWithFormat("Can't compare %@ with %@", class_getName(left.isa()),
                                      class_getName(right.isa())));
}

/// Negative, 0 or positive, of two values that are not both texts.
long orderOf(const NSObject& left, const NSObject& right) {
  const auto* leftNumber = dynamic_cast<const NSNumber*>(&left);
  const auto* rightNumber = dynamic_cast<const NSNumber*>(&right);
  if (leftNumber && rightNumber) return leftNumber->compare(*rightNumber);
  const auto* leftDate = dynamic_cast<const NSDate*>(&left);
  const auto* rightDate = dynamic_cast<const NSDate*>(&right);
  if (leftDate && rightDate) {
    const double difference =
        leftDate->timeIntervalSinceReferenceDate() - rightDate->timeIntervalSinceReferenceDate();
    return difference < 0 ? -1 : difference > 0 ? 1 : 0;
  }
  static const SEL kCompare("compare:");
  if (!left.respondsToSelector(kCompare)) raiseIncomparable(left, right);
  return send<long>(receiver(left), kCompare, refTo(&receiver(right)));
}

bool holdsForOrder(NSPredicateOperatorType type, long order) {
  switch (type) {
    case NSLessThanPredicateOperatorType:
      return order < 0;
    case NSLessThanOrEqualToPredicateOperatorType:
      return order <= 0;
    case NSGreaterThanPredicateOperatorType:
      return order > 0;
    default:
      return order >= 0;
  }
}

bool areOrdered(NSPredicateOperatorType type, TextFolding folding, const NSObject& left,
                const NSObject& right) {
  const NSString* leftText = asText(&left);
  const NSString* rightText = asText(&right);
  if (leftText && rightText)
    return comparesTexts(type, folding, leftText->string(), rightText->string());
  return holdsForOrder(type, orderOf(left, right));
}

/// Null is equal to null only.
bool areEqual(TextFolding folding, const NSObject* left, const NSObject* right) {
  left = presentValue(left);
  right = presentValue(right);
  if (!left || !right) return left == right;
  const NSString* leftText = asText(left);
  const NSString* rightText = asText(right);
  if (leftText && rightText)
    return comparesTexts(NSEqualToPredicateOperatorType, folding, leftText->string(),
                         rightText->string());
  return left->isEqual(right);
}

bool comparesAsTexts(NSPredicateOperatorType type, TextFolding folding, const NSObject& left,
                     const NSObject& right) {
  const NSString* leftText = asText(&left);
  const NSString* rightText = asText(&right);
  if (!leftText || !rightText)
    NSException::raise(NSInvalidArgumentException,
                       stringWithFormat("Can't use a text operator with %@ and %@",
                                        class_getName(left.isa()), class_getName(right.isa())));
  return comparesTexts(type, folding, leftText->string(), rightText->string());
}

bool contains(TextFolding folding, const NSObject& container, const NSObject& value) {
  if (isCollection(&container))
    return anyElement(container,
                      [&](const NSObject* element) { return areEqual(folding, element, &value); });
  return comparesAsTexts(NSContainsPredicateOperatorType, folding, container, value);
}

bool isBetween(TextFolding folding, const NSObject& value, const NSObject& limits) {
  const auto* pair = dynamic_cast<const NSArray*>(&limits);
  if (!pair || pair->count() != 2)
    NSException::raise(NSInvalidArgumentException, "BETWEEN needs an array of two limits");
  const NSObject* lower = presentValue(pair->objects().front().get());
  const NSObject* upper = presentValue(pair->objects().back().get());
  return lower && upper &&
         areOrdered(NSGreaterThanOrEqualToPredicateOperatorType, folding, value, *lower) &&
         areOrdered(NSLessThanOrEqualToPredicateOperatorType, folding, value, *upper);
}

/// Of operators that fail with an absent side.
bool comparesPresent(const NSComparisonOperation& operation, const NSObject& left,
                     const NSObject& right) {
  const TextFolding folding = foldingOf(operation.options);
  switch (operation.type) {
    case NSLessThanPredicateOperatorType:
    case NSLessThanOrEqualToPredicateOperatorType:
    case NSGreaterThanPredicateOperatorType:
    case NSGreaterThanOrEqualToPredicateOperatorType:
      return areOrdered(operation.type, folding, left, right);
    case NSInPredicateOperatorType:
      return contains(folding, right, left);
    case NSContainsPredicateOperatorType:
      return contains(folding, left, right);
    case NSBetweenPredicateOperatorType:
      return isBetween(folding, left, right);
    case NSCustomSelectorPredicateOperatorType:
      return send<bool>(receiver(left), operation.customSelector, refTo(&receiver(right)));
    default:
      return comparesAsTexts(operation.type, folding, left, right);
  }
}

}  // namespace

bool comparesValues(const NSComparisonOperation& operation, const NSObject* left,
                    const NSObject* right) {
  if (operation.type == NSEqualToPredicateOperatorType)
    return areEqual(foldingOf(operation.options), left, right);
  if (operation.type == NSNotEqualToPredicateOperatorType)
    return !areEqual(foldingOf(operation.options), left, right);
  left = presentValue(left);
  right = presentValue(right);
  return left && right && comparesPresent(operation, *left, *right);
}

}  // namespace rvf
