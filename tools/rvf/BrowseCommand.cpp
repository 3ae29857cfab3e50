// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/BrowseCommand.h"

#include <csignal>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "tools/rvf/DiscoveryCheck.h"
#include "tools/rvf/Finding.h"
#include "tools/terminal/SignalWatch.h"

namespace rvf::tool {
namespace {

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

/// Prints events; remembers names, because a server that is gone has none any more.
class Listing final {
 public:
  explicit Listing(const BrowseOptions& options) : options_(options) {}

  void show(const Event& event, const Ref<RVFQMServerService>& server) {
    if (!server) return;
    if (const auto name = server->name()) names_[server.get()] = *name;
    const std::string name = names_[server.get()];
    if (&event == &kRemoved) names_.erase(server.get());
    if (options_.asJson) {
      printJson(event, name, *server);
    } else {
      printLine(event, name, *server, options_.inColour);
    }
    if (!std::cout) NSRunLoop::mainRunLoop()->stop();
  }

 private:
  const BrowseOptions& options_;
  std::map<const RVFQMServerService*, std::string> names_;
};

}  // namespace

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
  Listing listing(options);
  const auto browser = RVFQMServerServiceBrowser::serviceBrowser();
  browser->startBrowsingWithServiceListChangedHandler(
      [&listing](const auto& added, const auto& removed, const auto& changed) {
        listing.show(kAdded, added);
        listing.show(kRemoved, removed);
        listing.show(kChanged, changed);
      });
  loop->run();
  browser->stop();
  if (problem) {
    complain(*problem);
    return ExitCode::unavailable;
  }
  return std::cout ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace rvf::tool
