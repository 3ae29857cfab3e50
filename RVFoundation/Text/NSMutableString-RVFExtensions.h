// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"

namespace rvf {

/// Appends a line feed to a text that is not empty and does not end in one.
RVF_EXPORT void appendNewLineIfNeeded(std::string& text);

}  // namespace rvf
