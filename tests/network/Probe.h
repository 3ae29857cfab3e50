// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "tests/network/NetworkHost.h"
#include "tests/network/Process.h"

namespace rvf::network {

using Json = nlohmann::json;

/// Which back end a probe uses.
enum class Backend { embedded, daemon, automatic };
std::string nameOf(Backend backend);
std::ostream& operator<<(std::ostream& stream, Backend backend);

/// A DiscoveryProbe program inside a host: commands go in, events come out, one JSON object each.
class Probe {
 public:
  /// Long enough for a busy machine, because only a failing test waits for it.
  static constexpr std::chrono::milliseconds kPatience{20000};

  /// With a daemon back end the host's daemon is started if it does not run yet.
  Probe(NetworkHost& host, Backend backend);

  void browse(const std::string& type, const std::string& domain = "");
  void stopBrowsing();
  /// `more` may give "domain", "txt", "unique" and "lifetime".
  void publish(const std::string& service, const std::string& name, const std::string& type,
               int port, const Json& more = Json::object());
  void setTXT(const std::string& service, const Json& entries);
  void resolve(const std::string& service, const std::string& name, const std::string& type,
               double timeoutSeconds);
  void monitor(const std::string& service, const std::string& name, const std::string& type);
  void stop(const std::string& service);
  /// Reports "delivered" with the name for each notification.
  void observe(const std::string& notification);
  void endObserving(const std::string& notification);
  /// Reports "posting", "posted". `again` posts once more the moment that this has ended.
  void post(const std::string& notification, int count = 1, bool again = false);
  /// How many descriptors the program has open.
  int countDescriptors();
  /// Takes a UDP port for itself alone; reports "holding".
  void holdPort(int port);
  /// Sets the program's wall clock forward, or back.
  void stepClock(int seconds);

  /// The first event not yet taken that has these fields, waiting for it as long as patience
  /// lasts; throws with everything that was seen instead.
  Json waitFor(const Json& fields, std::chrono::milliseconds patience = kPatience);
  /// Waits for nothing but for the program to have worked off its commands and what was ready
  /// then; answers the events not yet taken.
  std::vector<Json> untaken();

  void kill(int signal) { process_.kill(signal); }

 private:
  void send(const Json& command) { process_.writeLine(command.dump()); }

  Process process_;
  std::vector<Json> untaken_;
  int syncs_ = 0;
};

}  // namespace rvf::network
