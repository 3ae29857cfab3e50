// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf log": writes one message to the system log, or each line of standard input as it comes.
void addLogCommand(CommandLine& line);

}  // namespace rvf::tool
