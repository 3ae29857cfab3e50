// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSNetServiceBrowser.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>

#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Values/NSNumber.h"
#include "tests/Platform/Network/ScriptedBackend.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr ServiceLink kFirstLink{2, 2};
constexpr ServiceLink kSecondLink{3, 10};

ServiceIdentity named(const std::string& name) {
  return {name, "_till._tcp.", "local."};
}

/// Writes down what it is told; "+" and "-" are finds and removals, "…" means more is coming.
class Observer final : public NSNetServiceBrowserDelegate {
 public:
  void netServiceBrowserWillSearch(const Ref<NSNetServiceBrowser>&) override { note("will"); }
  void netServiceBrowserDidNotSearch(const Ref<NSNetServiceBrowser>&,
                                     const Ref<NSDictionary>& failure) override {
    const auto code = failure->objectForKey(NSNetServicesErrorCode);
    note("not " + code->description());
  }
  void netServiceBrowserDidStopSearch(const Ref<NSNetServiceBrowser>&) override { note("stop"); }
  void netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>&,
                                       const Ref<NSNetService>& service, bool more) override {
    found = service;
    note("+" + service->name() + (more ? "…" : ""));
  }
  void netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>&,
                                         const Ref<NSNetService>& service, bool more) override {
    removed = service;
    note("-" + service->name() + (more ? "…" : ""));
  }

  std::vector<std::string> log;
  Ref<NSNetService> found;
  Ref<NSNetService> removed;
  std::function<void()> onNote = [] {};

 private:
  void note(std::string what) {
    log.push_back(std::move(what));
    const auto act = onNote;
    act();
  }
};

class BrowserTest : public testing::Test {
 protected:
  BrowserTest() { browser_->setDelegate(observer_); }

  /// Starts a search and forgets that it was announced.
  void search() {
    browser_->searchForServicesOfType("_till._tcp", "");
    settleRunLoop();
    observer_->log.clear();
  }
  void find(const std::string& name, ServiceLink link = kFirstLink) {
    script_.browses.at(0)->fire(&BrowseEvents::found, named(name), link);
  }
  void lose(const std::string& name, ServiceLink link = kFirstLink) {
    script_.browses.at(0)->fire(&BrowseEvents::removed, named(name), link);
  }
  const std::vector<std::string>& settledLog() {
    settleRunLoop();
    return observer_->log;
  }

  Script script_;
  Ref<NSNetServiceBrowser> browser_ = NSNetServiceBrowser::browser();
  std::shared_ptr<Observer> observer_ = std::make_shared<Observer>();
};

TEST_F(BrowserTest, AsksTheBackEndForTypeAndDomainWithTheirFinalDot) {
  browser_->searchForServicesOfType("_till._tcp", "local");
  EXPECT_EQ(script_.browses.at(0)->wanted().type, "_till._tcp.");
  EXPECT_EQ(script_.browses.at(0)->wanted().domain, "local.");
}

TEST_F(BrowserTest, AnEmptyDomainIsPassedOnAsEveryDefaultOne) {
  search();
  EXPECT_EQ(script_.browses.at(0)->wanted().domain, "");
}

TEST_F(BrowserTest, AnnouncesTheSearchFromTheRunLoopOnly) {
  browser_->searchForServicesOfType("_till._tcp", "");
  EXPECT_THAT(observer_->log, IsEmpty());
  EXPECT_THAT(settledLog(), ElementsAre("will"));
}

TEST_F(BrowserTest, ReportsOneFindAndOneRemovalForSeveralLinksWithTheSameObject) {
  search();
  find("A", kFirstLink);
  find("A", kSecondLink);
  lose("A", kFirstLink);
  EXPECT_THAT(settledLog(), ElementsAre("+A"));
  lose("A", kSecondLink);
  EXPECT_THAT(settledLog(), ElementsAre("+A", "-A"));
  EXPECT_EQ(observer_->found, observer_->removed);
}

TEST_F(BrowserTest, SaysThatMoreIsComingWhileMoreIsQueued) {
  search();
  find("A");
  find("B");
  lose("A");
  EXPECT_THAT(settledLog(), ElementsAre("+A…", "+B…", "-A"));
}

TEST_F(BrowserTest, TellsDomainsApart) {
  search();
  find("A");
  script_.browses.at(0)->fire(&BrowseEvents::found,
                              ServiceIdentity{"A", "_till._tcp.", "example.org."}, kFirstLink);
  EXPECT_THAT(settledLog(), ElementsAre("+A…", "+A"));
  EXPECT_EQ(observer_->found->domain(), "example.org.");
}

TEST_F(BrowserTest, ARemovalOfSomethingUnknownIsNotReported) {
  search();
  lose("A");
  EXPECT_THAT(settledLog(), IsEmpty());
}

TEST_F(BrowserTest, WhatReturnsAfterAnInterruptionIsNotReportedAgain) {
  search();
  find("A");
  settledLog();
  observer_->log.clear();
  script_.browses.at(0)->fire(&BrowseEvents::interrupted);
  find("A", kSecondLink);
  script_.browses.at(0)->fire(&BrowseEvents::settled);
  EXPECT_THAT(settledLog(), IsEmpty());
}

TEST_F(BrowserTest, WhatDoesNotReturnAfterAnInterruptionIsRemovedWhenTheBackEndHasSettled) {
  search();
  find("A");
  find("B");
  settledLog();
  observer_->log.clear();
  script_.browses.at(0)->fire(&BrowseEvents::interrupted);
  find("B");
  EXPECT_THAT(settledLog(), IsEmpty());
  script_.browses.at(0)->fire(&BrowseEvents::settled);
  EXPECT_THAT(settledLog(), ElementsAre("-A"));
}

TEST_F(BrowserTest, SettlingWithoutAnInterruptionRemovesNothing) {
  search();
  find("A");
  script_.browses.at(0)->fire(&BrowseEvents::settled);
  EXPECT_THAT(settledLog(), ElementsAre("+A"));
}

TEST_F(BrowserTest, ASecondSearchIsRefusedAndTheFirstGoesOn) {
  search();
  browser_->searchForServicesOfType("_other._tcp", "");
  find("A");
  EXPECT_THAT(settledLog(), ElementsAre("not -72003", "+A"));
  EXPECT_EQ(script_.browses.size(), 1U);
}

TEST_F(BrowserTest, MalformedTypesAreRefused) {
  for (const char* type : {"", "till", "_till", "_till._sctp", "till._tcp", "_._tcp", "._tcp"}) {
    observer_->log.clear();
    browser_->searchForServicesOfType(type, "");
    EXPECT_THAT(settledLog(), ElementsAre("not -72004")) << type;
  }
}

TEST_F(BrowserTest, AFailureOfTheBackEndEndsTheSearch) {
  search();
  script_.browses.at(0)->fire(&BrowseEvents::failed, NSNetServicesError::unknown);
  EXPECT_THAT(settledLog(), ElementsAre("not -72000"));
  EXPECT_THAT(script_.browses, IsEmpty());
  search();
  EXPECT_EQ(script_.browses.size(), 1U);
}

TEST_F(BrowserTest, ASearchThatCouldNotBeStartedIsNotUnderWay) {
  ServiceDiscovery::setFactory([]() -> std::unique_ptr<ServiceDiscoveryBackend> {
    throw std::runtime_error("no descriptors");
  });
  EXPECT_THROW(browser_->searchForServicesOfType("_till._tcp", ""), std::runtime_error);
  EXPECT_THAT(settledLog(), IsEmpty());
  const Script script;
  browser_->searchForServicesOfType("_till._tcp", "");
  EXPECT_THAT(settledLog(), ElementsAre("will"));
  EXPECT_EQ(script.browses.size(), 1U);
  browser_->stop();
}

TEST_F(BrowserTest, StopBeforeAFailureWasReportedReportsTheStopInItsPlace) {
  search();
  script_.browses.at(0)->fire(&BrowseEvents::failed, NSNetServicesError::unknown);
  browser_->stop();
  EXPECT_THAT(settledLog(), ElementsAre("stop"));
}

TEST_F(BrowserTest, StopAfterAFailureWasReportedReportsNothingMore) {
  search();
  script_.browses.at(0)->fire(&BrowseEvents::failed, NSNetServicesError::unknown);
  settleRunLoop();
  browser_->stop();
  EXPECT_THAT(settledLog(), ElementsAre("not -72000"));
}

TEST_F(BrowserTest, AStopInsideTheReportOfAFailureReportsNothingMore) {
  search();
  observer_->onNote = [this] { browser_->stop(); };
  script_.browses.at(0)->fire(&BrowseEvents::failed, NSNetServicesError::unknown);
  EXPECT_THAT(settledLog(), ElementsAre("not -72000"));
}

TEST_F(BrowserTest, StopReportsBeforeItReturnsAndDropsWhatIsQueued) {
  search();
  find("A");
  browser_->stop();
  EXPECT_THAT(observer_->log, ElementsAre("stop"));
  EXPECT_THAT(settledLog(), ElementsAre("stop"));
  EXPECT_THAT(script_.browses, IsEmpty());
}

TEST_F(BrowserTest, StopOfAnIdleBrowserReportsNothing) {
  browser_->stop();
  EXPECT_THAT(settledLog(), IsEmpty());
}

TEST_F(BrowserTest, ANewSearchAfterAStopFindsEverythingAnew) {
  search();
  find("A");
  settledLog();
  browser_->stop();
  search();
  find("A");
  EXPECT_THAT(settledLog(), ElementsAre("+A"));
}

TEST_F(BrowserTest, NothingArrivesAfterAStopInsideACallback) {
  search();
  observer_->onNote = [this] {
    observer_->onNote = [] {};
    browser_->stop();
  };
  find("A");
  find("B");
  EXPECT_THAT(settledLog(), ElementsAre("+A…", "stop"));
}

TEST_F(BrowserTest, TheDelegateIsReadWhenAReportIsDelivered) {
  search();
  find("A");
  const auto other = std::make_shared<Observer>();
  browser_->setDelegate(other);
  EXPECT_THAT(settledLog(), IsEmpty());
  EXPECT_THAT(other->log, ElementsAre("+A"));
}

TEST_F(BrowserTest, ADelegateThatIsGoneIsSkipped) {
  search();
  observer_.reset();
  find("A");
  settleRunLoop();
  EXPECT_EQ(browser_->delegate(), nullptr);
}

TEST_F(BrowserTest, ADelegateMayReleaseTheBrowserAndItselfInACallback) {
  search();
  const std::weak_ptr<NSNetServiceBrowser> weakBrowser = browser_;
  const std::weak_ptr<Observer> weakObserver = observer_;
  std::vector<std::string> log;
  observer_->onNote = [this, &log, &weakBrowser] {
    observer_.reset();
    browser_.reset();
    log.push_back(weakBrowser.expired() ? "browser gone" : "browser alive");
  };
  find("A");
  find("B");
  settleRunLoop();
  EXPECT_THAT(log, ElementsAre("browser alive"));
  EXPECT_TRUE(weakBrowser.expired());
  EXPECT_TRUE(weakObserver.expired());
  EXPECT_THAT(script_.browses, IsEmpty());
}

TEST_F(BrowserTest, ReportsArriveInANestedRunOfTheLoop) {
  search();
  observer_->onNote = [this] {
    observer_->onNote = [] {};
    settleRunLoop();
    observer_->log.emplace_back("returned");
  };
  find("A");
  find("B");
  EXPECT_THAT(settledLog(), ElementsAre("+A…", "+B", "returned"));
}

TEST_F(BrowserTest, AnExceptionOfADelegateLosesNoOtherReport) {
  search();
  observer_->onNote = [this] {
    observer_->onNote = [] {};
    throw std::runtime_error("delegate");
  };
  find("A");
  find("B");
  EXPECT_THROW(settleRunLoop(), std::runtime_error);
  EXPECT_THAT(settledLog(), ElementsAre("+A…", "+B"));
}

TEST_F(BrowserTest, TheBackEndLivesAsLongAsSomethingUsesIt) {
  const auto other = NSNetServiceBrowser::browser();
  search();
  other->searchForServicesOfType("_other._tcp", "");
  EXPECT_EQ(script_.backendsAlive, 1);
  browser_->stop();
  EXPECT_EQ(script_.backendsAlive, 1);
  other->stop();
  EXPECT_EQ(script_.backendsAlive, 0);
}

}  // namespace
}  // namespace rvf
