// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ServerFinder.h"

#include <csignal>
#include <memory>
#include <utility>

#include "RVFoundation/ServerDiscovery/NSNetService-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"
#include "tools/terminal/SignalWatch.h"

namespace rvf::tool {
namespace {

std::string textOf(const NSError& error) {
  const auto suggestion = error.localizedRecoverySuggestion();
  return error.localizedDescription() + (suggestion ? " " + *suggestion : "");
}

/// Runs the main run loop until the search ends it or the time is up.
class Search final {
 public:
  explicit Search(double timeoutSeconds)
      : signals_({SIGINT, SIGTERM}, [this](int) { fail(ExitCode::temporary, "interrupted"); }),
        timer_(NSRunLoop::mainRunLoop()->scheduleTimer(
            timeoutSeconds, {std::string(NSDefaultRunLoopMode)},
            [this] { fail(timeoutCode_, timeoutMessage_); })) {}

  void onTimeout(ExitCode code, std::string message) {
    timeoutCode_ = code;
    timeoutMessage_ = std::move(message);
  }
  void fail(ExitCode code, std::string message) {
    finish({std::nullopt, code, std::move(message)});
  }
  void succeed(Finding finding) { finish({std::move(finding), ExitCode::ok, ""}); }
  void finish(FindResult result) {
    if (isDone_) return;
    isDone_ = true;
    result_ = std::move(result);
    NSRunLoop::mainRunLoop()->stop();
  }
  FindResult run() {
    if (!isDone_) NSRunLoop::mainRunLoop()->run();
    return std::move(result_);
  }

 private:
  SignalWatch signals_;
  std::unique_ptr<RunLoopSource> timer_;
  ExitCode timeoutCode_ = ExitCode::temporary;
  std::string timeoutMessage_ = "out of time";
  FindResult result_;
  bool isDone_ = false;
};

bool isWanted(const RVFQMServerService& server, const std::string& name) {
  return server.isLoaded() && (name.empty() || server.name() == name);
}

void resolve(const Ref<RVFQMServerService>& server, double timeoutSeconds, Search& search) {
  search.onTimeout(ExitCode::temporary, "the server does not resolve in time");
  RVF_resolveWithTimeout(
      server->mainService(), timeoutSeconds,
      [&search, server](const Ref<NSNetService>& service, const Ref<NSError>& error, bool) {
        if (error) {
          search.fail(ExitCode::temporary, textOf(*error));
        } else {
          search.succeed({server->name().value_or(""), server->isDemo(), service->addresses()});
        }
      });
}

}  // namespace

FindResult findServer(const std::string& name, double timeoutSeconds) {
  Search search(timeoutSeconds);
  search.onTimeout(ExitCode::noHost,
                   name.empty() ? "no server was found" : "no server \"" + name + "\" was found");
  const auto browser = RVFQMServerServiceBrowser::serviceBrowser();
  bool isResolving = false;
  browser->startBrowsingWithServiceListChangedHandler(
      [&](const auto& /*added*/, const auto& /*removed*/, const auto& changed) {
        if (!changed || isResolving || !isWanted(*changed, name)) return;
        isResolving = true;
        resolve(changed, timeoutSeconds, search);
      });
  FindResult result = search.run();
  browser->stop();
  return result;
}

FindResult findStaticServer(const std::string& address, double timeoutSeconds) {
  Search search(timeoutSeconds);
  const auto server = RVFStaticServer::staticServerWithAddress(address);
  server->resolveUsingCompletion(
      [&search](const auto& resolved, const auto& addresses, const Ref<NSError>& error, bool) {
        if (error) {
          search.fail(ExitCode::noHost, textOf(*error));
        } else if (addresses) {
          search.succeed({resolved->displayName(), std::nullopt, *addresses});
        }
      });
  FindResult result = search.run();
  server->stopResolving();
  return result;
}

}  // namespace rvf::tool
