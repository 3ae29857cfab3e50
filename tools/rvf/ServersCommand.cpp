// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ServersCommand.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Text/Text.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/rvf/ServerFinder.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct ServersOptions {
  /// Instead of $XDG_CONFIG_HOME or ~/.config.
  std::optional<std::string> configurationFolder;
  std::string address;
  std::optional<std::string> description;  ///< absent: the next untitled name
  std::size_t index = 0;
  double timeoutSeconds = 10;
  bool asJson = false;
};

using Servers = RVFStaticServerList;

std::string environmentText(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread yet
  return value ? value : "";
}

Ref<NSUserDefaults> defaultsOf(const ServersOptions& options) {
  const std::string folder = options.configurationFolder
                                 ? std::filesystem::absolute(*options.configurationFolder).string()
                                 : environmentText("XDG_CONFIG_HOME");
  return NSUserDefaults::userDefaultsWithFile(
      NSUserDefaults::filePath(folder, environmentText("HOME"), "rvf"));
}

std::string messageOf(const NSError& error) {
  const auto information = [&](std::string_view key) {
    return error.userInfo() ? error.userInfo()->textForKey(key) : std::nullopt;
  };
  const auto cause = error.underlyingError();
  const std::string text = cause ? cause->localizedDescription() : error.localizedDescription();
  const auto path = information(NSFilePathErrorKey);
  return (path ? *path + ": " : "") + information("NSDebugDescription").value_or(text);
}

/// Complains about defaults that could not be read or written, as the caller says.
ExitCode fail(const NSUserDefaults& defaults, ExitCode code, bool asJson) {
  const auto error = defaults.synchronizationError();
  if (!error) return report({code, "the list could not be saved"}, asJson);
  return report({code, messageOf(*error), numberOf(*error)}, asJson);
}

ExitCode failWithoutServer(const ServersOptions& options) {
  return report({ExitCode::noHost, "there is no server " + std::to_string(options.index)},
                options.asJson);
}

nlohmann::json jsonOf(const std::optional<std::string>& text) {
  return text ? nlohmann::json(*text) : nlohmann::json();
}

nlohmann::json jsonOf(const RVFStaticServer& server, std::size_t index) {
  return {{"index", index},
          {"address", jsonOf(server.serverAddress())},
          {"description", jsonOf(server.serverDescription())},
          {"id", jsonOf(server.serverId())},
          {"displayName", server.displayName()}};
}

void printLine(const RVFStaticServer& server, std::size_t index) {
  std::cout << index << "\t" << printable(server.serverAddress().value_or("")) << "\t"
            << printable(server.displayName()) << "\n";
}

ExitCode print(const RVFStaticServer& server, const ServersOptions& options) {
  if (options.asJson) {
    std::cout << jsonText(jsonOf(server, options.index)) << "\n";
  } else {
    printLine(server, options.index);
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

/// Runs `change`, which answers the server it was about or none if there is no such index, on the
/// newest list, and prints the server.
ExitCode changeList(
    ServersOptions options,
    const std::function<Ref<RVFStaticServer>(Servers&, std::size_t& index)>& change) {
  const auto defaults = defaultsOf(options);
  Ref<RVFStaticServer> server;
  const bool isSaved = defaults->performExclusively([&] {
    Servers list(defaults);
    server = change(list, options.index);
  });
  if (!isSaved) return fail(*defaults, ExitCode::cannotCreate, options.asJson);
  return server ? print(*server, options) : failWithoutServer(options);
}

Ref<RVFStaticServer> newServer(const ServersOptions& options, const Servers& list) {
  auto server = RVFStaticServer::staticServerWithAddress(options.address);
  server->setServerDescription(options.description ? *options.description
                                                   : list.nextUntitledServerName());
  return server;
}

bool isStorable(const ServersOptions& options) {
  return isValidUtf8(options.address) && isValidUtf8(options.description.value_or(""));
}

ExitCode failUnstorable(const ServersOptions& options) {
  return report({ExitCode::usage, "address and description must be UTF-8"}, options.asJson);
}

ExitCode listServersCommand(const ServersOptions& options) {
  const auto defaults = defaultsOf(options);
  const Servers list(defaults);
  if (!defaults->synchronize()) return fail(*defaults, ExitCode::noInput, options.asJson);
  nlohmann::json servers = nlohmann::json::array();
  for (std::size_t index = 0; index < list.serverCount(); ++index) {
    const auto server = list.serverAtIndex(index);
    if (options.asJson) {
      servers.push_back(jsonOf(*server, index));
    } else {
      printLine(*server, index);
    }
  }
  if (options.asJson) std::cout << jsonText(servers) << "\n";
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

ExitCode addServerCommand(const ServersOptions& options) {
  if (!isStorable(options)) return failUnstorable(options);
  return changeList(options, [&](Servers& list, std::size_t& index) {
    const auto server = newServer(options, list);
    index = list.serverCount();
    list.addServer(server);
    return server;
  });
}

ExitCode insertServerCommand(const ServersOptions& options) {
  if (!isStorable(options)) return failUnstorable(options);
  return changeList(options, [&](Servers& list, const std::size_t& index) -> Ref<RVFStaticServer> {
    if (index > list.serverCount()) return nullptr;
    const auto server = newServer(options, list);
    list.insertServer(server, index);
    return server;
  });
}

ExitCode removeServerCommand(const ServersOptions& options) {
  return changeList(options, [](Servers& list, const std::size_t& index) -> Ref<RVFStaticServer> {
    if (index >= list.serverCount()) return nullptr;
    const auto server = list.serverAtIndex(index);
    list.removeServerAtIndex(index);
    return server;
  });
}

ExitCode resolveServerCommand(const ServersOptions& options) {
  const auto defaults = defaultsOf(options);
  const Servers list(defaults);
  if (!defaults->synchronize()) return fail(*defaults, ExitCode::noInput, options.asJson);
  if (options.index >= list.serverCount()) return failWithoutServer(options);
  const FindResult found =
      findStaticServer(list.serverAtIndex(options.index), options.timeoutSeconds);
  if (!found.finding) return report(found.failure, options.asJson);
  if (options.asJson) {
    std::cout << jsonText(jsonOf(*found.finding)) << "\n";
  } else {
    printText(*found.finding);
    for (const Ref<NSData>& address : found.finding->addresses)
      std::cout << "url          " << baseUrlText(address) << "\n";
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

/// The subcommands of "rvf servers", which share what is read.
class ServersCommands final {
 public:
  ServersCommands(CommandLine& line, CLI::App& servers)
      : line_(line), servers_(servers), options_(std::make_shared<ServersOptions>()) {}

  void addAll() {
    servers_.require_subcommand(1);
    servers_
        .add_option("--config-folder", options_->configurationFolder,
                    "Default: $XDG_CONFIG_HOME or ~/.config. The list is kept in "
                    "rvf/defaults.plist beneath")
        ->type_name("FOLDER");
    add("list", "Print the servers in their order", &listServersCommand);
    addServer(add("add", "Add a server at the end", &addServerCommand));
    CLI::App& insert = add("insert", "Insert a server", &insertServerCommand);
    addIndex(insert);
    addServer(insert);
    addIndex(add("remove", "Remove a server", &removeServerCommand));
    CLI::App& resolve = add("resolve", "Look up the addresses of a server", &resolveServerCommand);
    addIndex(resolve);
    addTimeoutOption(resolve, options_->timeoutSeconds, "Seconds to look them up");
  }

 private:
  CLI::App& add(const char* name, const char* description,
                ExitCode (*action)(const ServersOptions&)) {
    CLI::App& command = line_.addCommand(servers_, name, description,
                                         [options = options_, action] { return action(*options); });
    addJsonFlag(command, options_->asJson, "Print JSON");
    return command;
  }

  void addIndex(CLI::App& command) {
    command.add_option("INDEX", options_->index, "The position in the list, from 0")
        ->check(CLI::NonNegativeNumber)
        ->required();
  }

  void addServer(CLI::App& command) {
    command.add_option("ADDRESS", options_->address, "HOST, HOST:PORT, [IPv6] or [IPv6]:PORT")
        ->required();
    command
        .add_option("--description", options_->description,
                    "Default: the next untitled name that is free")
        ->type_name("TEXT");
  }

  CommandLine& line_;
  CLI::App& servers_;
  const std::shared_ptr<ServersOptions> options_;
};

}  // namespace

void addServersCommand(CommandLine& line) {
  CLI::App& servers =
      *line.app().add_subcommand("servers", "Keep the list of hand-entered servers");
  ServersCommands(line, servers).addAll();
}

}  // namespace rvf::tool
