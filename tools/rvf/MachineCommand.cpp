// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/MachineCommand.h"

#include <iostream>

#include "RVFoundation/PlatformUtilities/RVFHardwareInfo.h"
#include "tools/rvf/Finding.h"

namespace rvf::tool {

ExitCode machineCommand(bool asJson) {
  const RVFHardwareInfo info;
  const std::string model = info.hardwareModel();
  const auto megabytes = info.ramInMegabytes()->longLongValue();
  const auto sendSpace = info.tcpSendSpace()->longLongValue();
  if (asJson) {
    std::cout << jsonText({{"hardwareModel", model},
                           {"ramInMegabytes", megabytes},
                           {"tcpSendSpace", sendSpace}})
              << "\n";
  } else {
    std::cout << "model            " << printable(model) << "\nmemory           " << megabytes
              << " MiB\ntcp send space   " << sendSpace << " bytes\n";
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace rvf::tool
