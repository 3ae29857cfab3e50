// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "RVFoundation/ServerDiscovery/RVFQMServerService.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// A finding, or why there is none.
struct FindResult {
  std::optional<Finding> finding;
  Failure failure;
};

/// Browses until a server of this name (any, if empty) has told its demo flag, then resolves it.
/// Runs the main run loop meanwhile; SIGINT and SIGTERM end it.
FindResult findServer(const std::string& name, double timeoutSeconds);

/// Looks the address of a hand-entered server up.
FindResult findStaticServer(const Ref<RVFStaticServer>& server, double timeoutSeconds);

}  // namespace rvf::tool
