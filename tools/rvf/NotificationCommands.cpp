// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/NotificationCommands.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <algorithm>
#include <csignal>
#include <functional>
#include <iostream>
#include <memory>
#include <utility>

#include "Platform/Network/CFSocket.h"
#include "Platform/Network/ServiceNames.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSObject.h"
#include "RVFoundation/ServerDiscovery/RVFRemoteNotificationCenter.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/DiscoveryCheck.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"
#include "tools/terminal/SignalWatch.h"

namespace rvf::tool {
namespace {

struct ObserveOptions {
  std::vector<std::string> names;
  std::optional<double> seconds;  ///< absent: until interrupted
  bool asJson = false;            ///< one object a delivery
};

constexpr double kPublicationSeconds = 10;

RunLoopModes defaultMode() {
  return {std::string(NSDefaultRunLoopMode)};
}

/// An observer of one name: deliveries do not tell theirs.
class Listener final : public NSObject {
 public:
  explicit Listener(std::function<void()> hear) : hear_(std::move(hear)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Listener>("RVFToolNotificationListener", NSObject::classObject())
            .method<&Listener::hear>("hear")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void hear() { hear_(); }

 private:
  std::function<void()> hear_;
};

void print(const std::string& name, bool asJson) {
  std::cout << (asJson ? jsonText({{"name", name}}) : name) << std::endl;
  if (!std::cout) NSRunLoop::mainRunLoop()->stop();
}

/// Observes while it lives.
class Observation final {
 public:
  explicit Observation(const ObserveOptions& options) {
    for (const std::string& name : options.names) {
      listeners_.push_back(
          std::make_shared<Listener>([&options, name] { print(name, options.asJson); }));
      center_->addObserver(listeners_.back(), SEL("hear"), name);
    }
  }
  ~Observation() {
    for (const auto& listener : listeners_)
      center_->removeObserver(listener);
  }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;

 private:
  const Ref<RVFRemoteNotificationCenter> center_ = RVFRemoteNotificationCenter::defaultCenter();
  std::vector<Ref<Listener>> listeners_;
};

/// The center drops posts silently where it gets no port, so whether there is one is asked first.
bool isPortToBeHad() {
  const auto socket = CFSocketCreate(PF_INET, SOCK_STREAM, IPPROTO_TCP, kCFSocketNoCallBack,
                                     nullptr, CFSocketContext());
  const auto anyAddress = SocketAddress::withIPv4({0, 0, 0, 0}, 0).dataBlock();
  return CFSocketSetAddress(socket, anyAddress) == kCFSocketSuccess;
}

/// A name that is given twice, or nothing.
std::optional<std::string> repeatedName(std::vector<std::string> names) {
  std::sort(names.begin(), names.end());
  const auto repeated = std::adjacent_find(names.begin(), names.end());
  return repeated == names.end() ? std::nullopt : std::optional(*repeated);
}

/// "_NAME._tcp".
bool isNotificationName(std::string_view text) {
  return isServiceType(text) && text.ends_with("._tcp") && std::ranges::count(text, '.') == 1;
}

/// Notifications are DNS-SD service types: what is none would be sent to nobody, silently.
CLI::Validator isNotification() {
  return {[](std::string& text) -> std::string {
            if (isNotificationName(text)) return {};
            return "\"" + text + "\" is no notification name; these are like _menu-changed._tcp";
          },
          ""};
}

ExitCode postCommand(const std::string& name) {
  if (!isPortToBeHad()) {
    return report({ExitCode::temporary, "nothing was posted: the system has no port to give"},
                  false);
  }
  const auto loop = NSRunLoop::mainRunLoop();
  bool isInterrupted = false;
  const SignalWatch signals({SIGINT, SIGTERM}, [&](int) {
    isInterrupted = true;
    loop->stop();
  });
  std::optional<std::string> problem;
  const auto check = loop->scheduleTimer(kDiscoveryStartSeconds, defaultMode(), [&] {
    problem = discoveryProblem();
    if (problem) loop->stop();
  });
  RVFRemoteNotificationCenter::defaultCenter()->postNotificationName(name);
  // Later than the end of the publication, which was scheduled before.
  const auto end = loop->scheduleTimer(kPublicationSeconds, defaultMode(), [&] { loop->stop(); });
  loop->run();
  if (problem) return report({ExitCode::unavailable, *problem}, false);
  return isInterrupted ? report({ExitCode::temporary, "interrupted"}, false) : ExitCode::ok;
}

ExitCode observeCommand(const ObserveOptions& options) {
  if (const auto repeated = repeatedName(options.names)) {
    return report({ExitCode::usage, "the name " + *repeated + " is given twice"}, options.asJson);
  }
  const auto loop = NSRunLoop::mainRunLoop();
  const SignalWatch signals({SIGINT, SIGTERM}, [&loop](int) { loop->stop(); });
  std::optional<std::string> problem;
  const auto endAfter = [&](double seconds, bool always) {
    return loop->scheduleTimer(seconds, defaultMode(), [&problem, &loop, seconds, always] {
      problem = discoveryProblem(seconds);
      if (problem || always) loop->stop();
    });
  };
  const Observation observation(options);
  const auto start = endAfter(kDiscoveryStartSeconds, false);
  const auto end = options.seconds ? endAfter(*options.seconds, true) : nullptr;
  loop->run();
  if (problem) return report({ExitCode::unavailable, *problem}, options.asJson);
  return std::cout ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addPostCommand(CommandLine& line) {
  const auto name = std::make_shared<std::string>();
  CLI::App& command = line.addCommand(
      "post",
      "Send a notification to the network; takes the ten seconds in which it can be received",
      [name] { return postCommand(*name); });
  command
      .add_option("NAME", *name,
                  "The notification, a DNS-SD service type such as _menu-changed._tcp")
      ->required()
      ->check(isNotification());
}

void addObserveCommand(CommandLine& line) {
  const auto options = std::make_shared<ObserveOptions>();
  CLI::App& command =
      line.addCommand("observe", "Print the notifications of these names as they are delivered",
                      [options] { return observeCommand(*options); });
  command
      .add_option("NAME", options->names,
                  "The notifications, DNS-SD service types such as _menu-changed._tcp")
      ->required()
      ->check(isNotification());
  addJsonFlag(command, options->asJson, "One JSON object a delivery");
  addEndOption(command, options->seconds);
}

}  // namespace rvf::tool
