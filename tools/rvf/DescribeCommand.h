// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// "rvf describe": prints what the runtime knows of a class: superclass, protocols, properties,
/// instance variables and methods of that very class, in the runtime's order.
ExitCode describeCommand(const std::string& className, bool asJson);

}  // namespace rvf::tool
