// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

DiscoveryActivity::~DiscoveryActivity() = default;
PublishActivity::~PublishActivity() = default;
ServiceDiscoveryBackend::~ServiceDiscoveryBackend() = default;

}  // namespace rvf
