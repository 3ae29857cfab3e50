// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf period": prints the boundary day of a period around a date, with its time of day.
void addPeriodCommand(CommandLine& line);

}  // namespace rvf::tool
