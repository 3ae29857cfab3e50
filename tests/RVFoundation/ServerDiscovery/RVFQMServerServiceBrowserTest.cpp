// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSArray.h"
#include "tests/RVFoundation/ServerDiscovery/ScriptedDiscovery.h"

namespace rvf {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view kDemoRecord(
    "\x06"
    "demo=1",
    7);

Ref<NSNetService> registration(std::string_view domain, std::string_view name = "Till") {
  return NSNetService::initWithDomain(domain, "_quillmarsh._tcp.", name);
}

class RVFQMServerServiceBrowserTest : public ::testing::Test {
 protected:
  ~RVFQMServerServiceBrowserTest() override { browser_->stop(); }

  void start() {
    browser_->startBrowsingWithServiceListChangedHandler(
        [this](const auto& added, const auto& removed, const auto& changed) {
          if (added) reports_.push_back("added");
          if (removed) reports_.push_back("removed");
          if (changed) reports_.push_back("changed");
          last_ = added ? added : removed ? removed : changed;
        });
  }
  /// Delivers what is queued on the run loop.
  static void turn() {
    while (NSRunLoop::currentRunLoop()->turn()) {
    }
  }
  void find(const Ref<NSNetService>& service, bool moreComing = false) {
    browser_->netServiceBrowserDidFindService(nullptr, service, moreComing);
  }
  void remove(const Ref<NSNetService>& service) {
    browser_->netServiceBrowserDidRemoveService(nullptr, service, false);
  }

  ScriptedDiscovery discovery_;
  Ref<RVFQMServerServiceBrowser> browser_ = RVFQMServerServiceBrowser::serviceBrowser();
  std::vector<std::string> reports_;
  Ref<RVFQMServerService> last_;
};

TEST_F(RVFQMServerServiceBrowserTest, SearchesTheConstantTypeWhateverTheProperty) {
  EXPECT_EQ(browser_->serviceType(), "_quillmarsh._tcp");
  browser_->setServiceType("_other._tcp");
  start();
  ASSERT_EQ(discovery_->browses.size(), 1U);
  EXPECT_EQ(discovery_->browses[0]->identity.type, "_quillmarsh._tcp.");
  EXPECT_EQ(discovery_->browses[0]->identity.domain, "");
  EXPECT_EQ(browser_->serviceType(), "_other._tcp");
}

TEST_F(RVFQMServerServiceBrowserTest, ReportsWhatItsSearchFindsFromTheRunLoop) {
  start();
  const auto& search = discovery_->browses.at(0)->events;
  const ServiceIdentity till{"Till", "_quillmarsh._tcp.", "local."};
  const ServiceIdentity wide{"Till", "_quillmarsh._tcp.", "shop.example."};
  search.found(till, {2, AF_INET});
  search.found(till, {2, AF_INET6});
  search.found(wide, {2, AF_INET});
  EXPECT_THAT(reports_, IsEmpty());
  turn();
  EXPECT_THAT(reports_, ElementsAre("added", "changed"));
  discovery_->watches.at(0)->events.updated({std::byte{6}, std::byte{'d'}, std::byte{'e'},
                                             std::byte{'m'}, std::byte{'o'}, std::byte{'='},
                                             std::byte{'1'}});
  turn();
  EXPECT_TRUE(last_->isDemo());
  search.removed(till, {2, AF_INET});
  search.removed(wide, {2, AF_INET});
  search.removed(till, {2, AF_INET6});
  turn();
  EXPECT_THAT(reports_, ElementsAre("added", "changed", "changed", "changed", "removed"));
  EXPECT_THAT(browser_->services(), IsEmpty());
}

TEST_F(RVFQMServerServiceBrowserTest, HearsNothingMoreOfItsSearchAfterStop) {
  start();
  discovery_->browses.at(0)->events.found({"Till", "_quillmarsh._tcp.", "local."}, {2, AF_INET});
  browser_->stop();
  turn();
  EXPECT_THAT(reports_, IsEmpty());
  EXPECT_FALSE(discovery_->browses[0]->isActive);
}

TEST_F(RVFQMServerServiceBrowserTest, GroupsRegistrationsByName) {
  start();
  find(registration("local."), true);
  find(registration("a.b."));
  EXPECT_THAT(reports_, ElementsAre("added", "changed"));
  EXPECT_EQ(browser_->services().size(), 1U);
}

TEST_F(RVFQMServerServiceBrowserTest, RemovingOneOfTwoReportsNothingBeforeItIsLoaded) {
  start();
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  find(local);
  find(remote);
  reports_.clear();
  remove(remote);
  EXPECT_THAT(reports_, IsEmpty());
  remove(local);
  EXPECT_THAT(reports_, ElementsAre("removed"));
  EXPECT_THAT(browser_->services(), IsEmpty());
}

TEST_F(RVFQMServerServiceBrowserTest, ALoadedServerReportsTheRemovalOfOneOfItsRegistrations) {
  start();
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  find(local);
  find(remote);
  last_->netServiceDidUpdateTXTRecordData(local, NSData::dataWithBytes(kDemoRecord));
  reports_.clear();
  remove(remote);
  EXPECT_THAT(reports_, ElementsAre("changed"));
}

TEST_F(RVFQMServerServiceBrowserTest, AnUnknownRemovalReportsAnEmptyServer) {
  start();
  remove(registration("local.", "Stranger"));
  EXPECT_THAT(reports_, ElementsAre("removed"));
  EXPECT_THAT(last_->netServices(), IsEmpty());
  EXPECT_THAT(browser_->services(), IsEmpty());
}

TEST_F(RVFQMServerServiceBrowserTest, WithoutAHandlerTheListIsKept) {
  const auto local = registration("local.");
  find(local);
  EXPECT_EQ(browser_->services().size(), 1U);
  remove(local);
  EXPECT_THAT(browser_->services(), IsEmpty());
}

TEST_F(RVFQMServerServiceBrowserTest, AnAddedServerIsNotLoadedUntilAChangedReport) {
  start();
  const auto local = registration("local.");
  find(local);
  EXPECT_FALSE(last_->isLoaded());
  last_->netServiceDidUpdateTXTRecordData(local, NSData::dataWithBytes(kDemoRecord));
  EXPECT_THAT(reports_, ElementsAre("added", "changed"));
  EXPECT_TRUE(last_->isLoaded() && last_->isDemo());
}

TEST_F(RVFQMServerServiceBrowserTest, StopForgetsAllAndSilencesKnownServers) {
  start();
  const auto local = registration("local.");
  find(local);
  const auto server = last_;
  reports_.clear();
  browser_->stop();
  EXPECT_THAT(browser_->services(), IsEmpty());
  EXPECT_FALSE(discovery_->browses[0]->isActive);
  EXPECT_EQ(local->delegate(), nullptr);
  server->netServiceDidUpdateTXTRecordData(local, NSData::dataWithBytes(kDemoRecord));
  EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(RVFQMServerServiceBrowserTest, MayBeStartedAgainAfterStop) {
  start();
  browser_->stop();
  start();
  EXPECT_EQ(discovery_->browses.size(), 2U);
  find(registration("local."));
  EXPECT_THAT(reports_, ElementsAre("added"));
}

TEST_F(RVFQMServerServiceBrowserTest, TheHandlerMayStopTheBrowser) {
  int calls = 0;
  browser_->startBrowsingWithServiceListChangedHandler([&](const auto&, const auto&, const auto&) {
    ++calls;
    browser_->stop();
  });
  find(registration("local."));
  find(registration("local.", "Other"));
  EXPECT_EQ(calls, 1);
}

TEST_F(RVFQMServerServiceBrowserTest, AChangeWithoutAHandlerIsAProgrammingError) {
  const auto local = registration("local.");
  find(local);
  const auto server = browser_->services().front();
  EXPECT_THROW(server->netServiceDidUpdateTXTRecordData(local, NSData::dataWithBytes(kDemoRecord)),
               NSException);
}

TEST_F(RVFQMServerServiceBrowserTest, CleanupStopsServersAndKeepsTheList) {
  start();
  const auto local = registration("local.");
  find(local);
  browser_->cleanupNetServices();
  EXPECT_EQ(browser_->services().size(), 1U);
  EXPECT_FALSE(last_->serviceChangedHandler());
  EXPECT_EQ(local->delegate(), nullptr);
}

TEST_F(RVFQMServerServiceBrowserTest, IsReleasedAfterStop) {
  start();
  find(registration("local."));
  browser_->stop();
  const std::weak_ptr<RVFQMServerServiceBrowser> weak = browser_;
  browser_ = RVFQMServerServiceBrowser::serviceBrowser();
  EXPECT_TRUE(weak.expired());
}

TEST_F(RVFQMServerServiceBrowserTest, GoesAwayWithoutStopWhereNoServerIsKnown) {
  start();
  browser_ = RVFQMServerServiceBrowser::serviceBrowser();
  EXPECT_FALSE(discovery_->browses[0]->isActive);
}

struct DemoRow {
  std::string entry;  ///< one TXT string; empty: an empty record
  bool answer;
  std::optional<bool> flag;  ///< absent: untouched
};

class DemoRecord : public ::testing::TestWithParam<DemoRow> {};

TEST_P(DemoRecord, TellsTheFlag) {
  const DemoRow& row = GetParam();
  std::string record;
  if (!row.entry.empty()) record = static_cast<char>(row.entry.size()) + row.entry;
  for (const bool before : {false, true}) {
    bool flag = before;
    const auto data = NSData::dataWithBytes(record);
    EXPECT_EQ(RVFQMServerServiceBrowser::serviceContainsDemo(&flag, data), row.answer) << row.entry;
    EXPECT_EQ(flag, row.flag.value_or(before)) << row.entry;
    EXPECT_EQ(RVFQMServerServiceBrowser::serviceContainsDemo(nullptr, data), row.answer);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, DemoRecord,
    ::testing::Values(DemoRow{"demo=1", true, true}, DemoRow{"demo=yes", true, true},
                      DemoRow{"demo=true", true, true}, DemoRow{"demo= +01", true, true},
                      DemoRow{"demo=0", true, false}, DemoRow{"demo=no", true, false},
                      DemoRow{"demo=", true, false}, DemoRow{"demo", false, false},
                      DemoRow{"demo=\xFF", false, false}, DemoRow{"Demo=1", false, false},
                      DemoRow{"other=1", false, false}, DemoRow{"", false, std::nullopt}));

TEST(DemoRecordWithDoubledKey, TheFirstEntryCounts) {
  bool flag = false;
  EXPECT_TRUE(RVFQMServerServiceBrowser::serviceContainsDemo(
      &flag, NSData::dataWithBytes(std::string_view("\x06"
                                                    "demo=1\x06"
                                                    "demo=0",
                                                    14))));
  EXPECT_TRUE(flag);
}

TEST(DemoRecordAbsent, AnswersFalseAndLeavesTheFlagAlone) {
  bool flag = true;
  EXPECT_FALSE(RVFQMServerServiceBrowser::serviceContainsDemo(&flag, nullptr));
  EXPECT_TRUE(flag);
}

TEST(DemoRecordOfOneZeroByte, AnswersFalseAndStoresFalse) {
  bool flag = true;
  EXPECT_FALSE(RVFQMServerServiceBrowser::serviceContainsDemo(
      &flag, NSData::dataWithBytes(std::string_view("\0", 1))));
  EXPECT_FALSE(flag);
}

TEST_F(RVFQMServerServiceBrowserTest, AnswersItsListsAsArraysToMessages) {
  start();
  browser_->netServiceBrowserDidFindService(nullptr, registration("local."), false);
  const auto services = send<Ref<NSArray>>(browser_, SEL("services"));
  ASSERT_EQ(services->count(), 1U);
  EXPECT_EQ(send<Ref<NSArray>>(services->firstObject(), SEL("netServices"))->count(), 1U);
}

}  // namespace
}  // namespace rvf
