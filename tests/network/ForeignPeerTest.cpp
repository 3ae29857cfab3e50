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

/// Reads lines until one holds every piece; throws when the time is up.
std::string lineWith(Process& process, const std::vector<std::string>& pieces) {
  const auto deadline = steady_clock::now() + Probe::kPatience;
  std::string seen;
  while (const auto line = process.readLine(deadline)) {
    const auto holds = [&](const std::string& piece) {
      return line->find(piece) != std::string::npos;
    };
    if (std::all_of(pieces.begin(), pieces.end(), holds)) return *line;
    seen += *line + "\n";
  }
  throw std::runtime_error("no such line; instead:\n" + seen);
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

TEST_P(ForeignPeer, DoesNotFindSoonerThanWeDo) {
  constexpr int kRounds = 5;
  Probe seeker(hosts_.there, GetParam());
  seeker.browse(kType);
  seeker.waitFor({{"event", "willSearch"}});
  Process browser = foreign({"avahi-browse", "--parsable", kType});
  std::vector<double> later;
  for (int round = 0; round < kRounds; ++round) {
    const std::string name = "Till" + std::to_string(round);
    probe_.publish(name, name, kType, 4711);
    const double started = probe_.waitFor({{"event", "willPublish"}})["ms"];
    lineWith(browser, {"+;", ";" + name + ";"});
    const double theirs =
        std::chrono::duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
    const double ours = seeker.waitFor({{"event", "found"}, {"name", name}})["ms"];
    std::cout << "publish to found: ours " << ours - started << " ms, avahi-browse "
              << theirs - started << " ms\n";
    later.push_back(ours - theirs);
  }
  std::nth_element(later.begin(), later.begin() + kRounds / 2, later.end());
  EXPECT_LE(later[kRounds / 2], 100) << "milliseconds, the median of how much later we were";
}

}  // namespace
}  // namespace rvf::network
