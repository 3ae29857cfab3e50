// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct ConnectOptions {
  std::string name;                          ///< the server to find; empty: the first that is found
  std::optional<std::string> staticAddress;  ///< a hand-entered address instead of browsing
  std::string command = "catalogue";
  std::string authorityFile;
  double timeoutSeconds = 10;
  bool asJson = false;
};

/// "rvf connect": finds a server, sends it a command and reads its answer as it arrives.
ExitCode connectCommand(const ConnectOptions& options);

}  // namespace rvf::tool
