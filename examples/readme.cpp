// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Network/NSURL.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/ServerDiscovery/NSNetService-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"

using namespace rvf;

// Prints the base URL of the first server that answers. README.md shows the body of this function;
// a test sees to it that both are the same.
int main() {
  const auto browser = RVFQMServerServiceBrowser::serviceBrowser();
  browser->startBrowsingWithServiceListChangedHandler([](const auto& found, auto&, auto&) {
    if (!found) return;
    RVF_resolveWithTimeout(
        found->mainService(), 5, [](const auto& service, const auto& error, bool wasStopped) {
          if (error || wasStopped) return;  // no answer: wait for another server
          const auto address = service->addresses().front();
          const auto url = NSURL_RVFExtensions::RVF_CURLURLWithAddressData(address);
          std::cout << url->absoluteString() << '\n';  // https://192.168.1.10:9630/
          NSRunLoop::mainRunLoop()->stop();
        });
  });
  NSRunLoop::mainRunLoop()->run();
  browser->stop();
}
