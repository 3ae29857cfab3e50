// SPDX-License-Identifier: Apache-2.0

// How the embedded stack shares a machine with others.

#include <algorithm>
#include <csignal>
#include <string>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

constexpr const char* kType = "_rvf-test._tcp";
constexpr int kMulticastDNSPort = 5353;

/// How many sockets of a host have the port of multicast DNS.
auto multicastSocketCount(const NetworkHost& host) {
  const std::string lines = run(host.inside({"ss", "-Huln", "sport", "= 5353"}));
  return std::count(lines.begin(), lines.end(), '\n');
}

TEST(EmbeddedStack, StartsAsSoonAsThePortThatAnotherProgramHeldIsFree) {
  TwoHosts hosts;
  Probe holder(hosts.here, Backend::embedded);
  holder.holdPort(kMulticastDNSPort);
  holder.waitFor({{"event", "holding"}});
  Probe publisher(hosts.here, Backend::embedded);
  publisher.publish("till", "Till 1", kType, 4711);
  publisher.waitFor({{"event", "willPublish"}});
  EXPECT_EQ(multicastSocketCount(hosts.here), 1) << "the publisher has started already";
  Probe seeker(hosts.there, Backend::embedded);
  seeker.browse(kType);
  holder.kill(SIGKILL);
  seeker.waitFor({{"event", "found"}, {"name", "Till 1"}});
}

TEST(EmbeddedStack, LivesBesideADaemonAndOtherStacksWithoutConflict) {
  TwoHosts hosts;
  Probe first(hosts.here, Backend::embedded);
  first.publish("till", "Till 1", kType, 4711);
  first.waitFor({{"event", "published"}});
  hosts.here.startDaemon();  // would never be complete over a conflict
  Probe second(hosts.here, Backend::embedded);
  Probe third(hosts.here, Backend::daemon);
  Probe seeker(hosts.there, Backend::embedded);
  seeker.browse(kType);
  second.publish("till", "Till 2", kType, 4712);
  third.publish("till", "Till 3", kType, 4713);
  for (const char* name : {"Till 1", "Till 2", "Till 3"}) {
    seeker.waitFor({{"event", "found"}, {"name", name}});
    seeker.resolve(name, name, kType, 15);
    seeker.waitFor({{"event", "resolved"}, {"name", name}});
  }
  EXPECT_EQ(hosts.here.daemonLog().find("conflict"), std::string::npos) << hosts.here.daemonLog();
}

TEST(EmbeddedStack, IsReadyForTheFirstLinkThatAppears) {
  NetworkHost here("a");
  NetworkHost there("b");
  Probe publisher(here, Backend::embedded);
  Probe seeker(there, Backend::embedded);
  publisher.publish("till", "Till 1", kType, 4711);
  seeker.browse(kType);
  publisher.waitFor({{"event", "published"}});
  here.connect(there, 0);
  seeker.waitFor({{"event", "found"}, {"name", "Till 1"}});
  seeker.resolve("till", "Till 1", kType, 15);
  seeker.waitFor({{"event", "resolved"}, {"port", 4711}});
}

TEST(EmbeddedStack, LosesNothingButTheDeadPublisherWhenAnotherOfItsMachineIsKilled) {
  TwoHosts hosts;
  Probe survivor(hosts.here, Backend::embedded);
  Probe victim(hosts.here, Backend::embedded);
  Probe seeker(hosts.there, Backend::embedded);
  seeker.browse(kType);
  survivor.publish("till", "Till 1", kType, 4711);
  victim.publish("till", "Till 2", kType, 4712, {{"lifetime", 2}});
  seeker.waitFor({{"event", "found"}, {"name", "Till 1"}});
  seeker.waitFor({{"event", "found"}, {"name", "Till 2"}});
  victim.kill(SIGKILL);
  seeker.waitFor({{"event", "removed"}, {"name", "Till 2"}});
  for (const Json& event : seeker.untaken())
    EXPECT_NE(event["event"], "removed") << event;
}

}  // namespace
}  // namespace rvf::network
