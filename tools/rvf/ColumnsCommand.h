// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf columns": prints the widths, growing and order of a table's column.
void addColumnsCommand(CommandLine& line);

}  // namespace rvf::tool
