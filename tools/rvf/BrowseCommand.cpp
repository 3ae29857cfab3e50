// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/BrowseCommand.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/DiscoveryCheck.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/CapableTerminal.h"
#include "tools/terminal/ExitCode.h"
#include "tools/terminal/SignalWatch.h"

namespace rvf::tool {
namespace {

struct BrowseOptions {
  std::optional<double> seconds;  ///< absent: until interrupted
  bool asJson = false;            ///< one object a line
};

struct Event {
  const char* word;
  const char* sign;
  const char* colour;  ///< an ANSI sequence
};

constexpr Event kAdded{"added", "+", "\x1b[32m"};
constexpr Event kChanged{"changed", "=", "\x1b[33m"};
constexpr Event kRemoved{"removed", "-", "\x1b[31m"};

void printJson(const Event& event, const std::string& name, const RVFQMServerService& server) {
  const auto& main = server.mainService();
  nlohmann::json value = {
      {"event", event.word},
      {"name", name},
      {"loaded", server.isLoaded()},
      {"demo", server.isLoaded() ? nlohmann::json(server.isDemo()) : nlohmann::json()},
      {"domain", main ? nlohmann::json(main->domain()) : nlohmann::json()},
      {"registrations", server.netServices().size()}};
  std::cout << jsonText(value) << std::endl;
}

void printLine(const Event& event, const std::string& name, const RVFQMServerService& server,
               bool inColour) {
  std::cout << (inColour ? event.colour : "") << event.sign << " " << printable(name);
  if (server.isLoaded()) std::cout << (server.isDemo() ? "  demo" : "  live");
  if (const auto& main = server.mainService()) std::cout << "  " << printable(main->domain());
  std::cout << (inColour ? "\x1b[0m" : "") << std::endl;
}

/// https://no-color.org: any value that is not empty switches colour off.
bool wantsColour() {
  const char* noColour = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): one thread yet
  return isCapableTerminal(STDOUT_FILENO) && (!noColour || std::string_view(noColour).empty());
}

/// Prints events; remembers names, because a server that is gone has none any more.
class Listing final {
 public:
  explicit Listing(bool asJson) : asJson_(asJson), inColour_(wantsColour()) {}

  void show(const Event& event, const Ref<RVFQMServerService>& server) {
    if (!server) return;
    if (const auto name = server->name()) names_[server.get()] = *name;
    const std::string name = names_[server.get()];
    if (&event == &kRemoved) names_.erase(server.get());
    if (asJson_) {
      printJson(event, name, *server);
    } else {
      printLine(event, name, *server, inColour_);
    }
    if (!std::cout) NSRunLoop::mainRunLoop()->stop();
  }

 private:
  const bool asJson_;
  const bool inColour_;
  std::map<const RVFQMServerService*, std::string> names_;
};

ExitCode browseCommand(const BrowseOptions& options) {
  const auto loop = NSRunLoop::mainRunLoop();
  const SignalWatch signals({SIGINT, SIGTERM}, [&loop](int) { loop->stop(); });
  std::optional<std::string> problem;
  const RunLoopModes modes{std::string(NSDefaultRunLoopMode)};
  const auto start = loop->scheduleTimer(kDiscoveryStartSeconds, modes, [&] {
    problem = discoveryProblem();
    if (problem) loop->stop();
  });
  std::unique_ptr<RunLoopSource> end;
  if (options.seconds) {
    end = loop->scheduleTimer(*options.seconds, modes, [&] {
      problem = discoveryProblem(*options.seconds);
      loop->stop();
    });
  }
  Listing listing(options.asJson);
  const auto browser = RVFQMServerServiceBrowser::serviceBrowser();
  browser->startBrowsingWithServiceListChangedHandler(
      [&listing](const auto& added, const auto& removed, const auto& changed) {
        listing.show(kAdded, added);
        listing.show(kRemoved, removed);
        listing.show(kChanged, changed);
      });
  loop->run();
  browser->stop();
  if (problem) return report({ExitCode::unavailable, *problem}, options.asJson);
  return std::cout ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addBrowseCommand(CommandLine& line) {
  const auto options = std::make_shared<BrowseOptions>();
  CLI::App& command =
      line.addCommand("browse", "List the servers of the network as they come and go",
                      [options] { return browseCommand(*options); });
  addJsonFlag(command, options->asJson, "One JSON object a line");
  addEndOption(command, options->seconds);
  command.footer(
      "A line begins with + for a server that has come, = for one that has changed, and - for one\n"
      "that has gone. Then follow its name, \"demo\" or \"live\" once the server has told which "
      "it\n"
      "is, and its domain.");
}

}  // namespace rvf::tool
