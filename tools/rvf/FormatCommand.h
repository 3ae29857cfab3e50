// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf format": prints nothing but the text of a value, or the value that a text is.
void addFormatCommand(CommandLine& line);

}  // namespace rvf::tool
