// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "RVFoundation/RuntimeServices/RVFTestingUserDefaults.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"

using namespace rvf;

int main() {
  const Ref<NSUserDefaults> defaults = RVFTestingUserDefaults::testingDefaults();
  defaults->setInteger(3, "till");
  defaults->synchronize();
  std::cout << defaults->integerForKey("till") << '\n';

  RVFStaticServerList list(defaults);
  const auto server = RVFStaticServer::staticServerWithAddress("till.example:8080");
  server->setServerDescription(list.nextUntitledServerName());
  list.addServer(server);
  std::cout << list.serverAtIndex(0)->displayName() << '\n';
}
