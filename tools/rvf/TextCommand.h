// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf text": prints what an operation makes of a text, words one a line.
void addTextCommand(CommandLine& line);

}  // namespace rvf::tool
