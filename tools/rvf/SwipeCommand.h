// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf swipe": reads card swipes from standard input, one a line as a keyboard-wedge reader types
/// them, and prints their fields.
void addSwipeCommand(CommandLine& line);

}  // namespace rvf::tool
