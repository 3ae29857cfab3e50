// SPDX-License-Identifier: Apache-2.0
//
// What observers of a service are told of, and when.

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Network/NSNetService.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Values/NSArray.h"
#include "tests/Platform/Network/NetServiceObserver.h"
#include "tests/Platform/Network/ScriptedBackend.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down "key old>new" into the log of the delegate, lists as their counts.
class KeyWatcher final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void observe(std::string_view keyPath, const id&, const Ref<NSDictionary>& change, void*) {
    log->push_back(std::string(keyPath) + " " +
                   textOf(change->objectForKey(NSKeyValueChangeOldKey)) + ">" +
                   textOf(change->objectForKey(NSKeyValueChangeNewKey)));
    if (const auto act = onChange) act();
  }

  std::vector<std::string>* log = nullptr;
  std::function<void()> onChange;

 private:
  static std::string textOf(const id& value) {
    if (const auto list = std::dynamic_pointer_cast<NSArray>(value)) {
      return std::to_string(list->count());
    }
    if (const auto data = std::dynamic_pointer_cast<NSData>(value)) {
      return std::to_string(data->length()) + " bytes";
    }
    return value->description();
  }
};

Class KeyWatcher::classObject() {
  static const Class kClass =
      ClassBuilder<KeyWatcher>("NetServiceKeyWatcher", NSObject::classObject())
          .method<&KeyWatcher::observe>("observeValueForKeyPath:ofObject:change:context:")
          .registered();
  return kClass;
}

std::vector<std::byte> bytes(std::string_view text) {
  const auto data = NSData::dataWithBytes(text);
  return {data->bytes().begin(), data->bytes().end()};
}

class NetServiceObserving : public testing::Test {
 protected:
  NetServiceObserving() {
    watcher_->log = &observer_->log;
    watch(service_);
  }
  ~NetServiceObserving() override { unwatch(service_); }

  void watch(const Ref<NSNetService>& service) {
    service->setDelegate(observer_);
    for (const std::string_view key : kKeys) {
      addObserverForKeyPath(*service, watcher_, key,
                            NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
    }
  }
  void unwatch(const Ref<NSNetService>& service) {
    if (!service) return;
    for (const std::string_view key : kKeys)
      removeObserverForKeyPath(*service, watcher_, key);
  }
  void resolve() {
    service_->resolveWithTimeout(0);
    settleRunLoop();
    observer_->log.clear();
  }
  void locate(std::string host, std::uint16_t port) {
    script_.resolutions.at(0)->fire(&ResolveEvents::located, host, port);
  }
  void find(const char* address) {
    script_.resolutions.at(0)->fire(&ResolveEvents::addressFound,
                                    SocketAddress::fromText(address, 80)->blockBytes());
  }
  const std::vector<std::string>& settledLog() {
    settleRunLoop();
    return observer_->log;
  }

  static constexpr std::string_view kKeys[] = {"name", "hostName", "port", "addresses",
                                               "TXTRecordData"};
  Script script_;
  Ref<NSNetService> service_ = NSNetService::initWithDomain("local", "_till._tcp", "Till");
  std::shared_ptr<NetServiceObserver> observer_ = std::make_shared<NetServiceObserver>();
  Ref<KeyWatcher> watcher_ = std::make_shared<KeyWatcher>();
};

TEST_F(NetServiceObserving, AResolutionIsToldFromTheRunLoopAndBeforeTheDelegate) {
  resolve();
  locate("host.local", 80);
  find("10.0.0.1");
  EXPECT_THAT(observer_->log, IsEmpty());
  EXPECT_THAT(settledLog(), ElementsAre("hostName <null>>host.local.", "port -1>80",
                                        "addresses 0>1", "resolved 1"));
}

TEST_F(NetServiceObserving, MoreAddressesChangeTheListAlone) {
  resolve();
  locate("host.local", 80);
  find("10.0.0.1");
  settleRunLoop();
  observer_->log.clear();
  find("10.0.0.2");
  find("10.0.0.3");
  find("10.0.0.3");
  EXPECT_THAT(settledLog(), ElementsAre("addresses 1>3", "resolved 3"));
}

TEST_F(NetServiceObserving, AServiceThatMovesIsToldWithAllThatChanges) {
  resolve();
  locate("host.local", 80);
  find("10.0.0.1");
  settleRunLoop();
  observer_->log.clear();
  locate("host.local", 81);
  EXPECT_THAT(settledLog(), ElementsAre("port 80>81", "addresses 1>0"));
}

TEST_F(NetServiceObserving, TheSameLocationIsNoChange) {
  resolve();
  locate("host.local", 80);
  settleRunLoop();
  observer_->log.clear();
  locate("host.local.", 80);
  EXPECT_THAT(settledLog(), IsEmpty());
}

TEST_F(NetServiceObserving, EveryObserverSeesTheWholeNewLocation) {
  resolve();
  std::vector<std::string> seen;
  watcher_->onChange = [&] {
    seen.push_back(service_->hostName().value_or("") + ":" + std::to_string(service_->port()) +
                   " " + std::to_string(service_->addresses().size()));
  };
  locate("host.local", 80);
  find("10.0.0.1");
  settleRunLoop();
  EXPECT_THAT(seen, ElementsAre("host.local.:80 1", "host.local.:80 1", "host.local.:80 1"));
}

TEST_F(NetServiceObserving, ResolvingAgainTellsThatTheOldAddressesAreGone) {
  resolve();
  find("10.0.0.1");
  settleRunLoop();
  service_->stop();
  observer_->log.clear();
  service_->resolveWithTimeout(0);
  EXPECT_THAT(observer_->log, ElementsAre("addresses 1>0"));
  find("10.0.0.1");
  EXPECT_THAT(settledLog(),
              ElementsAre("addresses 1>0", "will resolve", "addresses 0>1", "resolved 1"));
}

TEST_F(NetServiceObserving, NothingChangesOnceTheOperationWasStopped) {
  resolve();
  locate("host.local", 80);
  find("10.0.0.1");
  service_->stop();
  EXPECT_THAT(settledLog(), ElementsAre("stop"));
  EXPECT_EQ(service_->hostName(), std::nullopt);
  EXPECT_THAT(service_->addresses(), IsEmpty());
}

TEST_F(NetServiceObserving, AnObserverMayStopTheServiceAndNoReportFollows) {
  resolve();
  watcher_->onChange = [this] { service_->stop(); };
  find("10.0.0.1");
  EXPECT_THAT(settledLog(), ElementsAre("addresses 0>1", "stop"));
}

TEST_F(NetServiceObserving, AnObserverMayDropTheService) {
  resolve();
  const std::weak_ptr<NSNetService> weakService = service_;
  watcher_->onChange = [this] {
    unwatch(service_);
    service_.reset();
  };
  locate("host.local", 80);
  find("10.0.0.1");
  settleRunLoop();
  EXPECT_TRUE(weakService.expired());
  EXPECT_THAT(script_.resolutions, IsEmpty());
}

TEST_F(NetServiceObserving, AnObserverMayDropAServiceThatIsBeingResolvedAgain) {
  resolve();
  find("10.0.0.1");
  settleRunLoop();
  service_->stop();
  const std::weak_ptr<NSNetService> weakService = service_;
  watcher_->onChange = [this] {
    unwatch(service_);
    service_.reset();
  };
  service_.get()->resolveWithTimeout(5);
  settleRunLoop();
  EXPECT_TRUE(weakService.expired());
}

TEST_F(NetServiceObserving, ARecordIsToldFromTheRunLoopAndBeforeTheDelegate) {
  service_->startMonitoring();
  script_.txtWatches.at(0)->fire(&TXTRecordEvents::updated, bytes("\x01"
                                                                  "a"));
  EXPECT_THAT(observer_->log, IsEmpty());
  EXPECT_THAT(settledLog(), ElementsAre("TXTRecordData <null>>2 bytes", "txt 2"));
}

TEST_F(NetServiceObserving, ARecordThatArrivedIsForgottenWithItsMonitoring) {
  service_->startMonitoring();
  script_.txtWatches.at(0)->fire(&TXTRecordEvents::updated, bytes("\x01"
                                                                  "a"));
  service_->stopMonitoring();
  EXPECT_THAT(settledLog(), IsEmpty());
  EXPECT_EQ(service_->TXTRecordData(), nullptr);
}

TEST_F(NetServiceObserving, ANameThatWasTakenIsToldBeforeTheDelegateHearsOfTheNewOne) {
  const auto published = NSNetService::initWithDomain("", "_till._tcp", "Till", 4711);
  watch(published);
  published->publish();
  script_.publications.at(0)->fire(&PublishEvents::collided);
  script_.publications.at(0)->fire(&PublishEvents::established);
  EXPECT_EQ(published->name(), "Till");
  EXPECT_THAT(settledLog(),
              ElementsAre("will publish", "name Till>Till (2)", "published Till (2)"));
  unwatch(published);
}

TEST_F(NetServiceObserving, ANameThatWasFreeIsNoChange) {
  const auto published = NSNetService::initWithDomain("", "_till._tcp", "Till", 4711);
  watch(published);
  published->publish();
  script_.publications.at(0)->fire(&PublishEvents::established);
  EXPECT_THAT(settledLog(), ElementsAre("will publish", "published Till"));
  unwatch(published);
}

TEST_F(NetServiceObserving, AddressesAreAnArrayToKeyValueCoding) {
  resolve();
  find("10.0.0.1");
  settleRunLoop();
  const auto addresses = std::dynamic_pointer_cast<NSArray>(valueForKey(service_, "addresses"));
  ASSERT_NE(addresses, nullptr);
  EXPECT_TRUE(objectsAreEqual(addresses->objectAtIndex(0), service_->addresses().at(0)));
}

}  // namespace
}  // namespace rvf
