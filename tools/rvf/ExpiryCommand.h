// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf expiry": reads a typed expiry date and prints month and year, or the error's message and
/// suggestion as they stand.
void addExpiryCommand(CommandLine& line);

}  // namespace rvf::tool
