// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string_view>

#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Text/Format.h"

namespace rvf {

/// The predicate of a format text, by recursive descent along the grammar at `NSPredicate`. Raises
/// a `PredicateFormatException`.
Ref<NSPredicate> parsedPredicate(std::string_view format,
                                 std::span<const FormatArgument> arguments);

}  // namespace rvf
