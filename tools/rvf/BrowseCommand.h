// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct BrowseOptions {
  std::optional<double> seconds;  ///< absent: until interrupted
  bool asJson = false;            ///< one object a line
  bool inColour = false;
};

/// "rvf browse": prints servers as they come ("+"), change ("=") and go ("-").
ExitCode browseCommand(const BrowseOptions& options);

}  // namespace rvf::tool
