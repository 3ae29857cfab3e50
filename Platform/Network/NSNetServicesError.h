// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Keys of the failure dictionary that discovery delegates receive: a number and a text. Errors
/// made from it have the text "NSNetServicesErrorDomain" as domain.
inline constexpr std::string_view NSNetServicesErrorCode = "NSNetServicesErrorCode";
inline constexpr std::string_view NSNetServicesErrorDomain = "NSNetServicesErrorDomain";

/// Why a discovery operation failed.
enum class NSNetServicesError : long {
  unknown = -72000,
  collision = -72001,
  notFound = -72002,
  activityInProgress = -72003,
  badArgument = -72004,
  cancelled = -72005,
  invalid = -72006,
  timeout = -72007,
};

/// What a discovery delegate is given for this failure.
RVF_EXPORT Ref<NSDictionary> failureDictionary(NSNetServicesError error);

}  // namespace rvf
