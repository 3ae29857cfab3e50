// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Values/NSArray.h"

namespace rvf {

/// The predicates joined in their order: one is itself, none is absent, and so is an absent array.
/// Raises `NSInvalidArgumentException` for an element that is no predicate.
RVF_EXPORT Ref<NSPredicate> RVF_predicateByANDingPredicates(const Ref<NSArray>& predicates);
RVF_EXPORT Ref<NSPredicate> RVF_predicateByORingPredicates(const Ref<NSArray>& predicates);

/// What `RVF_predicateWithMultiWordSubstitutionVariables` makes of each predicate with this one
/// variable, in their order. Absent for an absent array.
///
/// Raises what it raises, and `NSInvalidArgumentException` where it answers absent.
RVF_EXPORT Ref<NSArray> RVF_predicatesBySubstitutingVariable(
    const Ref<NSArray>& predicates, std::string_view variable,
    std::string_view multiwordSearchString);

}  // namespace rvf
