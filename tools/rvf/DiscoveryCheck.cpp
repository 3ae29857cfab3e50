// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/DiscoveryCheck.h"

#include "Platform/Network/ServiceDiscovery.h"

namespace rvf::tool {
namespace {

constexpr double kShortestStartSeconds = 0.5;

constexpr const char* kNoDaemon = "no Avahi daemon answers on the system bus";
constexpr const char* kNoStack =
    "the multicast DNS port, 5353, cannot be opened; another program may hold it for itself";

}  // namespace

std::optional<std::string> discoveryProblem(double secondsOfSearch) {
  if (secondsOfSearch < kShortestStartSeconds) return std::nullopt;
  if (ServiceDiscovery::backendOfThisThread()->isResponding()) return std::nullopt;
  const std::string start = "service discovery is unavailable: ";
  switch (ServiceDiscovery::choice()) {
    case ServiceDiscoveryChoice::daemon:
      return start + kNoDaemon;
    case ServiceDiscoveryChoice::embedded:
      return start + kNoStack;
    case ServiceDiscoveryChoice::automatic:
      break;
  }
  return start + kNoDaemon + ", and " + kNoStack;
}

}  // namespace rvf::tool
