// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// The text with every placeholder "%@(key)" replaced by the dictionary's value for the key, or by
/// nothing if there is none. Keys are taken exactly, blanks included, and hold no ")". An absent
/// dictionary has no values.
///
///     "Hello %@(name)!" with name = "World" is "Hello World!"
///
/// Raises `NSInvalidArgumentException` if a placeholder is not closed.
RVF_EXPORT std::string stringByReplacingPlaceholdersWithDictionaryValues(
    std::string_view text, const Ref<NSDictionary>& dictionary);

}  // namespace rvf
