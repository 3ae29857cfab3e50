// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Whether a comparison holds for two values, whatever its modifier; null is absent. Raises as
/// `NSComparisonPredicate` says.
bool comparesValues(const NSComparisonOperation& operation, const NSObject* left,
                    const NSObject* right);

}  // namespace rvf
