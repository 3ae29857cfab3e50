// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSExpression.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Predicates/PredicateNesting.h"
#include "Platform/Predicates/PredicateText.h"
#include "Platform/Predicates/ValueKinds.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/HashMixing.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSExpression::classObject);

const NSExpression& expressionIn(const id& object) {
  const auto* expression = dynamic_cast<const NSExpression*>(object.get());
  if (!expression)
    NSException::raise(NSInvalidArgumentException,
                       "collection of expressions with an object of "
                       "another class");
  return *expression;
}

id orNull(id value) {
  return value ? std::move(value) : NSNull::null();
}

id absentIfNull(id value) {
  return presentValue(value.get()) ? std::move(value) : nullptr;
}

}  // namespace

Ref<NSExpression> NSExpression::expressionForConstantValue(const id& object) {
  auto expression = std::make_shared<NSExpression>(Key(), NSConstantValueExpressionType);
  expression->constant_ = object;
  return expression;
}

Ref<NSExpression> NSExpression::expressionForEvaluatedObject() {
  return std::make_shared<NSExpression>(Key(), NSEvaluatedObjectExpressionType);
}

Ref<NSExpression> NSExpression::expressionForVariable(std::string_view name) {
  auto expression = std::make_shared<NSExpression>(Key(), NSVariableExpressionType);
  expression->name_ = name;
  expression->hasVariables_ = true;
  return expression;
}

Ref<NSExpression> NSExpression::expressionForKeyPath(std::string_view keyPath) {
  auto expression = std::make_shared<NSExpression>(Key(), NSKeyPathExpressionType);
  expression->name_ = keyPath;
  expression->isDirectKey_ = keyPath.find('.') == std::string_view::npos;
  return expression;
}

Ref<NSExpression> NSExpression::expressionForAggregate(const Ref<NSArray>& expressions) {
  auto expression = std::make_shared<NSExpression>(Key(), NSAggregateExpressionType);
  expression->adopt(expressions);
  const bool isConstant = std::ranges::all_of(expression->elements_->objects(), [](const id& part) {
    const NSExpression& element = expressionIn(part);
    return element.type_ == NSConstantValueExpressionType ||
           (element.type_ == NSAggregateExpressionType && element.constant_);
  });
  if (isConstant) expression->constant_ = expression->valuesOfElements(nullptr, nullptr);
  return expression;
}

Ref<NSExpression> NSExpression::expressionForBlock(Block block, const Ref<NSArray>& arguments) {
  if (!block) NSException::raise(NSInvalidArgumentException, "expression of an empty block");
  auto expression = std::make_shared<NSExpression>(Key(), NSBlockExpressionType);
  expression->adopt(arguments ? arguments : NSArray::array());
  expression->block_ = std::move(block);
  return expression;
}

/// Takes a copy, because the array may be one that changes.
void NSExpression::adopt(const Ref<NSArray>& expressions) {
  if (!expressions) NSException::raise(NSInvalidArgumentException, "absent array of expressions");
  elements_ = NSArray::arrayWithObjects(expressions->objects());
  std::size_t deepest = 0;
  for (const id& object : elements_->objects()) {
    const NSExpression& element = expressionIn(object);
    deepest = std::max(deepest, element.depth_);
    hasVariables_ = hasVariables_ || element.hasVariables_;
  }
  depth_ = nestingAbove(deepest);
}

Class NSExpression::classObject() {
  static const Class kClass = ClassBuilder<NSExpression>("NSExpression", NSObject::classObject())
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSExpression::isa() const {
  return classObject();
}

void NSExpression::require(NSExpressionType type, std::string_view part) const {
  if (type_ == type) return;
  NSException::raise(NSInvalidArgumentException,
                     stringWithFormat("the expression %@ has no %@", description(), part));
}

const id& NSExpression::constantValue() const {
  require(NSConstantValueExpressionType, "constant value");
  return constant_;
}

const std::string& NSExpression::variable() const {
  require(NSVariableExpressionType, "variable");
  return name_;
}

const std::string& NSExpression::keyPath() const {
  require(NSKeyPathExpressionType, "key path");
  return name_;
}

const Ref<NSArray>& NSExpression::collection() const {
  require(NSAggregateExpressionType, "collection");
  return elements_;
}

const Ref<NSArray>& NSExpression::arguments() const {
  require(NSBlockExpressionType, "arguments");
  return elements_;
}

const NSExpression::Block& NSExpression::expressionBlock() const {
  require(NSBlockExpressionType, "block");
  return block_;
}

id NSExpression::expressionValueWithObject(const id& object,
                                           const Ref<NSDictionary>& context) const {
  const auto alive = weak_from_this().lock();
  return valueWithObject(object, context);
}

id NSExpression::valueWithObject(const id& object, const Ref<NSDictionary>& context) const {
  switch (type_) {
    case NSEvaluatedObjectExpressionType:
      return object;
    case NSVariableExpressionType:
      return valueOfVariable(context);
    case NSKeyPathExpressionType:
      return valueOfKeyPath(object);
    case NSAggregateExpressionType:
      return constant_ ? constant_ : valuesOfElements(object, context);
    case NSBlockExpressionType:
      return block_(object, valuesOfElements(object, context), context);
    default:
      return constant_;
  }
}

id NSExpression::valueOfVariable(const Ref<NSDictionary>& context) const {
  id value = context ? context->objectForKey(name_) : nullptr;
  if (!value)
    NSException::raise(NSInvalidArgumentException,
                       "the variable $" + name_ + " has no value in this evaluation");
  return absentIfNull(std::move(value));
}

id NSExpression::valueOfKeyPath(const id& object) const {
  if (!object) return nullptr;
  return isDirectKey_ ? valueForKey(*object, name_) : valueForKeyPath(*object, name_);
}

Ref<NSArray> NSExpression::valuesOfElements(const id& object,
                                            const Ref<NSDictionary>& context) const {
  std::vector<id> values;
  values.reserve(elements_->count());
  for (const id& element : elements_->objects())
    values.push_back(orNull(expressionIn(element).valueWithObject(object, context)));
  return NSArray::arrayWithObjects(std::move(values));
}

Ref<NSExpression> NSExpression::self() const {
  return refTo(
      const_cast<NSExpression*>(this));  // immutable: nothing changes it through the result
}

Ref<NSExpression> NSExpression::expressionWithSubstitutionVariables(
    const NSDictionary& variables) const {
  if (!hasVariables_) return self();
  if (type_ == NSVariableExpressionType) {
    id value = variables.objectForKey(name_);
    return value ? expressionForConstantValue(absentIfNull(std::move(value))) : self();
  }
  std::vector<id> elements;
  for (const id& element : elements_->objects())
    elements.push_back(expressionIn(element).expressionWithSubstitutionVariables(variables));
  if (elements == elements_->objects()) return self();
  const auto replaced = NSArray::arrayWithObjects(std::move(elements));
  return type_ == NSBlockExpressionType ? expressionForBlock(block_, replaced)
                                        : expressionForAggregate(replaced);
}

bool NSExpression::isEqual(const NSObject* other) const {
  if (other == this) return true;
  const auto* expression = dynamic_cast<const NSExpression*>(other);
  if (!expression || expression->type_ != type_ || type_ == NSBlockExpressionType) return false;
  if (type_ == NSConstantValueExpressionType)
    return objectsAreEqual(constant_, expression->constant_);
  return name_ == expression->name_ && objectsAreEqual(elements_, expression->elements_);
}

std::size_t NSExpression::hash() const {
  if (type_ == NSBlockExpressionType) return NSObject::hash();
  if (type_ == NSConstantValueExpressionType) return constant_ ? constant_->hash() : 0;
  return mixedHash(std::hash<std::string>()(name_) + type_) + (elements_ ? elements_->hash() : 0);
}

std::string NSExpression::description() const {
  switch (type_) {
    case NSEvaluatedObjectExpressionType:
      return "SELF";
    case NSVariableExpressionType:
      return "$" + name_;
    case NSKeyPathExpressionType:
      return textOfKeyPath(name_);
    case NSAggregateExpressionType:
      return textOfElements("{", "}");
    case NSBlockExpressionType:
      return textOfElements(stringWithFormat("BLOCK(%p", static_cast<const void*>(this)), ")");
    default:
      return textOfConstant(constant_.get());
  }
}

std::string NSExpression::textOfElements(std::string start, std::string_view end) const {
  const char* separator = type_ == NSBlockExpressionType ? ", " : "";
  for (const id& element : elements_->objects()) {
    (start += separator) += element->description();
    separator = ", ";
  }
  return start += end;
}

}  // namespace rvf
