// SPDX-License-Identifier: Apache-2.0

// The way from a shop's server on one host to a till on another, as the programs go it: announced,
// found, resolved, connected to, and its answer read.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

constexpr int kProducts = 200;
constexpr const char* kName = "Till Åäö";

/// A storefront on the first host and the tool on the second, each with its back end.
class Connection : public testing::TestWithParam<BackendPair> {
 protected:
  static Deadline deadline() { return steady_clock::now() + Probe::kPatience; }

  /// Starts the server, or another after it, and returns when it is announced.
  void openShop(int port) {
    shop_ = std::make_unique<Process>(
        hosts_.here.inside({RVF_STOREFRONT, "--name", kName, "--port", std::to_string(port),
                            "--backend", nameOf(GetParam().publisher), "--products",
                            std::to_string(kProducts), "--authority-file", authority()}),
        hosts_.here.environment());
    shop_->lineWith({"published", kName, std::to_string(port)}, deadline());
  }

  void closeShop(int signal) {
    shop_->kill(signal);
    shop_->wait();
  }

  bool saysGoodbyeForTheKilled() const { return GetParam().publisher == Backend::daemon; }

  Arguments tool(const Arguments& arguments) const {
    Arguments all{RVF_TOOL, "--backend", nameOf(GetParam().seeker)};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return hosts_.there.inside(all);
  }

  Json report(const Arguments& arguments) const {
    return Json::parse(run(tool(arguments), hosts_.there.environment()));
  }

  Json connect() const { return report({"connect", kName, "--ca-file", authority(), "--json"}); }

  std::unique_ptr<Process> browse() const {
    return std::make_unique<Process>(tool({"browse", "--json"}), hosts_.there.environment());
  }

  Json nextOf(Process& browser, const std::string& event) const {
    return Json::parse(browser.lineWith({"\"event\":\"" + event + "\"", kName}, deadline()));
  }

  std::string authority() const { return hosts_.here.file("authority.pem").string(); }

  static std::string linkLocal(int interfaceIndex, int port) {
    return "\\[fe80:.*%" + std::to_string(interfaceIndex) + "\\]:" + std::to_string(port);
  }

  TwoHosts hosts_{GetParam().publisher, GetParam().seeker};
  std::unique_ptr<Process> shop_;
};

INSTANTIATE_TEST_SUITE_P(Pairs, Connection, everyPair(), nameOfPair);

TEST_P(Connection, BrowsingTellsTheDemoFlagOfAServerThatComes) {
  const auto browser = browse();
  openShop(9630);
  const Json added = nextOf(*browser, "added");
  EXPECT_EQ(added["demo"], nullptr);
  EXPECT_EQ(added["domain"], "local.");
  const Json changed = nextOf(*browser, "changed");
  EXPECT_EQ(changed["demo"], true);
  EXPECT_EQ(changed["registrations"], 1);
}

/// It is content with the first addresses that it gets, of either family.
TEST_P(Connection, ResolvingGivesAddressesAndTheBaseURL) {
  openShop(9631);
  const Json found = report({"resolve", kName, "--json"});
  const int link = hosts_.there.interfaceIndex("v0");
  const auto addresses = found["addresses"].get<std::vector<std::string>>();
  EXPECT_THAT(addresses, testing::Not(testing::IsEmpty()));
  EXPECT_THAT(addresses, testing::Each(testing::AnyOf(
                             "10.99.0.1:9631", testing::MatchesRegex(linkLocal(link, 9631)))));
  EXPECT_THAT(found["url"].get<std::string>(),
              testing::MatchesRegex("https://(10.99.0.1|\\[fe80:.*%25.*\\]):9631/"));
}

TEST_P(Connection, TheWholeAnswerIsRead) {
  openShop(9630);
  const Json answer = connect();
  EXPECT_EQ(answer["name"], kName);
  EXPECT_EQ(answer["demo"], true);
  EXPECT_EQ(answer["products"], kProducts);
}

TEST_P(Connection, NeedsNoMoreThanLinkLocalAddresses) {
  hosts_.here.removeAddress("v0", "10.99.0.1/24");
  hosts_.there.removeAddress("v0", "10.99.0.2/24");
  openShop(9630);
  const Json answer = connect();
  EXPECT_EQ(answer["products"], kProducts);
  const int link = hosts_.there.interfaceIndex("v0");
  EXPECT_THAT(answer["addresses"].get<std::vector<std::string>>(),
              testing::ElementsAre(testing::MatchesRegex(linkLocal(link, 9630))));
}

TEST_P(Connection, AServerThatEndsIsRemovedAndFoundAgainWhenItIsBack) {
  const auto browser = browse();
  openShop(9630);
  nextOf(*browser, "changed");
  closeShop(SIGTERM);
  nextOf(*browser, "removed");
  openShop(9700);
  nextOf(*browser, "added");
  EXPECT_EQ(connect()["products"], kProducts);
}

TEST_P(Connection, AServerThatWasKilledIsReachedAgainWhereItsSuccessorListens) {
  const auto browser = browse();
  openShop(9630);
  nextOf(*browser, "changed");
  closeShop(SIGKILL);
  if (saysGoodbyeForTheKilled()) nextOf(*browser, "removed");  // until then the name is taken
  openShop(9700);
  EXPECT_EQ(connect()["products"], kProducts);
}

/// Without a goodbye only a daemon that has seen it still knows it, and then it refuses.
TEST_P(Connection, AServerThatWasKilledIsNotWaitedFor) {
  constexpr int kNoHost = 68;
  constexpr int kUnavailable = 69;
  const auto browser = browse();
  openShop(9630);
  nextOf(*browser, "changed");
  closeShop(SIGKILL);
  if (saysGoodbyeForTheKilled()) nextOf(*browser, "removed");
  const bool isRemembered =
      GetParam().publisher == Backend::embedded && GetParam().seeker == Backend::daemon;
  Process attempt(tool({"connect", kName, "--timeout", "2"}), hosts_.there.environment());
  EXPECT_EQ(attempt.wait(), isRemembered ? kUnavailable : kNoHost);
}

using TypedAddress = Connection;

INSTANTIATE_TEST_SUITE_P(Embedded, TypedAddress,
                         testing::Values(BackendPair{Backend::embedded, Backend::embedded}),
                         nameOfPair);

TEST_P(TypedAddress, ReachesTheServerInEveryForm) {
  openShop(9630);
  const std::string linkLocal =
      run(hosts_.here.inside({"sh", "-c", "ip -6 -o addr show v0 | grep -o 'fe80:[^/]*'"}));
  const std::string inBrackets = "[" + linkLocal.substr(0, linkLocal.size() - 1) + "%v0]";
  for (const std::string& address : {std::string("10.99.0.1"), std::string("10.99.0.1:9630"),
                                     inBrackets, inBrackets + ":9630"}) {
    SCOPED_TRACE(address);
    const Json answer =
        report({"connect", "--static", address, "--ca-file", authority(), "--json"});
    EXPECT_EQ(answer["products"], kProducts);
    EXPECT_EQ(answer["demo"], nullptr);
  }
}

TEST_P(TypedAddress, IsUnavailableWhileNoServerListensThere) {
  openShop(9630);
  closeShop(SIGKILL);
  Process refused(tool({"connect", "--static", "10.99.0.1"}));
  EXPECT_EQ(refused.wait(), 69);
  openShop(9630);
  EXPECT_EQ(
      report({"connect", "--static", "10.99.0.1", "--ca-file", authority(), "--json"})["products"],
      kProducts);
}

/// The daemons speak of a second domain, and somebody else publishes there.
class TwoDomains : public testing::TestWithParam<Backend> {
 protected:
  TwoDomains() {
    hosts_.there.setBrowseDomain("shop.local");
    hosts_.there.startDaemon();
  }
  TwoHosts hosts_;
};

INSTANTIATE_TEST_SUITE_P(Publishers, TwoDomains, everyBackend(), nameOfBackend);

TEST_P(TwoDomains, RegistrationsOfOneNameAreOneServer) {
  if (!hosts_.here.hasDaemon()) hosts_.here.startDaemon();
  const auto end = [] { return steady_clock::now() + Probe::kPatience; };
  Process tool(hosts_.there.inside({RVF_TOOL, "--backend", "daemon", "browse", "--json"}),
               hosts_.there.environment());
  Probe publisher(hosts_.here, GetParam());
  publisher.publish("till", "Till", "_quillmarsh._tcp", 4711, {{"txt", {{"demo", "1"}}}});
  Json last = Json::parse(tool.lineWith({"\"changed\""}, end()));
  EXPECT_EQ(last["registrations"], 1);
  Process elsewhere(hosts_.here.inside({"avahi-publish", "--service", "--domain=shop.local", "Till",
                                        "_quillmarsh._tcp", "4712", "demo=1"}),
                    hosts_.here.environment());
  last = Json::parse(tool.lineWith({"\"changed\""}, end()));
  EXPECT_EQ(last["registrations"], 2);
  EXPECT_EQ(last["domain"], "local.");
}

}  // namespace
}  // namespace rvf::network
