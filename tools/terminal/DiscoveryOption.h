// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "Platform/Network/ServiceDiscovery.h"

/// The words of a program's "--backend" option.
inline std::map<std::string, rvf::ServiceDiscoveryChoice> discoveryChoices() {
  return {{"automatic", rvf::ServiceDiscoveryChoice::automatic},
          {"daemon", rvf::ServiceDiscoveryChoice::daemon},
          {"embedded", rvf::ServiceDiscoveryChoice::embedded}};
}
