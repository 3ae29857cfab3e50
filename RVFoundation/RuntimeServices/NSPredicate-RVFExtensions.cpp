// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSPredicate-RVFExtensions.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/NSArray-RVFPredicateExtensions.h"
#include "RVFoundation/RuntimeServices/NSString-RVFPredicateExtensions.h"

namespace rvf {
namespace {

/// The words of a value; one that is no text does not answer them, and raises so.
std::vector<std::string> wordsOf(const id& value) {
  const auto* text = dynamic_cast<const NSString*>(value.get());
  if (!text) value->doesNotRecognizeSelector(SEL("RVF_wordComponents"));
  return RVF_wordComponents(text->string());
}

bool isVariable(const Ref<NSExpression>& expression) {
  return expression->expressionType() == NSVariableExpressionType;
}

bool hasVariablesOnBothSides(const NSComparisonPredicate& comparison) {
  return isVariable(comparison.leftExpression()) && isVariable(comparison.rightExpression());
}

/// Fills one side, the right one first.
Ref<NSPredicate> filled(const Ref<NSComparisonPredicate>& comparison,
                        const Ref<NSDictionary>& variables) {
  const Ref<NSExpression>& side = isVariable(comparison->rightExpression())
                                      ? comparison->rightExpression()
                                      : comparison->leftExpression();
  const id value =
      isVariable(side) && variables ? variables->objectForKey(side->variable()) : nullptr;
  if (!value) return comparison;
  std::vector<id> parts;
  for (const std::string& word : wordsOf(value))
    parts.push_back(comparison->predicateWithSubstitutionVariables(
        NSDictionary::dictionaryWithEntries({{side->variable(), box(word)}})));
  return RVF_predicateByANDingPredicates(NSArray::arrayWithObjects(std::move(parts)));
}

/// Looks at every entry, so that one that is no text raises wherever it stands.
bool hasTextOfSeveralWords(const NSDictionary& variables) {
  return std::ranges::count_if(variables.entries(), [](const auto& entry) {
           return wordsOf(entry.second).size() > 1;
         }) > 0;
}

Ref<NSPredicate> rewritten(const Ref<NSCompoundPredicate>& compound,
                           const Ref<NSDictionary>& variables) {
  if (!variables || !hasTextOfSeveralWords(*variables))
    return compound->predicateWithSubstitutionVariables(variables);
  std::vector<id> parts;
  for (const id& part : compound->subpredicates()->objects())
    parts.push_back(RVF_predicateWithMultiWordSubstitutionVariables(
        std::static_pointer_cast<NSPredicate>(part), variables));
  return NSCompoundPredicate::initWithType(compound->compoundPredicateType(),
                                           NSArray::arrayWithObjects(std::move(parts)));
}

}  // namespace

Ref<NSPredicate> RVF_predicateWithMultiWordSubstitutionVariables(
    const Ref<NSPredicate>& predicate, const Ref<NSDictionary>& variables) {
  Ref<NSPredicate> current = predicate;
  while (const auto comparison = std::dynamic_pointer_cast<NSComparisonPredicate>(current)) {
    current = filled(comparison, variables);
    if (!hasVariablesOnBothSides(*comparison)) return current;
  }
  const auto compound = std::dynamic_pointer_cast<NSCompoundPredicate>(current);
  return compound ? rewritten(compound, variables) : nullptr;
}

}  // namespace rvf
