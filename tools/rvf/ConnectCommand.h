// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf connect": finds a server, sends it a command and reads its answer as it arrives.
void addConnectCommand(CommandLine& line);

}  // namespace rvf::tool
