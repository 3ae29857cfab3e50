// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

#include "Platform/Values/NSError.h"

namespace rvf {

/// The deepest that collections of a property list may stand inside one another.
inline constexpr std::size_t kDeepestPropertyList = 256;

/// An error of `NSCocoaErrorDomain` whose "NSDebugDescription" is `problem`, for people who debug.
Ref<NSError> propertyListError(long code, std::string_view problem);

}  // namespace rvf
