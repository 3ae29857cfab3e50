// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/MachineCommand.h"

#include <iostream>
#include <memory>

#include "RVFoundation/PlatformUtilities/RVFHardwareInfo.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

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

}  // namespace

void addMachineCommand(CommandLine& line) {
  const auto asJson = std::make_shared<bool>(false);
  CLI::App& command =
      line.addCommand("machine", "Print the machine's model, memory and TCP send space",
                      [asJson] { return machineCommand(*asJson); });
  addJsonFlag(command, *asJson);
}

}  // namespace rvf::tool
