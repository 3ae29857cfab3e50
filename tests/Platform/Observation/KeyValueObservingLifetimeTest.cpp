// SPDX-License-Identifier: Apache-2.0
//
// What goes while it is observed, read or announced, and what stands behind proxies.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/KeyValueHooks.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Observation/ObservedPerson.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kNew = NSKeyValueObservingOptionNew;
constexpr auto kOld = NSKeyValueObservingOptionOld;
constexpr auto kPrior = NSKeyValueObservingOptionPrior;

/// Leads on to any object.
class ProxyHolder final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<ProxyHolder>("ProxyHolder", NSObject::classObject())
                                    .method<&ProxyHolder::held>("link")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  const id& held() const { return link; }

  id link;
};

class KeyValueObservingLifetime : public testing::Test {
 protected:
  Ref<ObservedPerson> person = personNamed("Ada");
  Ref<ChangeRecorder> observer = std::make_shared<ChangeRecorder>();
};

TEST_F(KeyValueObservingLifetime, ATargetThatIsDroppedAtThePriorNoticeLivesThroughTheChange) {
  addObserverForKeyPath(*person, observer, "name", kPrior);
  observer->action = [&] { person.reset(); };
  const std::weak_ptr<ObservedPerson> target = person;
  bool wasAlive = false;
  testing::internal::CaptureStderr();
  announceChange(*person, "name", [&] { wasAlive = !target.expired(); });
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(wasAlive);
  EXPECT_TRUE(target.expired());
  EXPECT_THAT(observer->told, ElementsAre("name prior", "name"));
}

TEST_F(KeyValueObservingLifetime, ATargetThatIsDroppedInANestedChangeLivesThroughTheOuterOne) {
  addObserverForKeyPath(*person, observer, "name");
  observer->action = [&] { person.reset(); };
  const std::weak_ptr<ObservedPerson> target = person;
  ObservedPerson& changed = *person;
  bool wasAlive = false;
  testing::internal::CaptureStderr();
  announceChange(changed, "visits", [&] {
    changed.setName("a");
    wasAlive = !target.expired();
  });
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(wasAlive);
  EXPECT_TRUE(target.expired());
}

TEST_F(KeyValueObservingLifetime, AnAccessorMayDropTheTargetOfTheNextRegistration) {
  auto other = personNamed("Eve");
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  other->setPartner(bob);
  addObserverForKeyPath(*person, observer, "partner.name", kOld);
  addObserverForKeyPath(*other, observer, "partner.name", kOld);
  person->onReadingThePartner = [&] {
    if (other) dropQuietly(other);
  };
  bob->setName("Bert");
  EXPECT_EQ(other, nullptr);
  EXPECT_THAT(observer->told, ElementsAre("partner.name Bob"));
  removeObserverForKeyPath(*person, observer, "partner.name");
}

TEST_F(KeyValueObservingLifetime, AnAccessorMayDropTheTargetThatItIsReadFrom) {
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  addObserverForKeyPath(*person, observer, "partner.name", kOld);
  person->onReadingThePartner = [&] { person.reset(); };
  testing::internal::CaptureStderr();
  bob->setName("Bert");
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(person, nullptr);
  EXPECT_FALSE(KeyValueHooks::isObserved(*bob));
}

TEST_F(KeyValueObservingLifetime, AnAccessorMayEndTheRegistrationThatIsFollowed) {
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  addObserverForKeyPath(*person, observer, "pair");
  addObserverForKeyPath(*person, observer, "companion.name");
  person->onReadingThePartner = [&] {
    person->onReadingThePartner = nullptr;
    removeObserverForKeyPath(*person, observer, "companion.name");
    removeObserverForKeyPath(*person, observer, "pair");
  };
  person->setPartner(nullptr);
  EXPECT_THAT(observer->told, IsEmpty());
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
  EXPECT_FALSE(KeyValueHooks::isObserved(*bob));
}

TEST_F(KeyValueObservingLifetime, AChangeThatThrowsLeavesNothingOpenAfterTheLastRemoval) {
  addObserverForKeyPath(*person, observer, "name");
  const auto throwing = [] { throw std::runtime_error("no"); };
  EXPECT_THROW(announceChange(*person, "name", throwing), std::runtime_error);
  EXPECT_TRUE(KeyValueHooks::isObserved(*person));
  removeObserverForKeyPath(*person, observer, "name");
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

TEST_F(KeyValueObservingLifetime, AnOpenPairOfARegistrationThatIsLeftStaysOpen) {
  const auto other = std::make_shared<ChangeRecorder>();
  addObserverForKeyPath(*person, observer, "name");
  addObserverForKeyPath(*person, other, "name");
  announceChange(*person, "name", [&] { removeObserverForKeyPath(*person, other, "name"); });
  EXPECT_EQ(observer->told.size(), 1U);
  EXPECT_THAT(other->told, IsEmpty());
  removeObserverForKeyPath(*person, observer, "name");
}

/// Reads a person's name when it goes.
class LastReader final : public NSObject {
 public:
  LastReader(Ref<ObservedPerson> person, std::string& name)
      : person_(std::move(person)), name_(name) {}
  ~LastReader() override {
    setValueForKey(*person_, box("late"), "name");
    name_ = valueForKey(*person_, "name")->description();
  }

 private:
  const Ref<ObservedPerson> person_;
  std::string& name_;
};

TEST_F(KeyValueObservingLifetime, KeysAreReadAndSetWhileAThreadEnds) {
  std::string name;
  std::thread([&] {
    NSAutoreleasePool::addObject(std::make_shared<LastReader>(person, name));
    setValueForKey(*person, box("early"), "name");  // what it remembers goes before the object
    valueForKey(*person, "name");
  }).join();
  EXPECT_EQ(name, "late");
}

// Proxies

TEST_F(KeyValueObservingLifetime, APathLeadsThroughAProxyToItsTarget) {
  const auto bob = personNamed("Bob");
  const id proxy = std::make_shared<PassingProxy>(bob);
  const auto holder = std::make_shared<ProxyHolder>();
  holder->link = proxy;
  addObserverForKeyPath(*holder, observer, "link.name", kOld | kNew);
  bob->setName("Bert");
  EXPECT_THAT(observer->told, ElementsAre("link.name Bob>Bert"));
  removeObserverForKeyPath(*holder, observer, "link.name");
  EXPECT_FALSE(KeyValueHooks::isObserved(*bob));
}

TEST_F(KeyValueObservingLifetime, AnObserverLeavesThroughAProxyInItsDestructor) {
  const id proxy = std::make_shared<PassingProxy>(person);
  addObserverForKeyPath(*proxy, observer, "name");
  removeObserverForKeyPath(*proxy, static_cast<const NSObject&>(*observer), "name");
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

}  // namespace
}  // namespace rvf
