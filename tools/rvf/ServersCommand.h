// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct ServersOptions {
  /// Instead of $XDG_CONFIG_HOME or ~/.config.
  std::optional<std::string> configurationFolder;
  std::string address;
  std::optional<std::string> description;  ///< absent: the next untitled name
  std::size_t index = 0;
  double timeoutSeconds = 10;
  bool asJson = false;
};

/// "rvf servers": the list of hand-entered servers in the user defaults of this tool.

/// "list": one line a server, or one JSON array.
ExitCode listServersCommand(const ServersOptions& options);
/// "add" and "insert", "remove": change the list, with other processes locked out, and print the
/// server that was added or removed.
ExitCode addServerCommand(const ServersOptions& options);
ExitCode insertServerCommand(const ServersOptions& options);
ExitCode removeServerCommand(const ServersOptions& options);
/// "resolve": looks up the address of one of them.
ExitCode resolveServerCommand(const ServersOptions& options);

}  // namespace rvf::tool
