// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf machine": prints the machine's model, memory and TCP send space.
void addMachineCommand(CommandLine& line);

}  // namespace rvf::tool
