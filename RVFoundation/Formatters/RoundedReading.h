// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// Reads an amount or a quantity as users type it, with `getObjectValue`'s contract: the empty text
/// is zero, and what `formatter` reads is rounded to two decimals, halves away from zero, whatever
/// way the formatter rounds what it shows. An absent formatter reads only the empty text.
bool readRounded(const Ref<NSNumberFormatter>& formatter, id* object, std::string_view text,
                 std::string* errorDescription);

}  // namespace rvf
