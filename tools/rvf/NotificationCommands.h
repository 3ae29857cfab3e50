// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf post": sends one notification. Returns after the ten seconds in which it can be seen,
/// because it lives in this process; at once if the system has no port for it.
void addPostCommand(CommandLine& line);
/// "rvf observe": prints the name of each notification as it is delivered.
void addObserveCommand(CommandLine& line);

}  // namespace rvf::tool
