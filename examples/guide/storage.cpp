// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <fstream>
#include <iostream>

#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSDictionary.h"
#include "RVFoundation/PlatformUtilities/NSFileHandle-RVFExtensions.h"
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

  const auto damaged = NSData::dataWithBytes("{ till = 3");
  Ref<NSError> problem;
  if (!NSPropertyListSerialization::propertyListWithData(damaged, nullptr, &problem))
    std::cout << problem->userInfo()->objectForKey("NSDebugDescription")->description() << '\n';

  std::string path;
  Ref<NSError> error;
  const auto file =
      NSFileHandle_RVFExtensions::RVF_fileHandleForTemporaryFileUsingFilePath(&path, &error);
  if (!file) return 1;
  std::ofstream(path) << "receipt 7";
  std::cout << RVF_availableByteCountNonBlocking(file) << '\n';
  const auto start = readDataOfLengthNonBlocking(file, 7);
  std::cout << start->characters() << '\n';
  std::filesystem::remove(path);
}
