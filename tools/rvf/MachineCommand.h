// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// "rvf machine": prints the machine's model, memory and TCP send space.
ExitCode machineCommand(bool asJson);

}  // namespace rvf::tool
