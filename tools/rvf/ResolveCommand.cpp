// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ResolveCommand.h"

#include <iostream>
#include <memory>
#include <string>

#include "tools/rvf/CommandLine.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/rvf/ServerFinder.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct ResolveOptions {
  std::string name;
  double timeoutSeconds = 10;
  bool asJson = false;
};

ExitCode resolveCommand(const ResolveOptions& options) {
  const FindResult found = findServer(options.name, options.timeoutSeconds);
  if (!found.finding) return report(found.failure, options.asJson);
  if (options.asJson) {
    std::cout << jsonText(jsonOf(*found.finding)) << "\n";
  } else {
    printText(*found.finding);
    for (const Ref<NSData>& address : found.finding->addresses) {
      std::cout << "url          " << baseUrlText(address) << "\n";
    }
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addResolveCommand(CommandLine& line) {
  const auto options = std::make_shared<ResolveOptions>();
  CLI::App& command = line.addCommand("resolve", "Find one server and print its addresses",
                                      [options] { return resolveCommand(*options); });
  command.add_option("NAME", options->name, "The server's name")->required();
  addTimeoutOption(command, options->timeoutSeconds, "Seconds to find the server");
  addJsonFlag(command, options->asJson);
}

}  // namespace rvf::tool
