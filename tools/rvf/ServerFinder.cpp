// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ServerFinder.h"

#include <netdb.h>

#include <csignal>
#include <memory>
#include <utility>

#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/ServerDiscovery/NSNetService-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "tools/rvf/DiscoveryCheck.h"
#include "tools/terminal/SignalWatch.h"

namespace rvf::tool {
namespace {

std::string textOf(const NSError& error) {
  const auto suggestion = error.localizedRecoverySuggestion();
  return error.localizedDescription() + (suggestion ? " " + *suggestion : "");
}

/// How long a server that was found may take to tell whether it is a demo server.
constexpr double kGraceSeconds = 2;

std::unique_ptr<RunLoopSource> timerOf(double seconds, NSRunLoop::Block block) {
  return NSRunLoop::mainRunLoop()->scheduleTimer(seconds, {std::string(NSDefaultRunLoopMode)},
                                                 std::move(block));
}

/// Runs the main run loop until the search ends it or the time is up.
class Search final {
 public:
  Search()
      : signals_({SIGINT, SIGTERM}, [this](int) {
          fail({ExitCode::temporary, "interrupted"});
        }) {}

  /// Starts the time anew; the search fails like this when it is up.
  void failAfter(double seconds, const Failure& failure) {
    callAfter(seconds, [this, failure] { fail(failure); });
  }
  void callAfter(double seconds, NSRunLoop::Block timeIsUp) {
    timer_ = timerOf(seconds, std::move(timeIsUp));
  }
  void fail(Failure failure) { finish({std::nullopt, std::move(failure)}); }
  void succeed(Finding finding) { finish({std::move(finding), {}}); }
  FindResult run() {
    if (!isDone_) NSRunLoop::mainRunLoop()->run();
    return std::move(result_);
  }

 private:
  void finish(FindResult result) {
    if (isDone_) return;
    isDone_ = true;
    result_ = std::move(result);
    NSRunLoop::mainRunLoop()->stop();
  }

  SignalWatch signals_;
  std::unique_ptr<RunLoopSource> timer_;
  FindResult result_;
  bool isDone_ = false;
};

/// Browses, and resolves the first server of the wanted name. Shared with the callbacks, which may
/// come late.
class ServerSearch final : public std::enable_shared_from_this<ServerSearch> {
 public:
  ServerSearch(std::string name, double timeoutSeconds)
      : name_(std::move(name)), timeoutSeconds_(timeoutSeconds) {}

  FindResult run() {
    search_.callAfter(timeoutSeconds_, [this] {
      failUnlessDiscoveryWorks(timeoutSeconds_);
      search_.fail({ExitCode::noHost, name_.empty() ? "no server was found"
                                                    : "no server \"" + name_ + "\" was found"});
    });
    start_ = timerOf(kDiscoveryStartSeconds,
                     [this] { failUnlessDiscoveryWorks(kDiscoveryStartSeconds); });
    const auto browser = RVFQMServerServiceBrowser::serviceBrowser();
    browser->startBrowsingWithServiceListChangedHandler(
        [self = shared_from_this()](const auto& added, const auto& /*removed*/,
                                    const auto& changed) {
          if (added && self->isWanted(*added)) self->resolveAfterGrace(added);
          if (changed && changed->isLoaded() && self->isWanted(*changed)) self->resolve(changed);
        });
    FindResult result = search_.run();
    start_.reset();
    grace_.reset();
    browser->stop();
    return result;
  }

 private:
  bool isWanted(const RVFQMServerService& server) const {
    return name_.empty() || server.name() == name_;
  }

  void failUnlessDiscoveryWorks(double secondsOfSearch) {
    const auto problem = discoveryProblem(secondsOfSearch);
    if (problem) search_.fail({ExitCode::unavailable, *problem});
  }

  /// A server whose record tells no demo flag is never loaded, but can be connected to.
  void resolveAfterGrace(const Ref<RVFQMServerService>& server) {
    if (!grace_) grace_ = timerOf(kGraceSeconds, [this, server] { resolve(server); });
  }

  void resolve(const Ref<RVFQMServerService>& server) {
    if (isResolving_ || !server->mainService()) return;
    isResolving_ = true;
    search_.failAfter(timeoutSeconds_,
                      {ExitCode::temporary, "the server does not resolve in time"});
    RVF_resolveWithTimeout(server->mainService(), timeoutSeconds_,
                           [self = shared_from_this(), server](const Ref<NSNetService>& service,
                                                               const Ref<NSError>& error, bool) {
                             self->resolved(*server, *service, error);
                           });
  }

  void resolved(const RVFQMServerService& server, const NSNetService& service,
                const Ref<NSError>& error) {
    if (error) return search_.fail({ExitCode::temporary, textOf(*error), numberOf(*error)});
    search_.succeed({server.name().value_or(""),
                     server.isLoaded() ? std::optional(server.isDemo()) : std::nullopt,
                     service.addresses()});
  }

  const std::string name_;
  const double timeoutSeconds_;
  Search search_;
  std::unique_ptr<RunLoopSource> start_;
  std::unique_ptr<RunLoopSource> grace_;
  bool isResolving_ = false;
};

ExitCode exitCodeFor(const NSError& lookupError) {
  return lookupError.code() == EAI_AGAIN ? ExitCode::temporary : ExitCode::noHost;
}

}  // namespace

FindResult findServer(const std::string& name, double timeoutSeconds) {
  return std::make_shared<ServerSearch>(name, timeoutSeconds)->run();
}

FindResult findStaticServer(const Ref<RVFStaticServer>& server, double timeoutSeconds) {
  Search search;
  search.failAfter(timeoutSeconds, {ExitCode::temporary, "the address does not resolve in time"});
  server->resolveUsingCompletion(
      [&search](const auto& resolved, const auto& addresses, const Ref<NSError>& error, bool) {
        if (error) {
          search.fail({exitCodeFor(*error), textOf(*error), numberOf(*error)});
        } else if (addresses) {
          search.succeed({resolved->displayName(), std::nullopt, *addresses});
        }
      });
  FindResult result = search.run();
  server->stopResolving();  // the completion is called or dropped here, before `search` ends
  return result;
}

}  // namespace rvf::tool
