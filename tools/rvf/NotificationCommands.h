// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// Whether a text is the name of a notification: "_NAME._tcp".
bool isNotificationName(std::string_view text);

/// "rvf post": sends one notification. Returns after the ten seconds in which it can be seen,
/// because it lives in this process; at once if the system has no port for it.
ExitCode postCommand(const std::string& name);

struct ObserveOptions {
  std::vector<std::string> names;
  std::optional<double> seconds;  ///< absent: until interrupted
  bool asJson = false;            ///< one object a delivery
};

/// "rvf observe": prints the name of each notification as it is delivered.
ExitCode observeCommand(const ObserveOptions& options);

}  // namespace rvf::tool
