// SPDX-License-Identifier: Apache-2.0

// Avahi's own command-line tools as the peer, on a host with an Avahi daemon.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <vector>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

constexpr const char* kType = "_rvf-test._tcp";

std::string lineWith(Process& process, const std::vector<std::string>& pieces) {
  return process.lineWith(pieces, steady_clock::now() + Probe::kPatience);
}

class ForeignPeer : public testing::TestWithParam<Backend> {
 protected:
  ForeignPeer() { hosts_.there.startDaemon(); }

  Process foreign(const Arguments& program) {
    return Process(hosts_.there.inside(program), hosts_.there.environment());
  }

  TwoHosts hosts_;
  Probe probe_{hosts_.here, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Backends, ForeignPeer, everyBackend(), nameOfBackend);

TEST_P(ForeignPeer, FindsAndResolvesWhatWePublish) {
  probe_.publish("till", "Till 1", kType, 4711, {{"txt", {{"demo", "1"}}}});
  probe_.waitFor({{"event", "published"}});
  Process browser = foreign({"avahi-browse", "--resolve", "--parsable", kType});
  const std::string line = lineWith(browser, {"=;", ";IPv4;", "Till\\0321", "10.99.0.1"});
  EXPECT_NE(line.find(";4711;\"demo=1\""), std::string::npos) << line;
}

TEST_P(ForeignPeer, SeesOurWithdrawal) {
  Process browser = foreign({"avahi-browse", "--parsable", kType});
  probe_.publish("till", "Till 1", kType, 4711);
  lineWith(browser, {"+;", "Till\\0321"});
  probe_.waitFor({{"event", "published"}});
  probe_.stop("till");
  lineWith(browser, {"-;", "Till\\0321"});
}

TEST_P(ForeignPeer, IsFoundReadAndResolved) {
  probe_.browse(kType);
  Process publisher = foreign({"avahi-publish", "--service", "Old till", kType, "4712", "demo=0"});
  probe_.waitFor({{"event", "found"}, {"name", "Old till"}});
  probe_.monitor("old", "Old till", kType);
  probe_.waitFor({{"event", "txt"}, {"entries", {{"demo", "0"}}}});
  probe_.resolve("old", "Old till", kType, 15);
  EXPECT_EQ(probe_.waitFor({{"event", "resolved"}})["port"], 4712);
  publisher.kill(SIGTERM);
  probe_.waitFor({{"event", "removed"}, {"name", "Old till"}});
}

TEST_P(ForeignPeer, ThatHasOurNameMakesUsNumberIt) {
  Process publisher = foreign({"avahi-publish", "--service", "Till", kType, "4712"});
  Process browser = foreign({"avahi-browse", "--resolve", "--parsable", kType});
  lineWith(browser, {"=;", ";Till;"});
  probe_.publish("till", "Till", kType, 4711);
  probe_.waitFor({{"event", "published"}, {"name", "Till (2)"}});
}

/// avahi-browse beside a seeker of ours, on the same host.
class BesideAvahiBrowse : public PairTest {
 protected:
  BesideAvahiBrowse() {
    if (!hosts_.there.hasDaemon()) hosts_.there.startDaemon();
  }

  /// By how many milliseconds we find a new publication later than avahi-browse shows it.
  double delayBehind(Process& browser, const std::string& name) {
    publisher_.publish(name, name, kType, 4711);
    const double started = publisher_.waitFor({{"event", "willPublish"}})["ms"];
    lineWith(browser, {"+;", ";" + name + ";"});
    const std::chrono::duration<double, std::milli> now = steady_clock::now().time_since_epoch();
    const double theirs = now.count();
    const double ours = seeker_.waitFor({{"event", "found"}, {"name", name}})["ms"];
    std::cout << "publish to found: ours " << ours - started << " ms, avahi-browse "
              << theirs - started << " ms\n";
    return ours - theirs;
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, BesideAvahiBrowse, everyPair(), nameOfPair);

TEST_P(BesideAvahiBrowse, WeFindAtMostAHundredMillisecondsLater) {
  constexpr int kRounds = 5;
  seeker_.browse(kType);
  seeker_.waitFor({{"event", "willSearch"}});
  Process browser(hosts_.there.inside({"avahi-browse", "--parsable", kType}),
                  hosts_.there.environment());
  std::vector<double> delays;
  for (int round = 0; round < kRounds; ++round)
    delays.push_back(delayBehind(browser, "Till" + std::to_string(round)));
  std::nth_element(delays.begin(), delays.begin() + kRounds / 2, delays.end());
  EXPECT_LE(delays[kRounds / 2], 100) << "milliseconds, the median";
}

}  // namespace
}  // namespace rvf::network
