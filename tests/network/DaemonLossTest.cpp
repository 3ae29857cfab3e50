// SPDX-License-Identifier: Apache-2.0

// What becomes of searches and publications while the Avahi daemon or its bus goes, hangs and
// comes back. The program that uses them does nothing about it.

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <iostream>
#include <string>
#include <tuple>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

constexpr const char* kType = "_rvf-test._tcp";

enum class Loss { terminated, killed, busEnded };

std::string nameOf(Loss loss) {
  switch (loss) {
    case Loss::terminated:
      return "DaemonTerminated";
    case Loss::killed:
      return "DaemonKilled";
    case Loss::busEnded:
      return "BusEnded";
  }
  return "Unknown";
}

std::string nameOfLoss(const testing::TestParamInfo<std::tuple<Loss, Backend>>& info) {
  return nameOf(std::get<Loss>(info.param)) + "WithPeerOn" +
         network::nameOf(std::get<Backend>(info.param));
}

void lose(NetworkHost& host, Loss loss) {
  switch (loss) {
    case Loss::terminated:
      return host.endDaemon(SIGTERM);
    case Loss::killed:
      return host.endDaemon(SIGKILL);
    case Loss::busEnded:
      return host.endBus(SIGTERM);
  }
}

Json found(const std::string& name) {
  return {{"event", "found"}, {"name", name}};
}

/// A peer on one host, and one with the daemon that is lost on the other.
class DaemonLoss : public testing::TestWithParam<std::tuple<Loss, Backend>> {
 protected:
  Loss loss() const { return std::get<Loss>(GetParam()); }
  Backend backendOfPeer() const { return std::get<Backend>(GetParam()); }

  TwoHosts hosts_{backendOfPeer(), Backend::daemon};
  Probe peer_{hosts_.here, backendOfPeer()};
  Probe probe_{hosts_.there, Backend::daemon};
};

INSTANTIATE_TEST_SUITE_P(Ways, DaemonLoss,
                         testing::Combine(testing::Values(Loss::terminated, Loss::killed,
                                                          Loss::busEnded),
                                          everyBackend()),
                         nameOfLoss);

TEST_P(DaemonLoss, SearchGoesOnAndTellsWhatHasChanged) {
  probe_.browse(kType);
  peer_.publish("stays", "Stays", kType, 4711);
  peer_.publish("goes", "Goes", kType, 4712);
  probe_.waitFor(found("Stays"));
  probe_.waitFor(found("Goes"));
  lose(hosts_.there, loss());
  peer_.stop("goes");
  peer_.publish("comes", "Comes", kType, 4713);
  peer_.waitFor({{"event", "published"}, {"name", "Comes"}});
  hosts_.there.startDaemon();
  probe_.waitFor(found("Comes"));
  probe_.waitFor({{"event", "removed"}, {"name", "Goes"}});
  for (const Json& event : probe_.untaken())
    EXPECT_NE(event.value("name", ""), "Stays") << event;
}

TEST_P(DaemonLoss, PublicationIsThereAgain) {
  peer_.browse(kType);
  probe_.publish("till", "Till", kType, 4711, {{"txt", {{"demo", "1"}}}});
  peer_.waitFor(found("Till"));
  lose(hosts_.there, loss());
  probe_.setTXT("till", {{"demo", "0"}});
  hosts_.there.startDaemon();
  peer_.monitor("till", "Till", kType);
  peer_.waitFor({{"event", "txt"}, {"entries", {{"demo", "0"}}}});
  peer_.resolve("till", "Till", kType, 15);
  EXPECT_EQ(peer_.waitFor({{"event", "resolved"}})["port"], 4711);
}

TEST_P(DaemonLoss, MonitoringGoesOn) {
  peer_.publish("till", "Till", kType, 4711, {{"txt", {{"demo", "1"}}}});
  probe_.monitor("till", "Till", kType);
  probe_.waitFor({{"event", "txt"}, {"entries", {{"demo", "1"}}}});
  lose(hosts_.there, loss());
  peer_.setTXT("till", {{"demo", "0"}});
  hosts_.there.startDaemon();
  probe_.waitFor({{"event", "txt"}, {"entries", {{"demo", "0"}}}});
}

TEST_P(DaemonLoss, ResolvingWaitsForTheDaemon) {
  peer_.publish("till", "Till", kType, 4711);
  peer_.waitFor({{"event", "published"}});
  lose(hosts_.there, loss());
  probe_.resolve("till", "Till", kType, 0);
  probe_.waitFor({{"event", "willResolve"}});
  hosts_.there.startDaemon();
  EXPECT_EQ(probe_.waitFor({{"event", "resolved"}})["port"], 4711);
}

/// A hung partner: every operation returns, and the loop turns. Only a blocking call could take
/// seconds here.
class HungPartner : public testing::TestWithParam<Backend> {
 protected:
  static constexpr std::chrono::seconds kLongestTurn{5};

  void startEverything() {
    const auto start = steady_clock::now();
    probe_.browse(kType);
    probe_.resolve("peer", "Peer", kType, 0);
    probe_.monitor("peer", "Peer", kType);
    probe_.publish("till", "Till", kType, 4711);
    probe_.waitFor({{"event", "willPublish"}});
    probe_.stop("till");
    probe_.publish("till", "Till", kType, 4711);
    probe_.untaken();
    const auto duration = steady_clock::now() - start;
    std::cout << "seven operations: " << std::chrono::duration<double, std::milli>(duration).count()
              << " ms\n";
    EXPECT_LT(duration, kLongestTurn);
  }

  void expectEverything() {
    probe_.waitFor(found("Peer"));
    probe_.waitFor({{"event", "resolved"}, {"port", 4712}});
    probe_.waitFor({{"event", "txt"}});
    probe_.waitFor({{"event", "published"}, {"name", "Till"}});
    peer_.waitFor(found("Till"));
  }

  void SetUp() override {
    peer_.browse(kType);
    peer_.publish("peer", "Peer", kType, 4712);
    peer_.waitFor({{"event", "published"}});
  }

  TwoHosts hosts_{GetParam(), Backend::daemon};
  Probe peer_{hosts_.here, GetParam()};
  Probe probe_{hosts_.there, Backend::daemon};
};

INSTANTIATE_TEST_SUITE_P(Peers, HungPartner, everyBackend(), nameOfBackend);

TEST_P(HungPartner, ADaemonThatHangsHoldsNothingUpAndLosesNothing) {
  hosts_.there.signalDaemon(SIGSTOP);
  startEverything();
  hosts_.there.signalDaemon(SIGCONT);
  expectEverything();
}

TEST_P(HungPartner, ADaemonThatHangsLaterHoldsNothingUpAndLosesNothing) {
  probe_.browse("_other._tcp");
  probe_.waitFor({{"event", "willSearch"}});
  probe_.stopBrowsing();
  hosts_.there.signalDaemon(SIGSTOP);
  startEverything();
  hosts_.there.signalDaemon(SIGCONT);
  expectEverything();
}

TEST_P(HungPartner, ABusThatHangsHoldsNothingUpAndLosesNothing) {
  hosts_.there.signalBus(SIGSTOP);
  startEverything();
  hosts_.there.signalBus(SIGCONT);
  expectEverything();
}

TEST_P(HungPartner, AHungDaemonThatIsKilledIsReplaced) {
  hosts_.there.signalDaemon(SIGSTOP);
  startEverything();
  hosts_.there.endDaemon(SIGKILL);
  hosts_.there.startDaemon();
  expectEverything();
}

}  // namespace
}  // namespace rvf::network
