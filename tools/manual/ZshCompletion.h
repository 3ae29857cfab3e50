// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/manual/CommandTable.h"

namespace rvf::tool {

/// The tool's completion for zsh: the file "_rvf" of a folder in $fpath.
std::string zshCompletion(const CommandRow& tool);

}  // namespace rvf::tool
