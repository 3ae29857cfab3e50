// SPDX-License-Identifier: Apache-2.0
//
// The command-line tool: the library's operations for people and scripts.

#include <curl/curl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

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
#include "tools/rvf/PeriodCommand.h"
#include "tools/rvf/ResolveCommand.h"
#include "tools/rvf/ServersCommand.h"
#include "tools/rvf/SwipeCommand.h"
#include "tools/rvf/TextCommand.h"
#include "tools/terminal/CapableTerminal.h"
#include "tools/terminal/DiscoveryOption.h"
#include "tools/terminal/ExitCode.h"

namespace {

using rvf::tool::BrowseOptions;
using rvf::tool::ColumnsOptions;
using rvf::tool::ConnectOptions;
using rvf::tool::FilterOptions;
using rvf::tool::FormatOptions;
using rvf::tool::LogOptions;
using rvf::tool::ObserveOptions;
using rvf::tool::PeriodOptions;
using rvf::tool::ServersOptions;
using rvf::tool::SwipeOptions;
using rvf::tool::TextOptions;

constexpr const char* kFooter =
    "Exit codes: 0 done, 64 wrong usage, 65 the answer is no well-formed gzip XML, there is no\n"
    "such class, or a swipe, date, value, text, record or property list cannot be read, 66 a\n"
    "named file or standard input cannot be read, 68 no such server, 69 discovery, server or\n"
    "system log unavailable, 70 internal error, 73 the list of servers could not be saved, 74\n"
    "output failed, 75 out of time, 76 TLS or HTTP failed.";

/// https://no-color.org: any value that is not empty switches colour off.
bool wantsColour() {
  const char* noColour = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): one thread yet
  return isCapableTerminal(STDOUT_FILENO) && (!noColour || std::string_view(noColour).empty());
}

/// Refuses what no timer can wait for: text, less than nothing, infinity, no number.
CLI::Validator isDuration() {
  return {[](std::string& text) -> std::string {
            char* end = nullptr;
            const double seconds = std::strtod(text.c_str(), &end);
            const bool isRead = end != text.c_str() && *end == '\0';
            if (isRead && std::isfinite(seconds) && seconds >= 0) return {};
            return "\"" + text + "\" is no number of seconds";
          },
          "SECONDS"};
}

/// The same for what must not be over at once.
CLI::Validator isTimeout() {
  return {[](std::string& text) -> std::string {
            std::string problem = isDuration()(text);
            if (problem.empty() && std::strtod(text.c_str(), nullptr) == 0) {
              problem = "the time must be longer than 0 seconds";
            }
            return problem;
          },
          "SECONDS"};
}

void addBrowse(CLI::App& app, BrowseOptions& options, ExitCode& result) {
  auto* command =
      app.add_subcommand("browse", "List the servers of the network as they come and go");
  command->add_flag("--json", options.asJson, "One JSON object a line");
  command
      ->add_option("--for", options.seconds,
                   "Stop after this many seconds; default: when interrupted")
      ->check(isDuration());
  command->callback([&] { result = rvf::tool::browseCommand(options); });
}

void addResolve(CLI::App& app, ConnectOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand("resolve", "Find one server and print its addresses");
  command->add_option("NAME", options.name, "The server's name")->required();
  command->add_flag("--json", options.asJson, "Print a JSON object");
  command->add_option("--timeout", options.timeoutSeconds, "Seconds")
      ->check(isTimeout())
      ->capture_default_str();
  command->callback([&] {
    result = rvf::tool::resolveCommand(options.name, options.timeoutSeconds, options.asJson);
  });
}

void addConnect(CLI::App& app, ConnectOptions& options, ExitCode& result) {
  auto* command =
      app.add_subcommand("connect", "Find a server, send it a command and read its answer");
  auto* name = command->add_option("NAME", options.name, "The server's name; default: the first");
  command
      ->add_option("--static", options.staticAddress, "A hand-entered address instead of browsing")
      ->excludes(name);
  command->add_option("--command", options.command, "The command's path")->capture_default_str();
  command->add_option("--ca-file", options.authorityFile,
                      "Certificate authority to verify against (PEM); default: the system's");
  command->add_option("--timeout", options.timeoutSeconds, "Seconds to find the server")
      ->check(isTimeout())
      ->capture_default_str();
  command->add_flag("--json", options.asJson, "Print a JSON object");
  command->callback([&] { result = rvf::tool::connectCommand(options); });
}

/// Notifications are DNS-SD service types: what is none would be sent to nobody, silently.
CLI::Validator isNotification() {
  return {[](std::string& text) -> std::string {
            if (rvf::tool::isNotificationName(text)) return {};
            return "\"" + text + "\" is no notification name; these are like _menu-changed._tcp";
          },
          "_NAME._tcp"};
}

void addPost(CLI::App& app, std::string& name, ExitCode& result) {
  auto* command = app.add_subcommand(
      "post",
      "Send a notification to the network; takes the ten seconds in which it can be received");
  command->add_option("NAME", name, "The notification, a DNS-SD service type")
      ->required()
      ->check(isNotification());
  command->callback([&] { result = rvf::tool::postCommand(name); });
}

void addObserve(CLI::App& app, ObserveOptions& options, ExitCode& result) {
  auto* command =
      app.add_subcommand("observe", "Print the notifications of these names as they are delivered");
  command->add_option("NAME", options.names, "The notifications, DNS-SD service types")
      ->required()
      ->check(isNotification());
  command->add_flag("--json", options.asJson, "One JSON object a delivery");
  command
      ->add_option("--for", options.seconds,
                   "Stop after this many seconds; default: when interrupted")
      ->check(isDuration());
  command->callback([&] { result = rvf::tool::observeCommand(options); });
}

void addSwipe(CLI::App& app, SwipeOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand(
      "swipe", "Read card swipes from standard input, one a line, and print their fields");
  command->add_flag("--json", options.asJson, "One JSON object a line");
  command->add_flag("--reveal", options.isRevealed,
                    "Print account numbers whole, not only first six and last four digits");
  auto* requireName = command->add_flag("--require-name", options.isNameRequired,
                                        "Refuse a name that is not 2 to 26 characters long");
  command
      ->add_flag("--credit-card", options.isCreditCard,
                 "Read as a payment card: with a name, and the account number from track 1 only")
      ->excludes(requireName);
  command->callback([&] { result = rvf::tool::swipeCommand(options); });
}

void addExpiry(CLI::App& app, std::string& text, bool& asJson, ExitCode& result) {
  auto* command = app.add_subcommand("expiry", "Read a typed expiry date: MMYY, MM/YY or MM/YYYY");
  command->add_option("TEXT", text, "The date as it was typed")->required();
  command->add_flag("--json", asJson, "Print a JSON object");
  command->callback([&] { result = rvf::tool::expiryCommand(text, asJson); });
}

void addDescribe(CLI::App& app, std::string& className, bool& asJson, ExitCode& result) {
  auto* command = app.add_subcommand(
      "describe", "Print the properties, instance variables and methods of a class");
  command->add_option("CLASS", className, "For example RVFStaticServer")->required();
  command->add_flag("--json", asJson, "Print a JSON object");
  command->callback([&] { result = rvf::tool::describeCommand(className, asJson); });
}

void addFilter(CLI::App& app, FilterOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand(
      "filter",
      "Read JSON objects from standard input, each in a line of its own or all in one array, and "
      "print those that match a predicate");
  command
      ->add_option("PREDICATE", options.predicate,
                   "For example: name CONTAINS[cd] $S AND price > 10")
      ->required();
  command
      ->add_option("--set", options.settings,
                   "The text of a variable; each of its words is compared")
      ->option_text("NAME=TEXT ...")
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->callback([&] { result = rvf::tool::filterCommand(options); });
}

void addFormat(CLI::App& app, FormatOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand("format", "Write a value for people, or read such a text");
  command->add_option("KIND", options.kind, "What the value is")
      ->required()
      ->check(CLI::IsMember(rvf::tool::formatKinds()));
  command
      ->add_option(
          "VALUE", options.value,
          "A number such as -1234.5 (time and hours: seconds), a phone number, a yes or no")
      ->required();
  command->add_option("--locale", options.locale, "For example de_DE; default: the environment's");
  command->add_flag("--read", options.isReading, "VALUE is a text for people: print the number");
  command->callback([&] { result = rvf::tool::formatCommand(options); });
}

void addText(CLI::App& app, TextOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand("text", "Escape, decode, split, digest, clean or fill a text");
  command->add_option("OPERATION", options.operation, "What to do with the text")
      ->required()
      ->check(CLI::IsMember(rvf::tool::textOperations()));
  command->add_option("TEXT", options.text, "The text")->required();
  command->add_option("KEY=VALUE", options.values, "fill: what %@(KEY) stands for");
  command->add_option("--locale", options.locale, "For example de_DE; default: the environment's");
  command->callback([&] { result = rvf::tool::textCommand(options); });
}

void addLog(CLI::App& app, LogOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand("log", "Write to the system log");
  command->add_option("TEXT", options.words,
                      "One line, words joined by blanks; default: the lines of standard input");
  command->add_option("-l,--level", options.level, "How severe it is")
      ->transform(CLI::CheckedTransformer(rvf::tool::logLevels()))
      ->option_text("emerg|alert|crit|err|warning|notice|info|debug|0-7 [notice]");
  command->add_option("-t,--name", options.name, "The sender; default: rvf");
  command->add_option("-f,--facility", options.facility, "For example local0")
      ->capture_default_str();
  command->add_flag("-s,--stderr", options.isCopied,
                    "Also to standard error, which then suffices if no log is reachable");
  command->callback([&] { result = rvf::tool::logCommand(options); });
}

void addPeriod(CLI::App& app, PeriodOptions& options, ExitCode& result) {
  auto* command =
      app.add_subcommand("period", "Print the first or last day of a week, month or year");
  command->add_option("PERIOD", options.period, "Which day")
      ->required()
      ->check(CLI::IsMember(rvf::tool::periodNames()));
  command->add_option("--delta", options.delta,
                      "Years from the date's, for first-day-of-year-with-delta");
  command->add_option("--date", options.date,
                      "Such as 2024-03-12 or 2024-03-12T02:30 in the zone, or "
                      "2024-03-12T06:30:00Z or 2024-03-12T06:30:00+02:00; default: now");
  command->add_option("--zone", options.zone, "Such as America/New_York; default: the device's");
  command->add_option("--calendar", options.calendar,
                      "Such as gregorian, buddhist or hebrew; default: the user's");
  command->add_flag("--json", options.asJson, "Print a JSON object");
  command->callback([&] { result = rvf::tool::periodCommand(options); });
}

void addColumns(CLI::App& app, ColumnsOptions& options, ExitCode& result) {
  auto* command = app.add_subcommand("columns", "Print the widths and order of a table's column");
  command->add_option("FILE", options.file, "A property list of column widths")->required();
  command->add_option("TABLE", options.table, "The table's identifier")->required();
  command->add_option("COLUMN", options.column, "The column's key")->required();
  command->add_flag("--json", options.asJson, "Print a JSON object");
  command->callback([&] { result = rvf::tool::columnsCommand(options); });
}

void addMachine(CLI::App& app, bool& asJson, ExitCode& result) {
  auto* command =
      app.add_subcommand("machine", "Print the machine's model, memory and TCP send space");
  command->add_flag("--json", asJson, "Print a JSON object");
  command->callback([&] { result = rvf::tool::machineCommand(asJson); });
}

/// One subcommand of "rvf servers".
CLI::App* addServersCommand(CLI::App& servers, const char* name, const char* description,
                            ServersOptions& options, ExitCode& result,
                            ExitCode (*command)(const ServersOptions&)) {
  auto* subcommand = servers.add_subcommand(name, description);
  subcommand->add_flag("--json", options.asJson, "Print JSON");
  subcommand->callback([&options, &result, command] { result = command(options); });
  return subcommand;
}

void addServers(CLI::App& app, ServersOptions& options, ExitCode& result) {
  using namespace rvf::tool;
  auto* servers = app.add_subcommand("servers", "Keep the list of hand-entered servers");
  servers->require_subcommand(1);
  servers->add_option("--config-folder", options.configurationFolder,
                      "Default: $XDG_CONFIG_HOME or ~/.config. The list is kept in "
                      "rvf/defaults.plist beneath");
  const auto add = [&](const char* name, const char* description,
                       ExitCode (*command)(const ServersOptions&)) {
    return addServersCommand(*servers, name, description, options, result, command);
  };
  const auto addIndex = [&](CLI::App* command) {
    command->add_option("INDEX", options.index, "The position in the list, from 0")
        ->check(CLI::NonNegativeNumber)
        ->required();
  };
  const auto addServer = [&](CLI::App* command) {
    command->add_option("ADDRESS", options.address, "HOST, HOST:PORT, [IPv6] or [IPv6]:PORT")
        ->required();
    command->add_option("--description", options.description,
                        "Default: the next untitled name that is free");
  };
  add("list", "Print the servers in their order", &listServersCommand);
  addServer(add("add", "Add a server at the end", &addServerCommand));
  auto* insert = add("insert", "Insert a server", &insertServerCommand);
  addIndex(insert);
  addServer(insert);
  addIndex(add("remove", "Remove a server", &removeServerCommand));
  auto* resolve = add("resolve", "Look up the addresses of a server", &resolveServerCommand);
  addIndex(resolve);
  resolve->add_option("--timeout", options.timeoutSeconds, "Seconds")
      ->check(isDuration() & CLI::PositiveNumber)
      ->capture_default_str();
}

/// What the command line says, one member a command.
struct Options {
  BrowseOptions browse;
  ColumnsOptions columns;
  ConnectOptions connect;
  std::string className;
  bool isDescribeJson = false;
  std::string expiry;
  bool isExpiryJson = false;
  FilterOptions filter;
  FormatOptions format;
  LogOptions log;
  bool isMachineJson = false;
  std::string notification;
  ObserveOptions observe;
  PeriodOptions period;
  ConnectOptions resolve;
  ServersOptions servers;
  SwipeOptions swipe;
  TextOptions text;
};

void addCommands(CLI::App& app, Options& options, ExitCode& result) {
  addBrowse(app, options.browse, result);
  addResolve(app, options.resolve, result);
  addConnect(app, options.connect, result);
  addPost(app, options.notification, result);
  addObserve(app, options.observe, result);
  addSwipe(app, options.swipe, result);
  addExpiry(app, options.expiry, options.isExpiryJson, result);
  addDescribe(app, options.className, options.isDescribeJson, result);
  addFilter(app, options.filter, result);
  addFormat(app, options.format, result);
  addText(app, options.text, result);
  addPeriod(app, options.period, result);
  addColumns(app, options.columns, result);
  addMachine(app, options.isMachineJson, result);
  addServers(app, options.servers, result);
  addLog(app, options.log, result);
}

ExitCode run(int argc, char** argv) {
  ExitCode result = ExitCode::ok;
  Options options;
  options.browse.inColour = wantsColour();
  CLI::App app("Tools of the RVFoundation library");
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(kFooter);
  app.set_version_flag("--version", RVF_TOOL_VERSION);
  app.add_option_function<rvf::ServiceDiscoveryChoice>(
         "--backend", [](const auto& choice) { rvf::ServiceDiscovery::setChoice(choice); },
         "Discovery: automatic, daemon or embedded")
      ->transform(CLI::CheckedTransformer(discoveryChoices()))
      ->option_text("WORD")
      ->trigger_on_parse();
  addCommands(app, options, result);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? ExitCode::ok : ExitCode::usage;
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  ExitCode result = ExitCode::software;
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write, exit code 74
  curl_global_init(CURL_GLOBAL_DEFAULT);
  try {
    result = run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "rvf: %s\n", error.what());
  }
  curl_global_cleanup();
  return static_cast<int>(result);
}
