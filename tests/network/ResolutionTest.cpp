// SPDX-License-Identifier: Apache-2.0

// What resolving another host's registration gives.

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <set>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

/// Resolved addresses come in several reports; this follows them until one is the last awaited.
class Resolution : public PairTest {
 protected:
  /// The addresses once there are so many.
  Json addresses(std::size_t count) {
    for (;;) {
      const Json report = seeker_.waitFor({{"event", "resolved"}});
      if (report["addresses"].size() >= count) return report["addresses"];
    }
  }

  void publishAndResolve() {
    publisher_.publish("till", "Till 1", kType, 4711);
    publisher_.waitFor({{"event", "published"}});
    seeker_.resolve("till", "Till 1", kType, 15);
  }

  static bool isLinkLocal(const Json& address) {
    return address["address"].get<std::string>().starts_with("fe80:");
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, Resolution, everyPair(), nameOfPair);

TEST_P(Resolution, GivesHostPortAndAnAddressOfEachFamily) {
  publishAndResolve();
  const Json report = seeker_.waitFor({{"event", "resolved"}});
  EXPECT_EQ(report["port"], 4711);
  EXPECT_THAT(report["host"].get<std::string>(), testing::EndsWith(".local."));
  seeker_.stop("till");
  seeker_.resolve("till", "Till 1", kType, 15);
  const Json both = addresses(2);
  EXPECT_TRUE(std::any_of(both.begin(), both.end(), [](const Json& address) {
    return address == Json({{"address", "10.99.0.1"}, {"port", 4711}, {"scope", 0}});
  })) << both;
  EXPECT_TRUE(std::any_of(both.begin(), both.end(), isLinkLocal)) << both;
}

TEST_P(Resolution, GivesLinkLocalAddressesTheScopeOfTheirLink) {
  const int index = hosts_.there.interfaceIndex(NetworkHost::linkName(0));
  publishAndResolve();
  const Json found = addresses(2);
  const auto address = std::find_if(found.begin(), found.end(), isLinkLocal);
  ASSERT_NE(address, found.end()) << found;
  EXPECT_EQ((*address)["scope"], index);
  EXPECT_EQ((*address)["port"], 4711);
}

TEST_P(Resolution, GivesAnAddressOfEachFamilyForEveryLink) {
  hosts_.here.connect(hosts_.there, 1);
  publishAndResolve();
  const Json found = addresses(4);
  std::set<std::string> plain;
  std::set<int> scopes;
  for (const Json& address : found) {
    isLinkLocal(address) ? void(scopes.insert(address["scope"].get<int>()))
                         : void(plain.insert(address["address"].get<std::string>()));
  }
  EXPECT_THAT(plain, testing::ElementsAre("10.99.0.1", "10.99.1.1"));
  EXPECT_THAT(scopes, testing::UnorderedElementsAre(hosts_.there.interfaceIndex("v0"),
                                                    hosts_.there.interfaceIndex("v1")));
}

TEST_P(Resolution, GivesRoutableAddressesWhereALinkHasThem) {
  hosts_.here.addAddress("v0", "fd99::1/64");
  hosts_.there.addAddress("v0", "fd99::2/64");
  publishAndResolve();
  const Json routable{{"address", "fd99::1"}, {"port", 4711}, {"scope", 0}};
  for (Json known; std::find(known.begin(), known.end(), routable) == known.end();)
    known = seeker_.waitFor({{"event", "resolved"}})["addresses"];
}

TEST_P(Resolution, FailsWithATimeOutForAnAbsentName) {
  seeker_.resolve("absent", "Absent", kType, 1.5);
  const Json started = seeker_.waitFor({{"event", "willResolve"}});
  const Json failed = seeker_.waitFor({{"event", "didNotResolve"}});
  EXPECT_EQ(failed["code"], -72007);
  EXPECT_GE(failed["ms"].get<double>() - started["ms"].get<double>(), 1400);
}

TEST_P(Resolution, SucceedsForANameThatAppearsWhileItWaits) {
  seeker_.resolve("till", "Till 1", kType, 0);
  seeker_.waitFor({{"event", "willResolve"}});
  publisher_.publish("till", "Till 1", kType, 4711);
  EXPECT_EQ(seeker_.waitFor({{"event", "resolved"}})["port"], 4711);
}

TEST_P(Resolution, FollowsARegistrationThatMovesToAnotherPort) {
  publishAndResolve();
  seeker_.waitFor({{"event", "resolved"}, {"port", 4711}});
  publisher_.stop("till");
  publisher_.waitFor({{"event", "stopped"}});
  publisher_.publish("moved", "Till 1", kType, 4712, {{"unique", true}});
  publisher_.waitFor({{"event", "published"}, {"name", "Till 1"}});
  const Json report = seeker_.waitFor({{"event", "resolved"}, {"port", 4712}});
  for (const Json& address : report["addresses"])
    EXPECT_EQ(address["port"], 4712) << report;
}

TEST_P(Resolution, IsStoppedAtOnce) {
  seeker_.resolve("absent", "Absent", kType, 15);
  seeker_.waitFor({{"event", "willResolve"}});
  seeker_.stop("absent");
  seeker_.waitFor({{"event", "stopped"}});
}

TEST_P(Resolution, TellsNothingAfterItsStop) {
  publishAndResolve();
  seeker_.stop("till");
  const double stopped = seeker_.waitFor({{"event", "stopped"}, {"service", "till"}})["ms"];
  seeker_.resolve("other", "Till 1", kType, 15);
  seeker_.waitFor({{"event", "resolved"}, {"service", "other"}});
  for (const Json& event : seeker_.untaken())
    EXPECT_TRUE(event.value("service", "") != "till" || event["ms"] <= stopped) << event;
}

TEST_P(Resolution, ReachesItsOwnPublications) {
  publisher_.publish("till", "Till 1", kType, 4711);
  publisher_.waitFor({{"event", "published"}});
  publisher_.resolve("own", "Till 1", kType, 15);
  EXPECT_EQ(publisher_.waitFor({{"event", "resolved"}})["port"], 4711);
}

/// A service that the seeker has resolved at port 4711, and that goes to port 4712.
class MovedService : public Resolution {
 protected:
  void SetUp() override {
    seeker_.browse(kType);  // keeps what the seeker knows of the network
    publishAndResolve();
    seeker_.waitFor({{"event", "resolved"}, {"port", 4711}});
  }

  void expectNewPlace(Probe& publisher) {
    publisher.waitFor({{"event", "published"}, {"service", "moved"}});
    awaitArrival(publisher, "Till 2");  // the old records are mostly still known then
    seeker_.stop("till");
    seeker_.resolve("again", "Till 1", kType, 15);
    EXPECT_EQ(seeker_.waitFor({{"event", "resolved"}, {"service", "again"}})["port"], 4712);
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, MovedService, everyPair(), nameOfPair);

TEST_P(MovedService, IsResolvedAtItsNewPlaceAtOnce) {
  publisher_.stop("till");
  publisher_.publish("moved", "Till 1", kType, 4712);
  expectNewPlace(publisher_);
}

TEST_P(MovedService, IsResolvedAtItsNewPlaceThoughItsPublisherWasKilled) {
  publisher_.kill(SIGKILL);
  if (GetParam().publisher == Backend::daemon) {  // until then the name is taken
    seeker_.waitFor({{"event", "removed"}, {"name", "Till 1"}});
  }
  Probe successor(hosts_.here, GetParam().publisher);
  successor.publish("moved", "Till 1", kType, 4712);
  expectNewPlace(successor);
}

}  // namespace
}  // namespace rvf::network
