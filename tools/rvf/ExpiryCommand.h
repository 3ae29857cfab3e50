// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// "rvf expiry": reads a typed expiry date and prints month and year, or the error's message and
/// suggestion as they stand.
ExitCode expiryCommand(const std::string& text, bool asJson);

}  // namespace rvf::tool
