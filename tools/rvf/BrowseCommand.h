// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf browse": prints servers as they come ("+"), change ("=") and go ("-").
void addBrowseCommand(CommandLine& line);

}  // namespace rvf::tool
