// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf servers": the list of hand-entered servers in the user defaults of this tool.
void addServersCommand(CommandLine& line);

}  // namespace rvf::tool
