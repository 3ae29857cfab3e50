// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Fills the variables of comparisons with texts, one comparison a word (see `RVF_wordComponents`),
/// joined by AND. With {S: "red shoe"}, `name CONTAINS[cd] $S` becomes
///
///     name CONTAINS[cd] "red" AND name CONTAINS[cd] "shoe"
///
/// In a comparison the right side is filled if it is a variable, else the left one; if both are,
/// the right and then the left. A variable without an entry stays. A comparison without variables
/// is itself. A compound is rewritten part by part if any text of the dictionary has two words or
/// more; else it is what `predicateWithSubstitutionVariables` makes of it.
///
/// Absent for any other predicate, for example a constant or a block, and for an absent one.
///
/// Raises `NSInvalidArgumentException` for such a predicate inside a compound that is rewritten
/// part by part, and for an entry that is no text: that of a comparison's variable, and any entry
/// of the dictionary for a compound. A compound needs a dictionary, else it raises the same.
///
/// Never returns for a comparison of two variables if the dictionary has no entry for the right
/// one: supply one for every variable on a right side.
RVF_EXPORT Ref<NSPredicate> RVF_predicateWithMultiWordSubstitutionVariables(
    const Ref<NSPredicate>& predicate, const Ref<NSDictionary>& variables);

}  // namespace rvf
