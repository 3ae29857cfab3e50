// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSNetService-RVFExtensions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>

#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/RVFoundation/ServerDiscovery/ScriptedDiscovery.h"

namespace rvf {
namespace {

using ::testing::IsEmpty;

struct Resolution {
  Ref<NSNetService> service;
  Ref<NSError> error;
  bool wasStopped = false;
};

class ResolveTest : public ::testing::Test {
 protected:
  ~ResolveTest() override { service_->stop(); }  // an open resolution keeps itself alive

  void resolve(double timeout = 0) {
    RVF_resolveWithTimeout(service_, timeout,
                           [this](const auto& service, const auto& error, bool stopped) {
                             resolutions_.push_back({service, error, stopped});
                           });
  }
  /// Delivers what is queued on the run loop.
  static void turn() {
    while (NSRunLoop::currentRunLoop()->turn()) {
    }
  }
  void locate(const char* address) {
    const auto& events = discovery_->resolutions.back()->events;
    events.located("till.local.", 9630);
    if (address) events.addressFound(SocketAddress::fromText(address, 9630)->blockBytes());
    turn();
  }

  ScriptedDiscovery discovery_;
  Ref<NSNetService> service_ = NSNetService::initWithDomain("local.", "_quillmarsh._tcp.", "Till");
  std::vector<Resolution> resolutions_;
};

TEST_F(ResolveTest, CompletesOnceWithAddressesAndWithoutAnError) {
  resolve();
  locate("10.0.0.5");
  ASSERT_EQ(resolutions_.size(), 1U);
  EXPECT_EQ(resolutions_[0].service, service_);
  EXPECT_EQ(resolutions_[0].error, nullptr);
  EXPECT_FALSE(resolutions_[0].wasStopped);
  EXPECT_EQ(service_->addresses().size(), 1U);
  EXPECT_FALSE(discovery_->resolutions[0]->isActive);
  EXPECT_EQ(service_->delegate(), nullptr);
}

TEST_F(ResolveTest, TheDelegateIsAnObjectOfTheResolversClass) {
  resolve();
  const auto delegate = service_->delegate();
  const auto* resolver = dynamic_cast<const NSObject*>(delegate.get());
  ASSERT_NE(resolver, nullptr);
  EXPECT_EQ(class_getName(resolver->isa()), "RVFNetServiceResolver");
}

TEST_F(ResolveTest, AnEmptyAddressListKeepsWaiting) {
  resolve();
  service_->delegate()->netServiceDidResolveAddress(service_);
  EXPECT_THAT(resolutions_, IsEmpty());
  locate("::1");
  EXPECT_EQ(resolutions_.size(), 1U);
}

TEST_F(ResolveTest, StoppingTheRegistrationCompletesWithTheFlag) {
  resolve();
  service_->stop();
  ASSERT_EQ(resolutions_.size(), 1U);
  EXPECT_TRUE(resolutions_[0].wasStopped);
  EXPECT_EQ(resolutions_[0].error, nullptr);
}

TEST_F(ResolveTest, TheTimeoutIsAnErrorWithTheFailureAsUserInfo) {
  const auto loop = NSRunLoop::currentRunLoop();
  const auto formerClock = loop->clock();
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop->setClock(clock);
  resolve(5);
  clock->runLoopFor(*loop, std::chrono::seconds(6));
  turn();
  loop->setClock(formerClock);
  ASSERT_EQ(resolutions_.size(), 1U);
  ASSERT_NE(resolutions_[0].error, nullptr);
  EXPECT_EQ(resolutions_[0].error->domain(), "NSNetServicesErrorDomain");
  EXPECT_EQ(resolutions_[0].error->code(), -72007);
  const auto code = std::dynamic_pointer_cast<NSNumber>(
      resolutions_[0].error->userInfo()->objectForKey("NSNetServicesErrorCode"));
  ASSERT_NE(code, nullptr);
  EXPECT_EQ(code->intValue(), -72007);
}

TEST_F(ResolveTest, AForeignDomainNumberIsPrintedAsText) {
  resolve();
  const auto failure = NSDictionary::dictionaryWithEntries(
      {{"NSNetServicesErrorCode", box(-72003)}, {"NSNetServicesErrorDomain", box(10)}});
  service_->delegate()->netServiceDidNotResolve(service_, failure);
  ASSERT_EQ(resolutions_.size(), 1U);
  EXPECT_EQ(resolutions_[0].error->domain(), "10");
  EXPECT_EQ(resolutions_[0].error->code(), -72003);
  EXPECT_EQ(resolutions_[0].error->userInfo(), failure);
}

TEST_F(ResolveTest, ReplacesAFormerDelegate) {
  class Watcher : public NSObject, public NSNetServiceDelegate {};
  const auto watcher = std::make_shared<Watcher>();
  service_->setDelegate(watcher);
  resolve();
  EXPECT_NE(service_->delegate(), watcher);
}

TEST_F(ResolveTest, TheResolverSurvivesItsCallbackUntilTheScopeEnds) {
  std::weak_ptr<NSNetServiceDelegate> resolver;
  {
    const NSAutoreleasePool pool;
    resolve();
    resolver = service_->delegate();
    service_->stop();
    EXPECT_FALSE(resolver.expired());
  }
  EXPECT_TRUE(resolver.expired());
}

TEST_F(ResolveTest, ACompletionThatThrowsEndsTheResolutionAllTheSame) {
  const auto completion = std::make_shared<int>();
  RVF_resolveWithTimeout(service_, 0, [completion](const auto&, const auto&, bool) {
    throw std::runtime_error("refused");
  });
  {
    const NSAutoreleasePool pool;
    EXPECT_THROW(locate("10.0.0.5"), std::runtime_error);
  }
  EXPECT_EQ(service_->delegate(), nullptr);
  EXPECT_FALSE(discovery_->resolutions[0]->isActive);
  EXPECT_EQ(completion.use_count(), 1) << "the resolver keeps itself alive";
}

TEST_F(ResolveTest, TheCompletionMayResolveAnew) {
  int completions = 0;
  RVF_resolveWithTimeout(service_, 0, [&](const auto& service, const auto&, bool) {
    ++completions;
    EXPECT_EQ(service, service_);
    service_ = NSNetService::initWithDomain("local.", "_quillmarsh._tcp.", "Other");
    resolve();
  });
  locate("10.0.0.5");
  EXPECT_EQ(completions, 1);
  locate("10.0.0.6");
  EXPECT_EQ(resolutions_.size(), 1U);
}

TEST_F(ResolveTest, ASecondResolutionTakesTheDelegateAndTheFirstNeverCompletes) {
  int first = 0;
  RVF_resolveWithTimeout(service_, 0, [&first](const auto&, const auto&, bool) { ++first; });
  const auto firstResolver = service_->delegate();
  resolve();
  EXPECT_NE(service_->delegate(), firstResolver);
  turn();
  EXPECT_EQ(resolutions_.size(), 1U) << "the registration is busy";
  EXPECT_EQ(resolutions_[0].error->code(), -72003);
  service_->stop();
  EXPECT_EQ(first, 0);
  firstResolver->netServiceDidStop(service_);  // breaks the cycle that keeps it
  EXPECT_EQ(first, 1);
}

TEST_F(ResolveTest, ACompletionThatStopsTheRegistrationIsCalledOnce) {
  int calls = 0;
  RVF_resolveWithTimeout(service_, 0, [&](const auto& service, const auto&, bool wasStopped) {
    ++calls;
    EXPECT_FALSE(wasStopped);
    service->stop();
  });
  locate("10.0.0.5");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(service_->delegate(), nullptr);
}

TEST_F(ResolveTest, TheCompletionResolvesTheSameRegistrationAnewInVain) {
  Ref<NSNetServiceDelegate> secondResolver;
  RVF_resolveWithTimeout(service_, 0, [&](const auto&, const auto&, bool) {
    resolve();
    secondResolver = service_->delegate();
  });
  locate("10.0.0.5");
  EXPECT_EQ(service_->delegate(), nullptr) << "the first resolution's end takes the delegate";
  EXPECT_THAT(resolutions_, IsEmpty());
  secondResolver->netServiceDidStop(service_);  // breaks the cycle that keeps it
}

TEST_F(ResolveTest, ATimeoutThatIsNoNumberIsNone) {
  resolve(std::numeric_limits<double>::quiet_NaN());
  turn();
  EXPECT_THAT(resolutions_, IsEmpty());
}

TEST_F(ResolveTest, AnAbsentRegistrationIsIgnored) {
  RVF_resolveWithTimeout(nullptr, 1, [](const auto&, const auto&, bool) { FAIL(); });
  EXPECT_TRUE(discovery_->resolutions.empty());
}

}  // namespace
}  // namespace rvf
