// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// "rvf resolve": finds the server of this name and prints its addresses and base URLs.
ExitCode resolveCommand(const std::string& name, double timeoutSeconds, bool asJson);

}  // namespace rvf::tool
