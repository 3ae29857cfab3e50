// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "Platform/Export.h"
#include "Platform/Predicates/NSPredicate.h"

namespace rvf {

/// Gets a predicate of a tree, and whether it is a compound one.
using RVFPredicateHandler = std::function<void(const Ref<NSPredicate>& predicate, bool isCompound)>;

/// Walks a tree of predicates depth first: calls the first handler with a predicate before its
/// parts and the second one after them, parts in their order. For `A AND (B OR C)` the first gets
/// the AND, A, the OR, B, C, the second A, B, C, the OR, the AND.
///
/// Either handler may be empty. They are called before this returns, on the caller's stack, and may
/// do anything, to what they are stored in as well. An absent predicate is not visited.
RVF_EXPORT void visitSubpredicatesWithPreOrderPredicateHandler(
    const Ref<NSPredicate>& predicate, RVFPredicateHandler preOrderPredicateHandler,
    RVFPredicateHandler postOrderPredicateHandler);

}  // namespace rvf
