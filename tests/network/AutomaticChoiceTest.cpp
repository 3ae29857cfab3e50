// SPDX-License-Identifier: Apache-2.0

// Which back end the automatic choice takes, told by who keeps its publications.

#include <csignal>
#include <optional>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

constexpr const char* kType = "_rvf-test._tcp";

class AutomaticChoice : public testing::Test {
 protected:
  void publishAndFind() {
    seeker_.browse(kType);
    Probe& probe = probe_.emplace(hosts_.here, Backend::automatic);
    probe.publish("till", "Till", kType, 4711);
    probe.waitFor({{"event", "published"}});
    seeker_.waitFor({{"event", "found"}, {"name", "Till"}});
  }

  TwoHosts hosts_;
  Probe seeker_{hosts_.there, Backend::embedded};
  std::optional<Probe> probe_;
};

TEST_F(AutomaticChoice, IsTheStackWhereThereIsNoBus) {
  publishAndFind();
}

TEST_F(AutomaticChoice, IsTheStackWhereTheBusHasNoDaemon) {
  hosts_.here.startBus();
  publishAndFind();
}

TEST_F(AutomaticChoice, IsTheStackWhereTheBusHangs) {
  hosts_.here.startBus();
  hosts_.here.signalBus(SIGSTOP);
  publishAndFind();
}

TEST_F(AutomaticChoice, IsTheDaemonWhereThereIsOne) {
  hosts_.here.startDaemon();
  publishAndFind();
  hosts_.here.endDaemon(SIGTERM);
  seeker_.waitFor({{"event", "removed"}, {"name", "Till"}});
}

TEST_F(AutomaticChoice, StaysWithTheStackWhenADaemonComes) {
  hosts_.here.startBus();
  publishAndFind();
  hosts_.here.startDaemon();
  hosts_.here.endDaemon(SIGTERM);
  seeker_.resolve("till", "Till", kType, 15);
  EXPECT_EQ(seeker_.waitFor({{"event", "resolved"}})["port"], 4711);
  for (const Json& event : seeker_.untaken())
    EXPECT_NE(event["event"], "removed") << event;
}

TEST_F(AutomaticChoice, WaitsForItsDaemonToComeBack) {
  hosts_.here.startDaemon();
  publishAndFind();
  hosts_.here.endDaemon(SIGTERM);
  seeker_.waitFor({{"event", "removed"}});
  hosts_.here.startDaemon();
  seeker_.waitFor({{"event", "found"}, {"name", "Till"}});
}

}  // namespace
}  // namespace rvf::network
