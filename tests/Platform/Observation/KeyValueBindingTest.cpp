// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueBinding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Observation/ObservedPerson.h"

namespace rvf {
namespace {

class KeyValueBinding : public testing::Test {
 protected:
  Ref<ObservedPerson> source = personNamed("source");
  Ref<ObservedPerson> receiver = personNamed("receiver");
};

TEST_F(KeyValueBinding, TheKeyFollowsTheValueAtOnceAndAfterEveryChange) {
  bindToObject(*receiver, "name", source, "name");
  EXPECT_EQ(receiver->name(), "source");
  source->setName("new");
  EXPECT_EQ(receiver->name(), "new");
  source->setName(std::nullopt);
  EXPECT_EQ(receiver->name(), std::nullopt);
}

TEST_F(KeyValueBinding, AKeyMayFollowAPath) {
  bindToObject(*receiver, "name", source, "partner.name");
  EXPECT_EQ(receiver->name(), std::nullopt);
  source->setPartner(personNamed("partner"));
  EXPECT_EQ(receiver->name(), "partner");
  source->partner()->setName("renamed");
  EXPECT_EQ(receiver->name(), "renamed");
}

TEST_F(KeyValueBinding, ANameThatIsBoundAlreadyIsBoundAnew) {
  const auto other = personNamed("other");
  bindToObject(*receiver, "name", source, "name");
  bindToObject(*receiver, "name", other, "name");
  source->setName("ignored");
  EXPECT_EQ(receiver->name(), "other");
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
  other->setName("heard");
  EXPECT_EQ(receiver->name(), "heard");
}

TEST_F(KeyValueBinding, UnbindingKeepsTheValue) {
  bindToObject(*receiver, "name", source, "name");
  unbind(*receiver, "name");
  source->setName("ignored");
  EXPECT_EQ(receiver->name(), "source");
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
}

TEST_F(KeyValueBinding, UnbindingWhatIsNotBoundDoesNothing) {
  unbind(*receiver, "name");
  bindToObject(*receiver, "name", source, "name");
  unbind(*receiver, "visits");
  unbind(*receiver, "name");
  unbind(*receiver, "name");
  EXPECT_EQ(receiver->name(), "source");
}

TEST_F(KeyValueBinding, SeveralNamesAreBoundOnTheirOwn) {
  bindToObject(*receiver, "name", source, "name");
  bindToObject(*receiver, "visits", source, "visits");
  unbind(*receiver, "name");
  source->setVisits(4);
  EXPECT_EQ(receiver->visits(), 4);
}

TEST_F(KeyValueBinding, OptionsAreAccepted) {
  bindToObject(*receiver, "name", source, "name",
               NSDictionary::dictionaryWithEntries({{"anything", box(1)}}));
  EXPECT_EQ(receiver->name(), "source");
}

TEST_F(KeyValueBinding, NeitherSideIsKeptAlive) {
  bindToObject(*receiver, "name", source, "name");
  EXPECT_EQ(receiver.use_count(), 1);
  EXPECT_EQ(source.use_count(), 1);
}

TEST_F(KeyValueBinding, TheBindingEndsWithItsReceiver) {
  bindToObject(*receiver, "name", source, "name");
  receiver.reset();
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
  source->setName("nobody hears");
}

TEST_F(KeyValueBinding, AnObservedObjectMayGoFirst) {
  bindToObject(*receiver, "name", source, "name");
  testing::internal::CaptureStderr();
  source.reset();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::HasSubstr("was destroyed while it was observed"));
  EXPECT_EQ(receiver->name(), "source");
  unbind(*receiver, "name");
}

TEST_F(KeyValueBinding, WhatReadingRaisesComesOutAndTheEarlierBindingStays) {
  bindToObject(*receiver, "name", source, "name");
  EXPECT_THROW(bindToObject(*receiver, "name", source, "unknown"), NSException);
  source->setName("heard");
  EXPECT_EQ(receiver->name(), "heard");
}

TEST_F(KeyValueBinding, WhatSettingRaisesComesOut) {
  EXPECT_THROW(bindToObject(*receiver, "visits", source, "partner.visits"), NSException);
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
}

TEST_F(KeyValueBinding, AnAbsentObjectIsRefused) {
  EXPECT_THROW(bindToObject(*receiver, "name", nullptr, "name"), NSException);
}

TEST_F(KeyValueBinding, KeysBoundToEachOtherComeToRest) {
  bindToObject(*receiver, "name", source, "name");
  bindToObject(*source, "name", receiver, "name");
  source->setName("from the source");
  EXPECT_EQ(receiver->name(), "from the source");
  receiver->setName("from the receiver");
  EXPECT_EQ(source->name(), "from the receiver");
  unbind(*receiver, "name");
  unbind(*source, "name");
}

TEST_F(KeyValueBinding, AnObserverOfTheKeyMayUnbindIt) {
  const auto observer = std::make_shared<ChangeRecorder>();
  bindToObject(*receiver, "name", source, "name");
  addObserverForKeyPath(*receiver, observer, "name");
  observer->action = [&] { unbind(*receiver, "name"); };
  source->setName("a");
  source->setName("b");
  EXPECT_EQ(receiver->name(), "a");
  removeObserverForKeyPath(*receiver, observer, "name");
}

TEST_F(KeyValueBinding, AnObserverOfTheKeyMayUnbindItWhileItIsBound) {
  const auto observer = std::make_shared<ChangeRecorder>();
  addObserverForKeyPath(*receiver, observer, "name");
  observer->action = [&] { unbind(*receiver, "name"); };
  bindToObject(*receiver, "name", source, "name");
  source->setName("later");
  EXPECT_EQ(receiver->name(), "source");
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
  removeObserverForKeyPath(*receiver, observer, "name");
}

TEST_F(KeyValueBinding, UnbindingWhileANameIsBoundAnewEndsBoth) {
  const auto other = personNamed("other");
  const auto observer = std::make_shared<ChangeRecorder>();
  bindToObject(*receiver, "name", source, "name");
  addObserverForKeyPath(*receiver, observer, "name");
  observer->action = [&] { unbind(*receiver, "name"); };
  bindToObject(*receiver, "name", other, "name");
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
  EXPECT_FALSE(KeyValueHooks::isObserved(*other));
  removeObserverForKeyPath(*receiver, observer, "name");
}

TEST_F(KeyValueBinding, AnObserverOfTheKeyMayBindItAnewWhileItIsBound) {
  const auto other = personNamed("other");
  const auto observer = std::make_shared<ChangeRecorder>();
  addObserverForKeyPath(*receiver, observer, "name");
  observer->action = [&] {
    observer->action = nullptr;
    bindToObject(*receiver, "name", other, "name");
  };
  bindToObject(*receiver, "name", source, "name");
  source->setName("ignored");
  other->setName("heard");
  EXPECT_EQ(receiver->name(), "heard");
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
  unbind(*receiver, "name");
  removeObserverForKeyPath(*receiver, observer, "name");
}

TEST_F(KeyValueBinding, AnObjectThatIsBoundToItselfGoesWithoutAWarning) {
  bindToObject(*receiver, "quiet", receiver, "visits");
  receiver->setVisits(7);
  EXPECT_EQ(receiver->quiet(), 7);
  testing::internal::CaptureStderr();
  receiver.reset();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(KeyValueBinding, OfAProxyFollowsItsTargetAndIsUndone) {
  bindToObject(*receiver, "name", std::make_shared<PassingProxy>(source), "name");
  source->setName("heard");
  EXPECT_EQ(receiver->name(), "heard");
  unbind(*receiver, "name");
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
}

TEST_F(KeyValueBinding, OfAProxyEndsWithItsReceiver) {
  const id proxy = std::make_shared<PassingProxy>(source);
  bindToObject(*receiver, "name", proxy, "name");
  receiver.reset();
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
}

TEST_F(KeyValueBinding, ObjectsAnswerItsMessages) {
  send(*receiver, SEL("bind:toObject:withKeyPath:options:"), id(box("name")), id(source),
       id(box("name")), id());
  EXPECT_EQ(receiver->name(), "source");
  send(*receiver, SEL("unbind:"), id(box("name")));
  EXPECT_FALSE(KeyValueHooks::isObserved(*source));
}

}  // namespace
}  // namespace rvf
