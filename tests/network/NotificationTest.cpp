// SPDX-License-Identifier: Apache-2.0

// Notifications from one host to another.

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <string>

#include "Platform/Network/HostName.h"
#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

Deadline patience() {
  return steady_clock::now() + Probe::kPatience;
}

/// The publisher posts, the seeker observes.
class Notification : public PairTest {
 protected:
  static constexpr const char* kName = "_rvf-menu._tcp";
  static constexpr const char* kOther = "_rvf-other._tcp";

  Json delivery(const char* name = kName) {
    return seeker_.waitFor({{"event", "delivered"}, {"name", name}});
  }
  /// How often the name was delivered and not waited for, after everything has arrived that was
  /// posted before.
  std::ptrdiff_t furtherDeliveries(const char* name = kName) {
    seeker_.observe(kOther);
    publisher_.post(kOther);
    delivery(kOther);
    const auto events = seeker_.untaken();
    return std::count_if(events.begin(), events.end(), [name](const Json& event) {
      return event["event"] == "delivered" && event["name"] == name;
    });
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, Notification, everyPair(), nameOfPair);

TEST_P(Notification, IsDeliveredOnce) {
  seeker_.observe(kName);
  publisher_.post(kName);
  delivery();
  EXPECT_EQ(furtherDeliveries(), 0);
}

TEST_P(Notification, IsReceivedByItsOwnProcess) {
  publisher_.observe(kName);
  publisher_.post(kName);
  publisher_.waitFor({{"event", "delivered"}, {"name", kName}});
}

TEST_P(Notification, TwoPostsInARowAreTwoDeliveries) {
  seeker_.observe(kName);
  publisher_.post(kName, 2);
  delivery();
  delivery();
  EXPECT_EQ(furtherDeliveries(), 0);
}

TEST_P(Notification, PostsOfTwoHostsOfOneNameAreTwoDeliveries) {
  seeker_.observe(kName);
  seeker_.post(kName);
  publisher_.post(kName);
  delivery();
  delivery();
  EXPECT_EQ(furtherDeliveries(), 0);
}

TEST_P(Notification, PostsOfTwoProcessesOfOneHostAreTwoDeliveries) {
  Probe second(hosts_.here, GetParam().publisher);
  seeker_.observe(kName);
  publisher_.post(kName);
  second.post(kName);
  delivery();
  delivery();
  EXPECT_EQ(furtherDeliveries(), 0);
}

TEST_P(Notification, IsNotDeliveredToAnObserverThatWasRemoved) {
  seeker_.observe(kName);
  publisher_.post(kName);
  delivery();
  seeker_.endObserving(kName);
  publisher_.post(kName);
  EXPECT_EQ(furtherDeliveries(), 0);
}

TEST_P(Notification, IsStillReceivedByWhoObservesWithinTenSeconds) {
  publisher_.post(kName);
  publisher_.observe(kName);
  publisher_.waitFor({{"event", "delivered"}, {"name", kName}});
  seeker_.observe(kName);
  delivery();
}

/// In real time, and the post that follows touches it.
TEST_P(Notification, EndsAfterTenSecondsAndThePostThatTouchesItIsADeliveryToo) {
  seeker_.browse(kName);
  seeker_.observe(kName);
  publisher_.post(kName, 1, true);
  const double posted = publisher_.waitFor({{"event", "posting"}})["ms"];
  const Json first = seeker_.waitFor({{"event", "found"}});
  delivery();
  publisher_.waitFor({{"event", "postedAgain"}});
  EXPECT_GE(delivery()["ms"].get<double>() - posted, 10000);
  const double removed = seeker_.waitFor({{"event", "removed"}, {"name", first["name"]}})["ms"];
  EXPECT_GE(removed - posted, 10000);
  EXPECT_EQ(furtherDeliveries(), 0) << "the withdrawal is none";
}

TEST_P(Notification, IsNotReceivedByWhoObservesLater) {
  seeker_.browse(kName);
  publisher_.post(kName);
  seeker_.waitFor({{"event", "found"}});
  seeker_.waitFor({{"event", "removed"}});
  seeker_.observe(kName);
  EXPECT_EQ(furtherDeliveries(), 0);
}

TEST_P(Notification, OfAPosterThatWasKilledIsForgottenSoon) {
  seeker_.browse(kName);
  publisher_.post(kName);
  const double found = seeker_.waitFor({{"event", "found"}})["ms"];
  publisher_.kill(SIGKILL);
  const double removed = seeker_.waitFor({{"event", "removed"}})["ms"];
  EXPECT_LT(removed - found, 15000);
}

TEST_P(Notification, EachOfAHundredInARowIsADelivery) {
  constexpr int kPosts = 100;
  seeker_.observe(kName);
  publisher_.post(kName, kPosts);
  for (int i = 0; i < kPosts; ++i)
    delivery();
  EXPECT_EQ(furtherDeliveries(), 0);
}

/// The stacks compare each record with every other, so these keep them busy for longer than some of
/// the publications last: what is delivered depends on the machine. The daemon announces and
/// withdraws as late as it comes to it: a thousand half a minute late, and more on a busy machine.
class ManyNotifications : public testing::TestWithParam<Backend> {
 protected:
  static constexpr const char* kName = "_rvf-menu._tcp";
  static constexpr std::chrono::milliseconds kLongPatience{90000};

  NetworkHost host_{"a"};
  NetworkHost other_{"b"};
};

INSTANTIATE_TEST_SUITE_P(Backends, ManyNotifications, everyBackend(), nameOfBackend);

TEST_P(ManyNotifications, InARowLeaveNothingBehind) {
  const int posts = GetParam() == Backend::daemon ? 300 : 1000;
  host_.connect(other_, 0);
  Probe publisher(host_, GetParam());
  publisher.observe("_rvf-other._tcp");  // keeps the back end and its descriptors
  publisher.post("_rvf-other._tcp");
  publisher.waitFor({{"event", "delivered"}});
  const int before = publisher.countDescriptors();
  publisher.post(kName, posts, true);
  publisher.waitFor({{"event", "posted"}});
  EXPECT_EQ(publisher.countDescriptors(), before + posts);
  publisher.waitFor({{"event", "postedAgain"}}, kLongPatience);
  EXPECT_EQ(publisher.countDescriptors(), before) << "without the first post, but with the last";
  Probe late(other_, Backend::embedded);
  late.browse(kName);
  const Json found = late.waitFor({{"event", "found"}}, kLongPatience);
  late.waitFor({{"event", "removed"}, {"name", found["name"]}}, kLongPatience);
  for (const Json& event : late.untaken()) {
    if (event["event"] != "found") continue;
    late.waitFor({{"event", "removed"}, {"name", event["name"]}}, kLongPatience);
  }
}

// Foreign peers

class ForeignNotification : public testing::TestWithParam<Backend> {
 protected:
  static constexpr const char* kName = "_rvf-menu._tcp";

  ForeignNotification() { hosts_.there.startDaemon(); }
  Process foreign(const Arguments& program) {
    return Process(hosts_.there.inside(program), hosts_.there.environment());
  }

  TwoHosts hosts_;
  Probe probe_{hosts_.here, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Backends, ForeignNotification, everyBackend(), nameOfBackend);

TEST_P(ForeignNotification, AvahiBrowseSeesAPostNamedAfterTheComputerWithoutARecord) {
  Process browser = foreign({"avahi-browse", "--resolve", "--parsable", kName});
  probe_.post(kName);
  const std::string line =
      browser.lineWith({"=;", ";IPv4;", computerName() + "-", "10.99.0.1"}, patience());
  EXPECT_THAT(line, testing::MatchesRegex(".*;local;[^;]*;10\\.99\\.0\\.1;[1-9][0-9]*;(\"\")?"));
  const std::string name = line.substr(0, line.find(";_rvf"));
  browser.lineWith({"-;", name.substr(name.rfind(';'))}, patience());
}

TEST_P(ForeignNotification, WhatAvahiPublishAnnouncesIsDelivered) {
  probe_.observe(kName);
  Process publisher = foreign({"avahi-publish", "--service", "Any name", kName, "4712", "a=b"});
  probe_.waitFor({{"event", "delivered"}, {"name", kName}});
}

/// Keeps the only port that the host may choose.
TEST_P(ForeignNotification, WithoutAFreePortThePostIsDroppedAndLaterOnesAreNot) {
  run(hosts_.here.inside({"sh", "-c", "echo 40000 40000 >/proc/sys/net/ipv4/ip_local_port_range"}));
  Process holder(hosts_.here.inside(
      {"python3", "-uc",
       "import socket; s = socket.create_server(('', 40000)); print('held'); input()"}));
  holder.lineWith({"held"}, patience());
  Process browser = foreign({"avahi-browse", "--parsable", kName});
  probe_.post(kName);
  probe_.waitFor({{"event", "posted"}});
  holder.kill(SIGKILL);
  holder.wait();
  probe_.post("_rvf-other._tcp");
  probe_.browse(kName);
  probe_.observe("_rvf-other._tcp");
  probe_.waitFor({{"event", "delivered"}, {"name", "_rvf-other._tcp"}});
  for (const Json& event : probe_.untaken())
    EXPECT_NE(event["event"], "found") << event;
}

}  // namespace
}  // namespace rvf::network
