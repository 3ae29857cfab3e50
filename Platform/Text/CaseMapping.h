// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// The text in upper case by the full mappings of Unicode (3.13, R1), the same in every locale:
/// "straße" is "STRASSE", "i" is "I". Bytes that belong to no character stay as they are.
RVF_EXPORT std::string uppercaseText(std::string_view text);

}  // namespace rvf
