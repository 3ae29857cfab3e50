// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Observation/ObservedPerson.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kNew = NSKeyValueObservingOptionNew;
constexpr auto kOld = NSKeyValueObservingOptionOld;
constexpr auto kPrior = NSKeyValueObservingOptionPrior;

class KeyValueObservingReentrancy : public testing::Test {
 protected:
  void TearDown() override { dropQuietly(person); }

  Ref<ObservedPerson> person = personNamed("Ada");
  Ref<ChangeRecorder> first = std::make_shared<ChangeRecorder>();
  Ref<ChangeRecorder> second = std::make_shared<ChangeRecorder>();
};

TEST_F(KeyValueObservingReentrancy, WhatIsRemovedDuringADeliveryIsNotTold) {
  addObserverForKeyPath(*person, first, "name");
  addObserverForKeyPath(*person, second, "name");
  first->action = [&] { removeObserverForKeyPath(*person, second, "name"); };
  person->setName("Grace");
  EXPECT_EQ(first->told.size(), 1U);
  EXPECT_THAT(second->told, IsEmpty());
}

TEST_F(KeyValueObservingReentrancy, AnObserverMayRemoveItself) {
  addObserverForKeyPath(*person, first, "name");
  addObserverForKeyPath(*person, second, "name");
  first->action = [&] { removeObserverForKeyPath(*person, first, "name"); };
  person->setName("a");
  person->setName("b");
  EXPECT_EQ(first->told.size(), 1U);
  EXPECT_EQ(second->told.size(), 2U);
}

TEST_F(KeyValueObservingReentrancy, WhatIsRegisteredDuringADeliveryIsNotToldOfThatChange) {
  addObserverForKeyPath(*person, first, "name");
  first->action = [&] {
    first->action = nullptr;
    addObserverForKeyPath(*person, second, "name", kNew);
  };
  person->setName("a");
  EXPECT_THAT(second->told, IsEmpty());
  person->setName("b");
  EXPECT_THAT(second->told, ElementsAre("name>b"));
}

TEST_F(KeyValueObservingReentrancy, WhatIsRegisteredDuringAChangeIsNotToldOfIt) {
  announceChange(*person, "name", [&] { addObserverForKeyPath(*person, first, "name"); });
  EXPECT_THAT(first->told, IsEmpty());
  announceChange(*person, "name", [&] { addObserverForKeyPath(*person, second, "name"); });
  EXPECT_EQ(first->told.size(), 1U);
  EXPECT_THAT(second->told, IsEmpty());
}

TEST_F(KeyValueObservingReentrancy, WhatIsRemovedDuringAChangeIsNotToldOfIt) {
  addObserverForKeyPath(*person, first, "name", kPrior);
  announceChange(*person, "name", [&] { removeObserverForKeyPath(*person, first, "name"); });
  EXPECT_THAT(first->told, ElementsAre("name prior"));
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

TEST_F(KeyValueObservingReentrancy, AnObserverThatLeavesAtThePriorNoticeIsToldNoMore) {
  addObserverForKeyPath(*person, first, "name", kPrior);
  addObserverForKeyPath(*person, second, "name", kPrior);
  first->action = [&] {
    first->action = nullptr;
    removeObserverForKeyPath(*person, second, "name");
  };
  person->setName("a");
  EXPECT_THAT(first->told, ElementsAre("name prior", "name"));
  EXPECT_THAT(second->told, IsEmpty());
}

TEST_F(KeyValueObservingReentrancy, AnObserverMayDropAnother) {
  addObserverForKeyPath(*person, first, "name");
  addObserverForKeyPath(*person, second, "name");
  first->action = [&] { second.reset(); };
  person->setName("a");
  EXPECT_EQ(second, nullptr);
  person->setName("b");
  EXPECT_EQ(first->told.size(), 2U);
}

TEST_F(KeyValueObservingReentrancy, AnObserverMayDropItself) {
  int count = 0;
  addObserverForKeyPath(*person, first, "name");
  addObserverForKeyPath(*person, second, "name");
  first->action = [&] {
    first.reset();
    ++count;
  };
  person->setName("a");
  person->setName("b");
  EXPECT_EQ(count, 1);
  EXPECT_EQ(second->told.size(), 2U);
}

TEST_F(KeyValueObservingReentrancy, ATargetThatAnObserverDropsLivesUntilAllAreTold) {
  addObserverForKeyPath(*person, first, "name", kNew);
  addObserverForKeyPath(*person, second, "name", kNew);
  const std::weak_ptr<ObservedPerson> target = person;
  first->action = [&] { person.reset(); };
  testing::internal::CaptureStderr();
  person->setName("a");
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::HasSubstr("was destroyed while it was observed"));
  EXPECT_TRUE(target.expired());
  EXPECT_THAT(second->told, ElementsAre("name>a"));
}

TEST_F(KeyValueObservingReentrancy, AnObserverMayChangeTheValueAgain) {
  addObserverForKeyPath(*person, first, "visits", kOld | kNew);
  addObserverForKeyPath(*person, second, "visits", kOld | kNew);
  first->action = [&] {
    if (person->visits() < 2) person->setVisits(2);
  };
  person->setVisits(1);
  EXPECT_THAT(first->told, ElementsAre("visits 0>1", "visits 1>2"));
  EXPECT_THAT(second->told, ElementsAre("visits 1>2", "visits 0>1"));
}

TEST_F(KeyValueObservingReentrancy, AnObserverOfASettingByKeyMaySetItAgain) {
  addObserverForKeyPath(*person, first, "visits", kOld | kNew);
  first->action = [&] {
    if (person->visits() < 2) person->setVisits(2);
  };
  setValueForKey(*person, box(1), "visits");
  EXPECT_THAT(first->told, ElementsAre("visits 0>1", "visits 1>2"));
}

TEST_F(KeyValueObservingReentrancy, APriorNoticeOfASettingByKeyMayChangeTheValue) {
  addObserverForKeyPath(*person, first, "visits", kOld | kNew);
  addObserverForKeyPath(*person, second, "visits", kPrior);
  second->action = [&] {
    second->action = nullptr;
    person->setVisits(9);
  };
  setValueForKey(*person, box(1), "visits");
  EXPECT_THAT(first->told, ElementsAre("visits 0>9", "visits 0>1"));
}

TEST_F(KeyValueObservingReentrancy, AnObserverOfAPathMayChangeItsLinks) {
  person->setPartner(personNamed("Bob"));
  addObserverForKeyPath(*person, first, "partner.name", kNew);
  first->action = [&] {
    first->action = nullptr;
    person->setPartner(personNamed("Cid"));
  };
  person->partner()->setName("Bert");
  person->partner()->setName("Carl");
  EXPECT_THAT(first->told,
              ElementsAre("partner.name>Bert", "partner.name>Cid", "partner.name>Carl"));
}

TEST_F(KeyValueObservingReentrancy, AnObserverOfAPathMayRemoveItself) {
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  addObserverForKeyPath(*person, first, "partner.name");
  first->action = [&] { removeObserverForKeyPath(*person, first, "partner.name"); };
  bob->setName("Bert");
  bob->setName("Bill");
  EXPECT_EQ(first->told.size(), 1U);
  EXPECT_FALSE(KeyValueHooks::isObserved(*bob));
}

TEST_F(KeyValueObservingReentrancy, ALinkMayGoInTheMiddleOfItsOwnChange) {
  person->setPartner(personNamed("Bob"));
  addObserverForKeyPath(*person, first, "partner.name", kOld | kNew);
  const auto bob = person->partner();
  announceChange(*bob, "name", [&] { person->setPartner(nullptr); });
  EXPECT_EQ(first->told.front(), "partner.name Bob><null>");
  bob->setName("Bert");
  EXPECT_LE(first->told.size(), 2U);
}

TEST_F(KeyValueObservingReentrancy, AnObserverMayLeaveAtItsInitialNotice) {
  first->action = [&] { removeObserverForKeyPath(*person, first, "name"); };
  addObserverForKeyPath(*person, first, "name", NSKeyValueObservingOptionInitial);
  person->setName("a");
  EXPECT_EQ(first->told.size(), 1U);
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

TEST_F(KeyValueObservingReentrancy, AnExceptionOfAnObserverComesOutOfTheSetter) {
  addObserverForKeyPath(*person, first, "visits", kNew);
  first->action = [&] {
    first->action = nullptr;
    throw std::string("no");
  };
  EXPECT_THROW(person->setVisits(1), std::string);
  EXPECT_EQ(person->visits(), 1);
  person->setVisits(2);
  EXPECT_THAT(first->told, ElementsAre("visits>1", "visits>2"));
}

TEST_F(KeyValueObservingReentrancy, TenThousandObserversAreToldAndRemoved) {
  std::vector<Ref<ChangeRecorder>> observers;
  for (int i = 0; i < 10'000; ++i) {
    observers.push_back(std::make_shared<ChangeRecorder>());
    addObserverForKeyPath(*person, observers.back(), "visits", kOld | kNew);
  }
  observers[0]->action = [&] { removeObserverForKeyPath(*person, observers[9'999], "visits"); };
  person->setVisits(7);
  for (int i = 0; i < 9'999; ++i) {
    ASSERT_THAT(observers[static_cast<std::size_t>(i)]->told, ElementsAre("visits 0>7")) << i;
  }
  EXPECT_THAT(observers[9'999]->told, IsEmpty());
  observers.pop_back();
  for (const auto& observer : observers)
    removeObserverForKeyPath(*person, observer, "visits");
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

}  // namespace
}  // namespace rvf
