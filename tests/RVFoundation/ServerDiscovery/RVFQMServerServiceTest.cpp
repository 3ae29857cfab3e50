// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFQMServerService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"
#include "tests/RVFoundation/ServerDiscovery/ScriptedDiscovery.h"

namespace rvf {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view kDemoRecord(
    "\x06"
    "demo=1",
    7);
constexpr std::string_view kLiveRecord(
    "\x06"
    "demo=0",
    7);
constexpr std::string_view kOtherRecord(
    "\x05"
    "a=123",
    6);

Ref<NSNetService> registration(std::string_view domain, std::string_view name = "Till") {
  return NSNetService::initWithDomain(domain, "_quillmarsh._tcp.", name);
}

std::string wideAreaDomain(std::size_t index = 0) {
  return "1234." + RVFQMServerService::wideAreaDomainSuffixes().at(index);
}

class RVFQMServerServiceTest : public ::testing::Test {
 protected:
  ScriptedDiscovery discovery_;
  Ref<RVFQMServerService> server_ = std::make_shared<RVFQMServerService>();
  int changes_ = 0;

  void countChanges() {
    server_->setServiceChangedHandler([this] { ++changes_; });
  }
  void deliver(const Ref<NSNetService>& service, std::string_view record) {
    server_->netServiceDidUpdateTXTRecordData(service, NSData::dataWithBytes(record));
  }
};

TEST_F(RVFQMServerServiceTest, StartsEmptyAndNotLoaded) {
  EXPECT_TRUE(server_->netServices().empty());
  EXPECT_EQ(server_->mainService(), nullptr);
  EXPECT_EQ(server_->name(), std::nullopt);
  EXPECT_FALSE(server_->isDemo());
  EXPECT_FALSE(server_->isLoaded());
  EXPECT_FALSE(server_->isUsingBackToMyMac());
}

TEST_F(RVFQMServerServiceTest, IsFoundByPredicate) {
  const auto search =
      NSPredicate::predicateWithFormat("isDemo == NO AND name CONTAINS[cd] $SEARCH");
  const auto typed = NSDictionary::dictionaryWithEntries({{"SEARCH", box("cafe")}});
  EXPECT_FALSE(search->evaluateWithObject(server_, typed));
  server_->addNetService(registration("local.", "Till, CAFÉ"));
  EXPECT_TRUE(search->evaluateWithObject(server_, typed));
  server_->setIsDemo(true);
  EXPECT_FALSE(search->evaluateWithObject(server_, typed));
}

TEST_F(RVFQMServerServiceTest, AddingWatchesTheTXTRecordAndNeverReports) {
  countChanges();
  const auto local = registration("local.");
  server_->addNetService(local);
  EXPECT_EQ(local->delegate().get(), server_.get());
  EXPECT_EQ(discovery_->watchesActive("Till"), 1);
  EXPECT_EQ(changes_, 0);
}

TEST_F(RVFQMServerServiceTest, AddingTheSameTwiceKeepsOneAndWatchesOnce) {
  const auto local = registration("local.");
  server_->addNetService(local);
  server_->addNetService(local);
  server_->addNetService(registration("local."));
  EXPECT_THAT(server_->netServices(), ElementsAre(local));
  EXPECT_EQ(discovery_->watchesStarted("Till"), 1);
}

struct MainRow {
  std::vector<std::string> domains;
  std::size_t expectedMain;
};

class MainRegistration : public RVFQMServerServiceTest,
                         public ::testing::WithParamInterface<MainRow> {};

TEST_P(MainRegistration, IsTheFirstExceptThatALocalOneDisplacesARemoteOne) {
  std::vector<Ref<NSNetService>> services;
  for (const std::string& domain : GetParam().domains) {
    services.push_back(registration(domain));
    server_->addNetService(services.back());
  }
  EXPECT_EQ(server_->mainService(), services[GetParam().expectedMain]);
  EXPECT_EQ(server_->netServices(), services);
}

INSTANTIATE_TEST_SUITE_P(Table, MainRegistration,
                         ::testing::Values(MainRow{{"local."}, 0}, MainRow{{"local.", "a.b."}, 0},
                                           MainRow{{"a.b.", "local."}, 1},
                                           MainRow{{"a.b.", "c.d."}, 0},
                                           MainRow{{"a.b.", "c.d.", "local."}, 2},
                                           MainRow{{"a.b.", "notlocal."}, 0}));

TEST_F(RVFQMServerServiceTest, RemovingTheMainOneTakesTheLocalOneWhateverTheOrder) {
  const auto first = registration("local.", "One");
  const auto remote = registration("a.b.");
  const auto local = registration("local.");
  server_->addNetService(first);
  server_->addNetService(remote);
  server_->addNetService(local);
  server_->removeNetService(first);
  EXPECT_EQ(server_->mainService(), local);
}

TEST_F(RVFQMServerServiceTest, RemovingTheMainOneTakesALocalOneThatCameBeforeARemoteOne) {
  const auto first = registration("local.", "One");
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  for (const auto& service : {first, local, remote})
    server_->addNetService(service);
  server_->removeNetService(first);
  EXPECT_EQ(server_->mainService(), local);
}

TEST_F(RVFQMServerServiceTest, ARemoteRegistrationBesideALocalOneKeepsMainAndName) {
  const auto local = registration("local.");
  server_->addNetService(local);
  server_->addNetService(registration(wideAreaDomain()));
  EXPECT_EQ(server_->mainService(), local);
  EXPECT_EQ(server_->name(), "Till");
}

TEST_F(RVFQMServerServiceTest, AnEmptyDomainSuffixMarksNothing) {
  const auto former = RVFQMServerService::wideAreaDomainSuffixes();
  RVFQMServerService::setWideAreaDomainSuffixes({"one.", ""});
  server_->addNetService(registration("local."));
  EXPECT_FALSE(server_->isUsingBackToMyMac());
  RVFQMServerService::setWideAreaDomainSuffixes(former);
}

TEST_F(RVFQMServerServiceTest, RemovingTheMainOneTakesTheFirstWhereNoneIsLocal) {
  const auto local = registration("local.");
  const auto a = registration("a.b.");
  const auto c = registration("c.d.");
  for (const auto& service : {local, a, c})
    server_->addNetService(service);
  server_->removeNetService(local);
  EXPECT_EQ(server_->mainService(), a);
}

TEST_F(RVFQMServerServiceTest, RemovingAnotherOneKeepsTheMainOneAndReports) {
  countChanges();
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  server_->addNetService(local);
  server_->addNetService(remote);
  server_->removeNetService(remote);
  EXPECT_EQ(server_->mainService(), local);
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(remote->delegate(), nullptr);
}

TEST_F(RVFQMServerServiceTest, RemovingOneThatWasNeverHeldReportsWhileOthersRemain) {
  countChanges();
  server_->removeNetService(registration("a.b."));
  EXPECT_EQ(changes_, 0);
  server_->addNetService(registration("local."));
  server_->removeNetService(registration("a.b."));
  server_->removeNetService(nullptr);
  EXPECT_EQ(changes_, 2);
  EXPECT_EQ(server_->netServices().size(), 1U);
}

TEST_F(RVFQMServerServiceTest, AnAbsentRegistrationIsRefused) {
  try {
    server_->addNetService(nullptr);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
  }
}

TEST_F(RVFQMServerServiceTest, StoppingLeavesARegistrationWhoseDelegateAResolutionTook) {
  class Resolver : public NSObject, public NSNetServiceDelegate {};
  const auto local = registration("local.");
  server_->addNetService(local);
  const auto resolver = std::make_shared<Resolver>();
  local->setDelegate(resolver);
  server_->stop();
  EXPECT_EQ(local->delegate(), resolver);
  EXPECT_EQ(discovery_->watchesActive("Till"), 1);
  local->stopMonitoring();
}

TEST_F(RVFQMServerServiceTest, RemovingTheLastReportsNothingAndLeavesNoMainOne) {
  countChanges();
  const auto local = registration("local.");
  server_->addNetService(local);
  server_->removeNetService(local);
  EXPECT_EQ(changes_, 0);
  EXPECT_EQ(server_->mainService(), nullptr);
  EXPECT_EQ(discovery_->watchesActive("Till"), 0);
}

TEST_F(RVFQMServerServiceTest, RemovingLeavesAForeignDelegateAlone) {
  class Resolver : public NSObject, public NSNetServiceDelegate {};
  const auto resolver = std::make_shared<Resolver>();
  const auto local = registration("local.");
  server_->addNetService(local);
  local->setDelegate(resolver);
  server_->removeNetService(local);
  EXPECT_EQ(local->delegate(), resolver);
  EXPECT_EQ(discovery_->watchesActive("Till"), 1);
}

TEST_F(RVFQMServerServiceTest, ARecordWithDemoLoadsOnceAndStopsWatching) {
  countChanges();
  const auto local = registration("local.");
  server_->addNetService(local);
  deliver(local, kDemoRecord);
  EXPECT_TRUE(server_->isLoaded());
  EXPECT_TRUE(server_->isDemo());
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(local->delegate(), nullptr);
  EXPECT_EQ(discovery_->watchesActive("Till"), 0);
}

TEST_F(RVFQMServerServiceTest, ARecordWithoutDemoChangesNothingAndWatchingGoesOn) {
  countChanges();
  const auto local = registration("local.");
  server_->addNetService(local);
  deliver(local, kOtherRecord);
  deliver(local, "");
  EXPECT_FALSE(server_->isLoaded());
  EXPECT_EQ(changes_, 0);
  EXPECT_EQ(discovery_->watchesActive("Till"), 1);
}

TEST_F(RVFQMServerServiceTest, ALaterRegistrationsRecordUpdatesTheFlagAgain) {
  countChanges();
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  server_->addNetService(local);
  server_->addNetService(remote);
  deliver(local, kDemoRecord);
  deliver(remote, kLiveRecord);
  EXPECT_FALSE(server_->isDemo());
  EXPECT_TRUE(server_->isLoaded());
  EXPECT_EQ(changes_, 2);
}

TEST_F(RVFQMServerServiceTest, StopEndsWatchingAndKeepsTheList) {
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  server_->addNetService(local);
  server_->addNetService(remote);
  server_->stop();
  EXPECT_EQ(discovery_->watchesActive("Till"), 0);
  EXPECT_EQ(local->delegate(), nullptr);
  EXPECT_THAT(server_->netServices(), ElementsAre(local, remote));
}

TEST_F(RVFQMServerServiceTest, WideAreaNameIsMarked) {
  for (std::size_t suffix = 0; suffix < 2; ++suffix) {
    const auto server = std::make_shared<RVFQMServerService>();
    const auto first = registration(wideAreaDomain(suffix));
    server->addNetService(first);
    server->addNetService(registration("2." + wideAreaDomain(suffix)));
    EXPECT_EQ(server->mainService(), first);
    EXPECT_TRUE(server->isUsingBackToMyMac());
    EXPECT_EQ(server->name(), "Till (Back to My Mac)");
  }
}

TEST_F(RVFQMServerServiceTest, NameWithPerCentSignsIsShownAsItIs) {
  server_->addNetService(registration(wideAreaDomain(), "100%@%n"));
  EXPECT_EQ(server_->name(), "100%@%n (Back to My Mac)");
}

TEST_F(RVFQMServerServiceTest, LocalNameDisplacesTheMarkedOne) {
  server_->addNetService(registration(wideAreaDomain()));
  server_->addNetService(registration("local."));
  EXPECT_FALSE(server_->isUsingBackToMyMac());
  EXPECT_EQ(server_->name(), "Till");
}

TEST_F(RVFQMServerServiceTest, NameDependsOnTheMainRegistrationAlone) {
  EXPECT_THAT(RVFQMServerService::keyPathsForValuesAffectingName(), ElementsAre("mainService"));
}

TEST_F(RVFQMServerServiceTest, TheHandlerMayDropTheServer) {
  const auto local = registration("local.");
  const auto remote = registration("a.b.");
  server_->addNetService(local);
  server_->addNetService(remote);
  const std::weak_ptr<RVFQMServerService> weak = server_;
  server_->setServiceChangedHandler([this] { server_.reset(); });
  server_.get()->removeNetService(remote);
  EXPECT_TRUE(weak.expired());
}

TEST_F(RVFQMServerServiceTest, TheHandlerMayReplaceItself) {
  const auto local = registration("local.");
  server_->addNetService(local);
  auto token = std::make_shared<int>(1);
  int seen = 0;
  server_->setServiceChangedHandler([this, token, &seen] {
    server_->setServiceChangedHandler(nullptr);
    seen = *token;
  });
  token.reset();
  deliver(local, kDemoRecord);
  EXPECT_EQ(seen, 1);
}

TEST_F(RVFQMServerServiceTest, DeclaresItsPropertiesToTheRuntime) {
  std::vector<std::string> names;
  for (const auto& property : class_copyPropertyList(objc_getClass("RVFQMServerService"))) {
    names.push_back(property.name);
  }
  EXPECT_THAT(names, ElementsAre("netServices", "mainService", "isDemo", "isLoaded",
                                 "serviceChangedHandler", "isUsingBackToMyMac", "name"));
}

}  // namespace
}  // namespace rvf
