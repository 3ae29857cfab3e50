// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// An error of `RVFErrorDomain` whose user info holds the message as its description and, if there
/// is one, the suggestion as its recovery suggestion. Both are for the user, already translated.
///
/// An absent message is a fatal assertion: the process stops.
RVF_EXPORT Ref<NSError> ErrorWithCode(long code, std::optional<std::string_view> message,
                                      std::optional<std::string_view> suggestion = std::nullopt);

}  // namespace rvf
