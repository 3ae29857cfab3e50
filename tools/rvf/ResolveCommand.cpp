// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ResolveCommand.h"

#include <iostream>

#include "tools/rvf/ServerFinder.h"

namespace rvf::tool {

ExitCode resolveCommand(const std::string& name, double timeoutSeconds, bool asJson) {
  const FindResult found = findServer(name, timeoutSeconds);
  if (!found.finding) {
    complain(found.message);
    return found.code;
  }
  if (asJson) {
    std::cout << jsonText(jsonOf(*found.finding)) << "\n";
  } else {
    printText(*found.finding);
    for (const Ref<NSData>& address : found.finding->addresses) {
      std::cout << "url          " << baseUrlText(address) << "\n";
    }
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace rvf::tool
