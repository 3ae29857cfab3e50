// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/PredicateNesting.h"

#include "Platform/Runtime/NSException.h"

namespace rvf {

std::size_t nestingAbove(std::size_t deepestChild) {
  if (deepestChild >= kDeepestPredicate)
    NSException::raise(NSInvalidArgumentException, "predicate that nests deeper than 1000 levels");
  return deepestChild + 1;
}

}  // namespace rvf
