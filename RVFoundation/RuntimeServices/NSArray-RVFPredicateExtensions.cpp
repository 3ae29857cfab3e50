// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSArray-RVFPredicateExtensions.h"

#include <utility>
#include <vector>

#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/NSPredicate-RVFExtensions.h"

namespace rvf {
namespace {

Ref<NSPredicate> predicateIn(const id& element) {
  auto predicate = std::dynamic_pointer_cast<NSPredicate>(element);
  if (!predicate) NSException::raise(NSInvalidArgumentException, "element that is no predicate");
  return predicate;
}

Ref<NSPredicate> joined(const Ref<NSArray>& predicates, NSCompoundPredicateType type) {
  if (!predicates || predicates->count() == 0) return nullptr;
  if (predicates->count() == 1) return predicateIn(predicates->firstObject());
  return NSCompoundPredicate::initWithType(type, predicates);
}

}  // namespace

Ref<NSPredicate> RVF_predicateByANDingPredicates(const Ref<NSArray>& predicates) {
  return joined(predicates, NSAndPredicateType);
}

Ref<NSPredicate> RVF_predicateByORingPredicates(const Ref<NSArray>& predicates) {
  return joined(predicates, NSOrPredicateType);
}

Ref<NSArray> RVF_predicatesBySubstitutingVariable(const Ref<NSArray>& predicates,
                                                  std::string_view variable,
                                                  std::string_view multiwordSearchString) {
  if (!predicates) return nullptr;
  const auto variables =
      NSDictionary::dictionaryWithEntries({{variable, box(multiwordSearchString)}});
  std::vector<id> results;
  results.reserve(predicates->count());
  for (const id& element : *predicates)
    results.push_back(
        RVF_predicateWithMultiWordSubstitutionVariables(predicateIn(element), variables));
  return NSArray::arrayWithObjects(std::move(results));
}

}  // namespace rvf
