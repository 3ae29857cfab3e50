// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

namespace rvf::tool {

/// How long discovery may take to start, in seconds, before it is called unavailable.
inline constexpr double kDiscoveryStartSeconds = 3;

/// Why nothing can be discovered; absent if the network can be asked, or if the search is so young,
/// half a second, that this is no wonder. For the thread that has a search under way.
std::optional<std::string> discoveryProblem(double secondsOfSearch = kDiscoveryStartSeconds);

}  // namespace rvf::tool
