// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Network/NSMutableURLRequest.h"
#include "Platform/Network/NSURL.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/NSURLRequest-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"

using namespace rvf;

int main() {
  const auto server = RVFStaticServer::staticServerWithAddress("127.0.0.1:9631");
  Ref<NSURL> base;
  server->resolveUsingCompletion(
      [&](const auto&, const auto& addresses, const Ref<NSError>& error, bool) {
        if (!error) base = NSURL_RVFExtensions::RVF_CURLURLWithAddressData(addresses->front());
        NSRunLoop::mainRunLoop()->stop();
      });
  NSRunLoop::mainRunLoop()->run();
  if (!base) return 1;

  const auto url = relativeURLWithFormat(base, "api/orders/%d/close", 7);
  const auto command = NSURLRequest_RVFExtensions::RVF_postCommandWithURL(url);
  std::cout << command->HTTPMethod() << ' ' << command->URL()->absoluteString() << '\n';
}
