// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSNetService.h"

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>

#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Values/NSNumber.h"
#include "tests/Platform/Network/NetServiceObserver.h"
#include "tests/Platform/Network/ScriptedBackend.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

SocketAddressBytes address(const char* text) {
  return SocketAddress::fromText(text, 80)->blockBytes();
}

std::vector<std::byte> bytes(std::string_view text) {
  const auto data = NSData::dataWithBytes(text);
  return {data->bytes().begin(), data->bytes().end()};
}

class NetServiceTest : public testing::Test {
 protected:
  NetServiceTest() {
    service_->setDelegate(observer_);
    NSRunLoop::currentRunLoop()->setClock(clock_);
  }
  ~NetServiceTest() override { NSRunLoop::currentRunLoop()->setClock(nullptr); }

  void resolve(double seconds) {
    service_->resolveWithTimeout(seconds);
    settleRunLoop();
  }
  ScriptedResolve& resolution() { return *script_.resolutions.at(0); }
  void wait(std::chrono::milliseconds duration) {
    clock_->runLoopFor(*NSRunLoop::currentRunLoop(), duration);
  }
  const std::vector<std::string>& settledLog() {
    settleRunLoop();
    return observer_->log;
  }

  Script script_;
  std::shared_ptr<ManualRunLoopClock> clock_ = std::make_shared<ManualRunLoopClock>();
  Ref<NSNetService> service_ = NSNetService::initWithDomain("local", "_till._tcp", "Till");
  std::shared_ptr<NetServiceObserver> observer_ = std::make_shared<NetServiceObserver>();
};

TEST_F(NetServiceTest, TypeAndDomainCarryTheirFinalDot) {
  EXPECT_EQ(service_->type(), "_till._tcp.");
  EXPECT_EQ(service_->domain(), "local.");
  EXPECT_EQ(service_->name(), "Till");
}

TEST_F(NetServiceTest, KnowsNothingElseBeforeItIsResolved) {
  EXPECT_EQ(service_->port(), -1);
  EXPECT_EQ(service_->hostName(), std::nullopt);
  EXPECT_THAT(service_->addresses(), IsEmpty());
  EXPECT_EQ(service_->TXTRecordData(), nullptr);
}

TEST_F(NetServiceTest, EqualsAnotherOfTheSameNameTypeAndDomain) {
  const auto same = NSNetService::initWithDomain("local.", "_till._tcp.", "Till", 80);
  EXPECT_TRUE(objectsAreEqual(service_, same));
  EXPECT_EQ(service_->hash(), same->hash());
  for (const id& other : {id(NSNetService::initWithDomain("local.", "_till._tcp.", "till")),
                          id(NSNetService::initWithDomain("x.", "_till._tcp.", "Till")),
                          std::make_shared<NSObject>()}) {
    EXPECT_FALSE(objectsAreEqual(service_, other)) << other->description();
  }
}

TEST_F(NetServiceTest, ResolvingReportsFromTheRunLoopOnly) {
  service_->resolveWithTimeout(5);
  EXPECT_THAT(observer_->log, IsEmpty());
  EXPECT_THAT(settledLog(), ElementsAre("will resolve"));
  EXPECT_EQ(resolution().wanted(), (ServiceIdentity{"Till", "_till._tcp.", "local."}));
}

TEST_F(NetServiceTest, AddressesThatComeTogetherAreReportedTogether) {
  resolve(5);
  resolution().fire(&ResolveEvents::located, std::string("host.local"), std::uint16_t{80});
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.2"));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 2"));
  EXPECT_EQ(service_->hostName(), "host.local.");
  EXPECT_EQ(service_->port(), 80);
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.3"));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 2", "resolved 3"));
}

TEST_F(NetServiceTest, AnotherLocationIsReportedWithItsOwnAddressesOnly) {
  resolve(5);
  resolution().fire(&ResolveEvents::located, "till.local.", std::uint16_t{80});
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  settleRunLoop();
  resolution().fire(&ResolveEvents::located, "other.local", std::uint16_t{81});
  settleRunLoop();
  EXPECT_THAT(service_->addresses(), IsEmpty());
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.2"));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 1", "resolved 1"));
  EXPECT_EQ(service_->hostName(), "other.local.");
  EXPECT_EQ(service_->port(), 81);
  EXPECT_EQ(SocketAddress::fromDataBlock(service_->addresses()[0])->addressText(), "10.0.0.2");
}

TEST_F(NetServiceTest, TheSameLocationAgainLosesNoAddress) {
  resolve(5);
  resolution().fire(&ResolveEvents::located, "till.local", std::uint16_t{80});
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  resolution().fire(&ResolveEvents::located, "till.local.", std::uint16_t{80});
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 1"));
}

TEST_F(NetServiceTest, AnAddressIsListedOnce) {
  resolve(5);
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  settleRunLoop();
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 1"));
}

TEST_F(NetServiceTest, TimesOutExactlyWhenTheTimeIsUp) {
  resolve(5);
  wait(4999ms);
  EXPECT_THAT(observer_->log, ElementsAre("will resolve"));
  wait(1ms);
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "not resolved -72007"));
  EXPECT_THAT(script_.resolutions, IsEmpty());
}

TEST_F(NetServiceTest, ATimeOutOfZeroIsNoLimit) {
  resolve(0);
  wait(std::chrono::hours(48));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve"));
}

TEST_F(NetServiceTest, DoesNotTimeOutOnceAnAddressIsKnown) {
  resolve(5);
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  wait(10s);
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 1"));
}

TEST_F(NetServiceTest, TimesOutWhenOnlyTheHostIsKnown) {
  resolve(5);
  resolution().fire(&ResolveEvents::located, std::string("host.local."), std::uint16_t{80});
  wait(5s);
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "not resolved -72007"));
}

TEST_F(NetServiceTest, ASecondResolutionIsRefusedAndTheFirstGoesOn) {
  resolve(5);
  resolve(5);
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "not resolved -72003", "resolved 1"));
}

TEST_F(NetServiceTest, CanBeResolvedAgainAfterATimeOut) {
  resolve(5);
  wait(5s);
  settleRunLoop();
  resolve(5);
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "not resolved -72007", "will resolve"));
}

TEST_F(NetServiceTest, ResolvingAgainForgetsTheOldAddresses) {
  resolve(5);
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  settleRunLoop();
  service_->stop();
  resolve(5);
  EXPECT_THAT(service_->addresses(), IsEmpty());
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  EXPECT_EQ(settledLog().back(), "resolved 1");
}

TEST_F(NetServiceTest, AFailureOfTheBackEndIsReported) {
  resolve(5);
  resolution().fire(&ResolveEvents::failed, NSNetServicesError::notFound);
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "not resolved -72002"));
}

TEST_F(NetServiceTest, AnOperationThatCouldNotBeStartedIsNotUnderWay) {
  ServiceDiscovery::setFactory([]() -> std::unique_ptr<ServiceDiscoveryBackend> {
    throw std::runtime_error("no descriptors");
  });
  EXPECT_THROW(service_->resolveWithTimeout(5), std::runtime_error);
  const auto published = NSNetService::initWithDomain("", "_till._tcp", "Till", 80);
  published->setDelegate(observer_);
  EXPECT_THROW(published->publish(), std::runtime_error);
  EXPECT_THAT(settledLog(), IsEmpty());
  const Script script;
  service_->resolveWithTimeout(0);
  published->publish();
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "will publish"));
  service_->stop();
  published->stop();
}

TEST_F(NetServiceTest, ANamelessServiceCannotBeResolved) {
  const auto nameless = NSNetService::initWithDomain("local.", "_till._tcp.", "");
  nameless->setDelegate(observer_);
  nameless->resolveWithTimeout(5);
  EXPECT_THAT(settledLog(), ElementsAre("not resolved -72004"));
}

TEST_F(NetServiceTest, StopReportsBeforeItReturnsAndDropsWhatIsQueued) {
  resolve(5);
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  service_->stop();
  EXPECT_THAT(observer_->log, ElementsAre("will resolve", "stop"));
  wait(10s);
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "stop"));
  EXPECT_THAT(script_.resolutions, IsEmpty());
}

TEST_F(NetServiceTest, AnOperationThatFailedIsStillStoppableUntilThatWasReported) {
  resolve(5);
  resolution().fire(&ResolveEvents::failed, NSNetServicesError::unknown);
  service_->stop();
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "stop"));
}

TEST_F(NetServiceTest, StopOfAnIdleServiceReportsNothing) {
  service_->stop();
  EXPECT_THAT(settledLog(), IsEmpty());
}

TEST_F(NetServiceTest, ADelegateMayStopAndReplaceItselfInACallback) {
  resolve(5);
  const auto other = std::make_shared<NetServiceObserver>();
  observer_->onNote = [this, other] {
    service_->setDelegate(other);
    service_->stop();
  };
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "resolved 1"));
  EXPECT_THAT(other->log, ElementsAre("stop"));
}

TEST_F(NetServiceTest, ADelegateMayReleaseTheServiceAndItselfInACallback) {
  resolve(5);
  const std::weak_ptr<NSNetService> weakService = service_;
  bool wasAlive = false;
  observer_->onNote = [this, &weakService, &wasAlive] {
    observer_.reset();
    service_.reset();
    wasAlive = !weakService.expired();
  };
  resolution().fire(&ResolveEvents::addressFound, address("10.0.0.1"));
  settleRunLoop();
  EXPECT_TRUE(wasAlive);
  EXPECT_TRUE(weakService.expired());
  EXPECT_THAT(script_.resolutions, IsEmpty());
}

TEST_F(NetServiceTest, MonitoringDeliversTheRecordAndEveryChange) {
  service_->startMonitoring();
  auto& watch = *script_.txtWatches.at(0);
  watch.fire(&TXTRecordEvents::updated, bytes("\x06"
                                              "demo=1"));
  EXPECT_THAT(settledLog(), ElementsAre("txt 7"));
  watch.fire(&TXTRecordEvents::updated, bytes("\x06"
                                              "demo=1"));  // from another link
  watch.fire(&TXTRecordEvents::updated, bytes("\x07"
                                              "demo=10"));
  EXPECT_THAT(settledLog(), ElementsAre("txt 7", "txt 8"));
  EXPECT_EQ(service_->TXTRecordData()->length(), 8U);
}

TEST_F(NetServiceTest, StopLeavesMonitoringAlone) {
  service_->startMonitoring();
  resolve(5);
  script_.txtWatches.at(0)->fire(&TXTRecordEvents::updated, bytes("\x01"
                                                                  "a"));
  service_->stop();
  EXPECT_THAT(settledLog(), ElementsAre("will resolve", "stop", "txt 2"));
  EXPECT_EQ(script_.txtWatches.size(), 1U);
}

TEST_F(NetServiceTest, NothingArrivesAfterMonitoringWasStopped) {
  service_->startMonitoring();
  script_.txtWatches.at(0)->fire(&TXTRecordEvents::updated, bytes("\x01"
                                                                  "a"));
  service_->stopMonitoring();
  EXPECT_THAT(settledLog(), IsEmpty());
  EXPECT_THAT(script_.txtWatches, IsEmpty());
}

TEST_F(NetServiceTest, MonitoringAgainDeliversTheRecordAgain) {
  for (int i = 0; i < 2; ++i) {
    service_->startMonitoring();
    service_->startMonitoring();
    EXPECT_EQ(script_.txtWatches.size(), 1U);
    script_.txtWatches.at(0)->fire(&TXTRecordEvents::updated, bytes("\x01"
                                                                    "a"));
    settleRunLoop();
    service_->stopMonitoring();
  }
  EXPECT_THAT(observer_->log, ElementsAre("txt 2", "txt 2"));
}

TEST_F(NetServiceTest, RecordsAreDroppedWithoutADelegate) {
  service_->setDelegate({});
  service_->startMonitoring();
  script_.txtWatches.at(0)->fire(&TXTRecordEvents::updated, bytes("\x01"
                                                                  "a"));
  settleRunLoop();
  service_->setDelegate(observer_);
  EXPECT_THAT(settledLog(), IsEmpty());
}

}  // namespace
}  // namespace rvf
