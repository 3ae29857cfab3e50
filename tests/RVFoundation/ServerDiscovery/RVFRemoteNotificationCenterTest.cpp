// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFRemoteNotificationCenter.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"
#include "Platform/Values/NSValue.h"
#include "tests/Platform/Observation/ForwardingObject.h"
#include "tests/RVFoundation/ServerDiscovery/NotificationObserver.h"
#include "tests/RVFoundation/ServerDiscovery/ScriptedDiscovery.h"

namespace rvf {
namespace {

using ::testing::UnorderedElementsAre;

constexpr const char* kMenu = "_menu._tcp";
constexpr const char* kPrices = "_prices._tcp";
const SEL kAction = NotificationObserver::kAction;

class ObservingTest : public ::testing::Test {
 protected:
  static void turn() {
    while (NSRunLoop::currentRunLoop()->turn()) {
    }
  }
  /// Queues what the search found.
  void find(std::size_t search, const std::string& name) {
    auto& request = *discovery_->browses.at(search);
    request.events.found({name, request.identity.type, "local."}, {2, AF_INET});
  }
  void findNow(std::size_t search, const std::string& name) {
    find(search, name);
    turn();
  }
  bool isSearching(std::size_t search) const { return discovery_->browses.at(search)->isActive; }
  /// What `addObserver` raises, "name: reason", or "nothing".
  std::string raisedByAdding(const id& observer, std::string_view name) {
    try {
      center_->addObserver(observer, kAction, name);
    } catch (const NSException& exception) {
      return exception.name() + ": " + exception.reason();
    }
    return "nothing";
  }
  Ref<NSDictionary> namesOf(const id& observer) const {
    return std::static_pointer_cast<NSDictionary>(
        center_->observers()->objectForKey(NSValue::valueWithNonretainedObject(observer)));
  }
  Ref<NSDictionary> recordOf(const id& observer, std::string_view name) const {
    return std::static_pointer_cast<NSDictionary>(namesOf(observer)->objectForKey(name));
  }

  ScriptedDiscovery discovery_;
  Ref<RVFRemoteNotificationCenter> center_ = std::make_shared<RVFRemoteNotificationCenter>();
  Ref<NotificationObserver> observer_ = NotificationObserver::observer();
};

TEST(RVFRemoteNotificationCenter, TheDefaultCenterIsOneForTheWholeProcess) {
  std::array<Ref<RVFRemoteNotificationCenter>, 4> seen;
  std::vector<std::thread> threads;
  for (auto& center : seen)
    threads.emplace_back([&center] { center = RVFRemoteNotificationCenter::defaultCenter(); });
  for (auto& thread : threads)
    thread.join();
  EXPECT_NE(seen[0], nullptr);
  for (const auto& center : seen)
    EXPECT_EQ(center, RVFRemoteNotificationCenter::defaultCenter());
}

TEST_F(ObservingTest, StartsWithNothingObserved) {
  EXPECT_EQ(center_->observers()->count(), 0U);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 0U);
}

TEST_F(ObservingTest, SearchesTheNameAsAServiceTypeInTheDefaultDomains) {
  center_->addObserver(observer_, kAction, kMenu);
  ASSERT_EQ(discovery_->browses.size(), 1U);
  EXPECT_EQ(discovery_->browses[0]->identity.type, "_menu._tcp.");
  EXPECT_EQ(discovery_->browses[0]->identity.domain, "");
}

TEST_F(ObservingTest, ARecordHasExactlyFourEntries) {
  center_->addObserver(observer_, kAction, kMenu);
  const auto record = recordOf(observer_, kMenu);
  ASSERT_NE(record, nullptr);
  std::vector<std::string> keys;
  for (const auto& [key, value] : record->entries())
    keys.push_back(*unboxText(key));
  EXPECT_THAT(keys, UnorderedElementsAre("selector", "observer", "browser", "name"));
  EXPECT_EQ(record->textForKey("selector"), "menuChanged");
  EXPECT_EQ(record->textForKey("name"), kMenu);
  const auto wrapped = std::dynamic_pointer_cast<NSValue>(record->objectForKey("observer"));
  ASSERT_NE(wrapped, nullptr);
  EXPECT_EQ(wrapped->nonretainedObjectValue(), observer_);
  const NSObject* address = nullptr;
  EXPECT_TRUE(wrapped->getValue(address));
  EXPECT_EQ(address, observer_.get());
}

TEST_F(ObservingTest, TheSameRecordIsKeptByItsBrowser) {
  center_->addObserver(observer_, kAction, kMenu);
  const auto record = recordOf(observer_, kMenu);
  const auto browser =
      std::dynamic_pointer_cast<NSNetServiceBrowser>(record->objectForKey("browser"));
  ASSERT_NE(browser, nullptr);
  EXPECT_EQ(browser->delegate(), center_);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 1U);
  EXPECT_EQ(
      center_->netServiceBrowsers()->objectForKey(NSValue::valueWithNonretainedObject(browser)),
      record);
}

TEST_F(ObservingTest, ANameIsPassedOnUnchecked) {
  center_->addObserver(observer_, kAction, "no service type");
  EXPECT_EQ(recordOf(observer_, "no service type")->textForKey("name"), "no service type");
  turn();
  EXPECT_EQ(observer_->deliveries, 0);
  center_->removeObserver(observer_);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 0U);
}

TEST_F(ObservingTest, EveryServiceFoundIsOneDelivery) {
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till 1");
  find(0, "Till 2");  // the first one has more coming
  EXPECT_EQ(observer_->deliveries, 0);
  turn();
  EXPECT_EQ(observer_->deliveries, 2);
}

TEST_F(ObservingTest, AServiceSeenOnTwoLinksIsOneDelivery) {
  center_->addObserver(observer_, kAction, kMenu);
  const auto& search = discovery_->browses.at(0)->events;
  search.found({"Till", "_menu._tcp.", "local."}, {2, AF_INET});
  search.found({"Till", "_menu._tcp.", "local."}, {3, AF_INET6});
  turn();
  EXPECT_EQ(observer_->deliveries, 1);
}

TEST_F(ObservingTest, ARemovalIsNoDelivery) {
  center_->addObserver(observer_, kAction, kMenu);
  findNow(0, "Till");
  discovery_->browses.at(0)->events.removed({"Till", "_menu._tcp.", "local."}, {2, AF_INET});
  turn();
  EXPECT_EQ(observer_->deliveries, 1);
}

TEST_F(ObservingTest, TheSameServiceAgainIsADelivery) {
  center_->addObserver(observer_, kAction, kMenu);
  findNow(0, "Till");
  discovery_->browses.at(0)->events.removed({"Till", "_menu._tcp.", "local."}, {2, AF_INET});
  findNow(0, "Till");
  EXPECT_EQ(observer_->deliveries, 2);
}

TEST_F(ObservingTest, ASecondObserverOfANameRaises) {
  center_->addObserver(observer_, kAction, kMenu);
  const std::string expected =
      "NSInvalidArgumentException: Cannot add more than observers to the same name. Did you forget "
      "to remove an observer ?";
  const auto other = NotificationObserver::observer();
  EXPECT_EQ(raisedByAdding(other, kMenu), expected);
  EXPECT_EQ(raisedByAdding(observer_, kMenu), expected);
}

TEST_F(ObservingTest, ARefusedObserverChangesNothing) {
  center_->addObserver(observer_, kAction, kMenu);
  const auto record = recordOf(observer_, kMenu);
  const auto other = NotificationObserver::observer();
  raisedByAdding(other, kMenu);
  EXPECT_EQ(namesOf(other), nullptr);
  EXPECT_EQ(recordOf(observer_, kMenu), record);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 1U);
  EXPECT_EQ(discovery_->browses.size(), 1U);
  findNow(0, "Till");
  EXPECT_EQ(observer_->deliveries, 1);
}

TEST_F(ObservingTest, NamesAreComparedExactly) {
  center_->addObserver(observer_, kAction, kMenu);
  EXPECT_EQ(raisedByAdding(observer_, "_Menu._tcp"), "nothing");
  EXPECT_EQ(raisedByAdding(observer_, "_menu._tcp."), "nothing");
  EXPECT_EQ(namesOf(observer_)->count(), 3U);
}

TEST_F(ObservingTest, AnAbsentObserverRaises) {
  EXPECT_EQ(raisedByAdding(nullptr, kMenu), "NSInvalidArgumentException: the observer is absent");
  EXPECT_TRUE(discovery_->browses.empty());
}

TEST_F(ObservingTest, ANameIsFreeAfterItsObserverWasRemoved) {
  center_->addObserver(observer_, kAction, kMenu);
  center_->removeObserver(observer_);
  EXPECT_FALSE(isSearching(0));
  const auto other = NotificationObserver::observer();
  EXPECT_EQ(raisedByAdding(other, kMenu), "nothing");
  findNow(1, "Till");
  EXPECT_EQ(observer_->deliveries, 0);
  EXPECT_EQ(other->deliveries, 1);
}

TEST_F(ObservingTest, RemovingAnObserverEndsAllItsSearchesAndNoOthers) {
  const auto other = NotificationObserver::observer();
  center_->addObserver(observer_, kAction, kMenu);
  center_->addObserver(observer_, kAction, kPrices);
  center_->addObserver(other, kAction, "_other._tcp");
  center_->removeObserver(observer_);
  EXPECT_FALSE(isSearching(0));
  EXPECT_FALSE(isSearching(1));
  EXPECT_TRUE(isSearching(2));
  EXPECT_EQ(namesOf(observer_), nullptr);
  EXPECT_EQ(center_->observers()->count(), 1U);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 1U);
}

TEST_F(ObservingTest, RemovingAStrangerIsHarmless) {
  center_->addObserver(observer_, kAction, kMenu);
  center_->removeObserver(NotificationObserver::observer());
  center_->removeObserver(nullptr);
  EXPECT_TRUE(isSearching(0));
}

TEST_F(ObservingTest, WhatWasFoundBeforeTheRemovalIsNotDeliveredAfterIt) {
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till");
  center_->removeObserver(observer_);
  turn();
  EXPECT_EQ(observer_->deliveries, 0);
}

TEST_F(ObservingTest, AFindOfAnUnknownBrowserIsIgnored) {
  center_->addObserver(observer_, kAction, kMenu);
  center_->netServiceBrowserDidFindService(NSNetServiceBrowser::browser(), nullptr, false);
  EXPECT_EQ(observer_->deliveries, 0);
}

TEST_F(ObservingTest, GoesAwayWithItsCenter) {
  center_->addObserver(observer_, kAction, kMenu);
  center_ = nullptr;
  EXPECT_FALSE(isSearching(0));
}

// Deliveries are messages

TEST_F(ObservingTest, IsReachableByItsSelectors) {
  send(center_, SEL("addObserver:selector:name:"), id(observer_), kAction, std::string_view(kMenu));
  findNow(0, "Till");
  EXPECT_EQ(observer_->deliveries, 1);
  send(center_, SEL("removeObserver:"), id(observer_));
  EXPECT_FALSE(isSearching(0));
}

TEST_F(ObservingTest, AnObserverMayForwardItsAction) {
  const auto forwarder = std::make_shared<ForwardingObject>(observer_);
  center_->addObserver(forwarder, kAction, kMenu);
  findNow(0, "Till");
  EXPECT_EQ(observer_->deliveries, 1);
}

TEST_F(ObservingTest, AnActionThatNobodyAnswersRaisesInTheRunLoop) {
  const auto mute = std::make_shared<NSObject>();
  center_->addObserver(mute, kAction, kMenu);
  find(0, "Till");
  EXPECT_THROW(turn(), NSException);
}

// Observers that went away

TEST_F(ObservingTest, AnObserverIsNotOwned) {
  center_->addObserver(observer_, kAction, kMenu);
  const std::weak_ptr<NotificationObserver> weak = observer_;
  observer_ = nullptr;
  EXPECT_TRUE(weak.expired());
}

TEST_F(ObservingTest, AnObserverThatWentAwayIsSkippedAndItsSearchesEnd) {
  const auto other = NotificationObserver::observer();
  center_->addObserver(other, kAction, "_other._tcp");
  center_->addObserver(observer_, kAction, kMenu);
  center_->addObserver(observer_, kAction, kPrices);
  observer_ = nullptr;
  findNow(1, "Till");
  EXPECT_TRUE(isSearching(0));
  EXPECT_FALSE(isSearching(1));
  EXPECT_FALSE(isSearching(2));
  EXPECT_EQ(center_->observers()->count(), 1U);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 1U);
}

TEST_F(ObservingTest, TheNameOfAnObserverThatWentAwayIsFree) {
  center_->addObserver(observer_, kAction, kMenu);
  observer_ = nullptr;
  EXPECT_EQ(raisedByAdding(NotificationObserver::observer(), kMenu), "nothing");
  EXPECT_FALSE(isSearching(0));
  EXPECT_TRUE(isSearching(1));
}

/// An observer in this memory, which is free for the next one when the observer goes.
Ref<NotificationObserver> observerIn(void* memory) {
  return {new (memory) NotificationObserver,
          [](NotificationObserver* observer) { observer->~NotificationObserver(); }};
}

TEST_F(ObservingTest, AnObserverAtTheAddressOfAFormerOneGetsNothingOfIt) {
  alignas(NotificationObserver) std::array<std::byte, sizeof(NotificationObserver)> memory;
  auto former = observerIn(memory.data());
  center_->addObserver(former, kAction, kMenu);
  former = nullptr;
  const auto later = observerIn(memory.data());
  findNow(0, "Till");
  EXPECT_EQ(later->deliveries, 0);
  EXPECT_EQ(raisedByAdding(later, kMenu), "nothing");
  findNow(1, "Till");
  EXPECT_EQ(later->deliveries, 1);
}

// Inside an action

TEST_F(ObservingTest, AnActionMayRemoveItsObserver) {
  observer_->act = [this] { center_->removeObserver(observer_); };
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till 1");
  find(0, "Till 2");
  turn();
  EXPECT_EQ(observer_->deliveries, 1);
  EXPECT_FALSE(isSearching(0));
}

TEST_F(ObservingTest, AnActionMayRemoveItsObserverAndAddItAgain) {
  observer_->act = [this] {
    center_->removeObserver(observer_);
    center_->addObserver(observer_, kAction, kMenu);
  };
  center_->addObserver(observer_, kAction, kMenu);
  findNow(0, "Till");
  findNow(1, "Till");
  EXPECT_EQ(observer_->deliveries, 2);
  EXPECT_EQ(center_->netServiceBrowsers()->count(), 1U);
}

TEST_F(ObservingTest, AnActionMayRemoveAnotherObserver) {
  const auto other = NotificationObserver::observer();
  observer_->act = [&] { center_->removeObserver(other); };
  center_->addObserver(observer_, kAction, kMenu);
  center_->addObserver(other, kAction, kPrices);
  find(0, "Till");
  find(1, "Till");
  turn();
  EXPECT_EQ(other->deliveries, 0);
}

TEST_F(ObservingTest, AnActionMayAddObservers) {
  const auto other = NotificationObserver::observer();
  observer_->act = [&] {
    center_->addObserver(other, kAction, kPrices);
    center_->addObserver(observer_, kAction, "_more._tcp");
    observer_->act = nullptr;
  };
  center_->addObserver(observer_, kAction, kMenu);
  findNow(0, "Till");
  findNow(1, "Till");
  findNow(2, "Till");
  EXPECT_EQ(other->deliveries, 1);
  EXPECT_EQ(observer_->deliveries, 2);
}

TEST_F(ObservingTest, AnActionMayDropItsObserver) {
  const std::weak_ptr<NotificationObserver> weak = observer_;
  int deliveries = 0;
  observer_->act = [&] {
    observer_ = nullptr;
    ++deliveries;
    EXPECT_FALSE(weak.expired()) << "while its action runs";
  };
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till 1");
  find(0, "Till 2");
  turn();
  EXPECT_EQ(deliveries, 1);
  EXPECT_TRUE(weak.expired());
  EXPECT_FALSE(isSearching(0));
}

TEST_F(ObservingTest, AnActionMayDropTheCenter) {
  observer_->act = [this] { center_ = nullptr; };
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till 1");
  find(0, "Till 2");
  turn();
  EXPECT_EQ(observer_->deliveries, 1);
  EXPECT_FALSE(isSearching(0));
}

TEST_F(ObservingTest, AnActionMayRunTheLoopAgain) {
  observer_->act = [this] {
    if (observer_->deliveries == 1) turn();
  };
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till 1");
  find(0, "Till 2");
  turn();
  EXPECT_EQ(observer_->deliveries, 2);
}

TEST_F(ObservingTest, AnExceptionOfAnActionLeavesTheRunCallAndObservingGoesOn) {
  observer_->act = [] { NSException::raise("Test", "thrown by an action"); };
  center_->addObserver(observer_, kAction, kMenu);
  find(0, "Till 1");
  EXPECT_THROW(turn(), NSException);
  observer_->act = nullptr;
  findNow(0, "Till 2");
  EXPECT_EQ(observer_->deliveries, 2);
}

}  // namespace
}  // namespace rvf
