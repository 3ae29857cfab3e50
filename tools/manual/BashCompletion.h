// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/manual/CommandTable.h"

namespace rvf::tool {

/// The tool's completion for bash. It needs nothing but the shell itself.
std::string bashCompletion(const CommandRow& tool);

}  // namespace rvf::tool
