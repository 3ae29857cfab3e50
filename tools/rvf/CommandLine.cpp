// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/CommandLine.h"

#include <utility>

#include "Platform/Network/ServiceDiscovery.h"
#include "tools/rvf/BrowseCommand.h"
#include "tools/rvf/ColumnsCommand.h"
#include "tools/rvf/ConnectCommand.h"
#include "tools/rvf/DescribeCommand.h"
#include "tools/rvf/ExpiryCommand.h"
#include "tools/rvf/FilterCommand.h"
#include "tools/rvf/FormatCommand.h"
#include "tools/rvf/LogCommand.h"
#include "tools/rvf/MachineCommand.h"
#include "tools/rvf/NotificationCommands.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/rvf/PeriodCommand.h"
#include "tools/rvf/ResolveCommand.h"
#include "tools/rvf/ServersCommand.h"
#include "tools/rvf/SwipeCommand.h"
#include "tools/rvf/TextCommand.h"
#include "tools/terminal/DiscoveryOption.h"

namespace rvf::tool {
namespace {

void addBackendOption(CLI::App& app) {
  app.add_option_function<std::string>(
         "--backend",
         [](const std::string& word) { ServiceDiscovery::setChoice(discoveryChoices().at(word)); },
         "How services are discovered: through the Avahi daemon, through a stack in the process, "
         "or through the one that there is")
      ->check(isOneOf({"automatic", "daemon", "embedded"}))
      ->type_name("WORD")
      ->default_str("automatic")
      ->trigger_on_parse();
}

void addCommands(CommandLine& line) {
  addBrowseCommand(line);
  addResolveCommand(line);
  addConnectCommand(line);
  addPostCommand(line);
  addObserveCommand(line);
  addSwipeCommand(line);
  addExpiryCommand(line);
  addDescribeCommand(line);
  addFilterCommand(line);
  addFormatCommand(line);
  addTextCommand(line);
  addPeriodCommand(line);
  addColumnsCommand(line);
  addMachineCommand(line);
  addServersCommand(line);
  addLogCommand(line);
}

}  // namespace

CommandLine::CommandLine() : app_("Tools of the RVFoundation library", "rvf") {
  app_.require_subcommand(1);
  app_.fallthrough();
  app_.set_version_flag("--version", RVF_TOOL_VERSION, "Print the version and exit");
  addBackendOption(app_);
  addCommands(*this);
  app_.footer(exitCodeText());  // last: commands would inherit it
}

CLI::App& CommandLine::addCommand(const std::string& name, const std::string& description,
                                  Action action) {
  return addCommand(app_, name, description, std::move(action));
}

CLI::App& CommandLine::addCommand(CLI::App& parent, const std::string& name,
                                  const std::string& description, Action action) {
  CLI::App* command = parent.add_subcommand(name, description);
  command->callback([this, action = std::move(action)] { result_ = action(); });
  return *command;
}

ExitCode CommandLine::run(int argc, const char* const* argv) {
  try {
    app_.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app_.exit(error) == 0 ? ExitCode::ok : ExitCode::usage;
  }
  return result_;
}

}  // namespace rvf::tool
