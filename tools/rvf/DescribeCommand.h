// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf describe": prints what the runtime knows of a class: superclass, protocols, properties,
/// instance variables and methods of that very class, in the runtime's order.
void addDescribeCommand(CommandLine& line);

}  // namespace rvf::tool
