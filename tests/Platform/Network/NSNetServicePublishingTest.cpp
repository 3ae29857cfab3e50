// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <chrono>

#include "Platform/Network/NSNetService.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/Platform/Network/NetServiceObserver.h"
#include "tests/Platform/Network/ScriptedBackend.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

class PublishingTest : public testing::Test {
 protected:
  Ref<NSNetService> service(const char* name) {
    const auto made = NSNetService::initWithDomain("", "_till._tcp", name, 4711);
    made->setDelegate(observer_);
    return made;
  }
  ScriptedPublication& publication(std::size_t index = 0) {
    return *script_.publications.at(index);
  }
  const std::vector<std::string>& settledLog() {
    settleRunLoop();
    return observer_->log;
  }

  Script script_;
  std::shared_ptr<NetServiceObserver> observer_ = std::make_shared<NetServiceObserver>();
};

TEST_F(PublishingTest, HandsTheBackEndWhatIsToBePublished) {
  const auto published = service("Till");
  published->setTXTRecordData(
      NSData::dataWithBytes("\x01"
                            "a"));
  published->setNameIsUnique(true);
  published->setRecordLifetime(10);
  published->publish();
  const Publication& wanted = publication().wanted();
  EXPECT_EQ(wanted.identity, (ServiceIdentity{"Till", "_till._tcp.", ""}));
  EXPECT_EQ(wanted.port, 4711);
  EXPECT_EQ(wanted.txtRecord.size(), 2U);
  EXPECT_TRUE(wanted.isUnique);
  EXPECT_EQ(wanted.lifetimeSeconds, 10U);
}

TEST_F(PublishingTest, ReportsTheAnnouncementOnce) {
  const auto published = service("Till");
  published->publish();
  EXPECT_THAT(observer_->log, IsEmpty());
  publication().fire(&PublishEvents::established);
  publication().fire(&PublishEvents::established);  // a lost responder came back
  EXPECT_THAT(settledLog(), ElementsAre("will publish", "published Till"));
}

TEST_F(PublishingTest, AnEmptyNameIsTheHosts) {
  const auto published = service("");
  published->publish();
  publication().fire(&PublishEvents::established);
  EXPECT_EQ(settledLog().back(), "published Front desk");
  EXPECT_EQ(published->name(), "Front desk");
}

TEST_F(PublishingTest, AnEmptyNameThatShallBeUniqueIsTheHostsWithRandomCharacters) {
  const auto first = service("");
  const auto second = service("");
  for (const auto& published : {first, second}) {
    published->setNameIsUnique(true);
    published->publish();
  }
  const std::string name = publication(0).wanted().identity.name;
  EXPECT_THAT(name, testing::MatchesRegex("Front desk-[0-9a-z]{16}"));
  EXPECT_NE(publication(1).wanted().identity.name, name);
  EXPECT_TRUE(publication(1).wanted().isUnique);
}

TEST_F(PublishingTest, ANameThatTurnsOutNotToBeUniqueIsProbedForAfterwards) {
  const auto published = service("");
  published->setNameIsUnique(true);
  published->publish();
  const std::string name = publication().wanted().identity.name;
  publication().fire(&PublishEvents::collided);
  EXPECT_EQ(publication().wanted().identity.name, name + " (2)");
  EXPECT_FALSE(publication().wanted().isUnique);
}

TEST_F(PublishingTest, ACollisionOnTheNetworkNumbersTheName) {
  const auto published = service("Till");
  published->publish();
  publication().fire(&PublishEvents::collided);
  EXPECT_EQ(publication().wanted().identity.name, "Till (2)");
  publication().fire(&PublishEvents::collided);
  publication().fire(&PublishEvents::established);
  EXPECT_THAT(settledLog(), ElementsAre("will publish", "published Till (3)"));
  EXPECT_EQ(published->name(), "Till (3)");
}

TEST_F(PublishingTest, ACollisionAfterTheAnnouncementReportsTheNewName) {
  const auto published = service("Till");
  published->publish();
  publication().fire(&PublishEvents::established);
  settleRunLoop();
  publication().fire(&PublishEvents::collided);
  publication().fire(&PublishEvents::established);
  EXPECT_THAT(settledLog(), ElementsAre("will publish", "published Till", "published Till (2)"));
}

TEST_F(PublishingTest, ANameThatCollidedIsNotCalledUniqueAnyMore) {
  const auto published = service("Till");
  published->setNameIsUnique(true);
  published->publish();
  publication().fire(&PublishEvents::collided);
  EXPECT_FALSE(publication().wanted().isUnique);
}

TEST_F(PublishingTest, AnIdenticalPublicationOfThisProcessIsNumberedWithoutAskingTheNetwork) {
  const auto first = service("Till");
  const auto second = service("Till");
  first->publish();
  second->publish();
  EXPECT_EQ(publication(0).wanted().identity.name, "Till");
  EXPECT_EQ(publication(1).wanted().identity.name, "Till (2)");
}

TEST_F(PublishingTest, AGivenNameIsFreeAgainAsSoonAsItsPublicationEnds) {
  const auto first = service("Till");
  first->publish();
  first->stop();
  const auto second = service("Till");
  second->publish();
  EXPECT_EQ(publication().wanted().identity.name, "Till");
}

TEST_F(PublishingTest, AChosenNameRestsAfterItsPublicationEnded) {
  script_.defaultName = "Resting desk";
  const auto first = service("");
  first->publish();
  first->stop();
  const auto second = service("");
  second->publish();
  EXPECT_EQ(publication().wanted().identity.name, "Resting desk (2)");
}

TEST_F(PublishingTest, ManyCollisionsAreAnsweredAtADistanceAndAtLastGivenUp) {
  const auto clock = std::make_shared<ManualRunLoopClock>();
  const auto loop = NSRunLoop::currentRunLoop();
  loop->setClock(clock);
  const auto published = service("Till");
  published->publish();
  for (int i = 0; i < 10; ++i)
    publication().fire(&PublishEvents::collided);
  publication().fire(&PublishEvents::collided);
  EXPECT_THAT(script_.publications, IsEmpty());
  clock->runLoopFor(*loop, 4999ms);
  EXPECT_THAT(script_.publications, IsEmpty());
  clock->runLoopFor(*loop, 1ms);
  EXPECT_EQ(publication().wanted().identity.name, "Till (12)");
  while (!script_.publications.empty()) {
    publication().fire(&PublishEvents::collided);
    clock->runLoopFor(*loop, 5s);
  }
  EXPECT_THAT(settledLog(), ElementsAre("will publish", "not published -72001"));
  loop->setClock(nullptr);
}

TEST_F(PublishingTest, ALongNameIsCutWhereACharacterEnds) {
  const auto published = service((std::string(62, 'x') + "ü").c_str());
  published->publish();
  EXPECT_EQ(publication().wanted().identity.name, std::string(62, 'x'));
}

TEST_F(PublishingTest, ANewTXTRecordUpdatesThePublication) {
  const auto published = service("Till");
  published->publish();
  published->setTXTRecordData(
      NSData::dataWithBytes("\x01"
                            "b"));
  EXPECT_EQ(publication().updated, (std::vector{std::byte{1}, std::byte{'b'}}));
  publication().fire(&PublishEvents::collided);
  EXPECT_EQ(publication().wanted().txtRecord.size(), 2U);
}

TEST_F(PublishingTest, WhatCannotBePublishedIsRefused) {
  const struct {
    Ref<NSNetService> service;
    const char* why;
  } rows[] = {{NSNetService::initWithDomain("", "_till._tcp", "Till"), "no port"},
              {NSNetService::initWithDomain("", "till", "Till", 1), "no type"},
              {NSNetService::initWithDomain("", "_till._tcp", "\xFF", 1), "no UTF-8"}};
  for (const auto& [refused, why] : rows) {
    observer_->log.clear();
    refused->setDelegate(observer_);
    refused->publish();
    EXPECT_THAT(settledLog(), ElementsAre("not published -72004")) << why;
  }
}

TEST_F(PublishingTest, ASecondOperationIsRefused) {
  const auto published = service("Till");
  published->publish();
  published->publish();
  published->resolveWithTimeout(1);
  EXPECT_THAT(settledLog(),
              ElementsAre("will publish", "not published -72003", "not resolved -72003"));
  EXPECT_EQ(script_.publications.size(), 1U);
}

TEST_F(PublishingTest, AFailureOfTheBackEndEndsThePublication) {
  const auto published = service("Till");
  published->publish();
  publication().fire(&PublishEvents::failed, NSNetServicesError::invalid);
  EXPECT_THAT(settledLog(), ElementsAre("will publish", "not published -72006"));
  EXPECT_THAT(script_.publications, IsEmpty());
  EXPECT_EQ(script_.backendsAlive, 0);
}

TEST_F(PublishingTest, StopWithdrawsAndReportsBeforeItReturns) {
  const auto published = service("Till");
  published->publish();
  publication().fire(&PublishEvents::established);
  published->stop();
  EXPECT_THAT(observer_->log, ElementsAre("stop"));
  EXPECT_THAT(settledLog(), ElementsAre("stop"));
  EXPECT_THAT(script_.publications, IsEmpty());
}

}  // namespace
}  // namespace rvf
