// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf resolve": finds the server of a name and prints its addresses and base URLs.
void addResolveCommand(CommandLine& line);

}  // namespace rvf::tool
