// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueObserving.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Observation/ForwardingObject.h"
#include "tests/Platform/Observation/ObservedPerson.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kNew = NSKeyValueObservingOptionNew;
constexpr auto kOld = NSKeyValueObservingOptionOld;
constexpr auto kInitial = NSKeyValueObservingOptionInitial;
constexpr auto kPrior = NSKeyValueObservingOptionPrior;
constexpr auto kNone = NSKeyValueObservingOptionNone;

class KeyValueObserving : public testing::Test {
 protected:
  void TearDown() override { dropQuietly(person); }

  Ref<ObservedPerson> person = personNamed("Ada");
  Ref<ChangeRecorder> observer = std::make_shared<ChangeRecorder>();
};

/// The name and reason of what `action` raises.
template <class Action>
std::pair<std::string, std::string> raisedBy(Action action) {
  try {
    action();
  } catch (const NSException& exception) {
    return {exception.name(), exception.reason()};
  }
  return {"nothing", ""};
}

TEST_F(KeyValueObserving, SettersAnnounceEveryCall) {
  addObserverForKeyPath(*person, observer, "visits", kOld | kNew);
  person->setVisits(1);
  person->setVisits(1);
  EXPECT_THAT(observer->told, ElementsAre("visits 0>1", "visits 1>1"));
}

TEST_F(KeyValueObserving, OtherKeysAreNotTold) {
  addObserverForKeyPath(*person, observer, "visits", kNew);
  person->setName("Grace");
  EXPECT_THAT(observer->told, IsEmpty());
}

TEST_F(KeyValueObserving, ObjectAndContextAreHandedOver) {
  int context = 0;
  addObserverForKeyPath(*person, observer, "visits", kNone, &context);
  person->setVisits(1);
  EXPECT_THAT(observer->objects, ElementsAre(person.get()));
  EXPECT_THAT(observer->contexts, ElementsAre(&context));
}

struct OptionRow {
  NSKeyValueObservingOptions options;
  std::vector<std::string> told;
};

class ObservingOption : public testing::TestWithParam<OptionRow> {};

TEST_P(ObservingOption, DecidesWhatIsTold) {
  const auto person = personNamed("Ada");
  const auto observer = std::make_shared<ChangeRecorder>();
  addObserverForKeyPath(*person, observer, "name", GetParam().options);
  person->setName("Grace");
  EXPECT_EQ(observer->told, GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(
    Each, ObservingOption,
    testing::Values(OptionRow{kNone, {"name"}}, OptionRow{kNew, {"name>Grace"}},
                    OptionRow{kOld, {"name Ada"}}, OptionRow{kNew | kOld, {"name Ada>Grace"}},
                    OptionRow{kInitial, {"name", "name"}},
                    OptionRow{kInitial | kNew, {"name>Ada", "name>Grace"}},
                    OptionRow{kInitial | kOld, {"name", "name Ada"}},
                    OptionRow{kPrior, {"name prior", "name"}},
                    OptionRow{kPrior | kNew, {"name prior", "name>Grace"}},
                    OptionRow{kPrior | kOld, {"name prior Ada", "name Ada"}},
                    OptionRow{kInitial | kPrior | kNew | kOld,
                              {"name>Ada", "name prior Ada", "name Ada>Grace"}}),
    [](const auto& row) { return std::to_string(row.param.options); });

TEST_F(KeyValueObserving, TheChangeHasWhatWasAskedForAndItsKind) {
  addObserverForKeyPath(*person, observer, "name", kNone);
  person->setName("Grace");
  EXPECT_EQ(observer->lastChange->description(), "{kind = 1;}");
}

TEST_F(KeyValueObserving, ThePriorChangeSaysThatItIsOne) {
  addObserverForKeyPath(*person, observer, "name", kPrior | kOld | kNew);
  Ref<NSDictionary> first;
  observer->action = [&] {
    if (!first) first = observer->lastChange;
  };
  person->setName("Grace");
  EXPECT_EQ(first->description(), "{kind = 1; notificationIsPrior = 1; old = Ada;}");
}

TEST_F(KeyValueObserving, AbsentValuesAppearAsNull) {
  addObserverForKeyPath(*person, observer, "name", kOld | kNew);
  person->setName(std::nullopt);
  EXPECT_EQ(observer->lastChange->objectForKey("new"), NSNull::null());
  person->setName("Ada");
  EXPECT_EQ(observer->lastChange->objectForKey("old"), NSNull::null());
}

TEST_F(KeyValueObserving, NothingIsKeptAlive) {
  addObserverForKeyPath(*person, observer, "name", kNone);
  EXPECT_EQ(person.use_count(), 1);
  EXPECT_EQ(observer.use_count(), 1);
}

TEST_F(KeyValueObserving, ADeadObserverIsToldNothing) {
  addObserverForKeyPath(*person, observer, "name", kNew);
  observer.reset();
  person->setName("Grace");
  EXPECT_EQ(person->name(), "Grace");
  removeObserverForKeyPath(*person, nullptr, "name");
}

TEST_F(KeyValueObserving, AnnouncementsOfDifferentKeysMayNest) {
  addObserverForKeyPath(*person, observer, "name", kNone);
  addObserverForKeyPath(*person, observer, "visits", kNone);
  willChangeValueForKey(*person, "name");
  willChangeValueForKey(*person, "visits");
  didChangeValueForKey(*person, "visits");
  EXPECT_THAT(observer->told, ElementsAre("visits"));
  didChangeValueForKey(*person, "name");
  EXPECT_THAT(observer->told, ElementsAre("visits", "name"));
}

TEST_F(KeyValueObserving, AnnouncementsOfDifferentKeysMayCross) {
  addObserverForKeyPath(*person, observer, "name", kOld | kNew);
  addObserverForKeyPath(*person, observer, "visits", kOld | kNew);
  willChangeValueForKey(*person, "name");
  willChangeValueForKey(*person, "visits");
  didChangeValueForKey(*person, "name");
  didChangeValueForKey(*person, "visits");
  EXPECT_THAT(observer->told, ElementsAre("name Ada>Ada", "visits 0>0"));
}

TEST_F(KeyValueObserving, AnnouncementsOfOneKeyMayNest) {
  addObserverForKeyPath(*person, observer, "visits", kOld | kNew);
  announceChange(*person, "visits", [&] {
    person->setVisits(1);
    person->setVisits(2);
  });
  EXPECT_THAT(observer->told, ElementsAre("visits 0>1", "visits 1>2", "visits 0>2"));
}

TEST_F(KeyValueObserving, ADidWithoutItsWillDoesNothing) {
  addObserverForKeyPath(*person, observer, "name", kNew);
  didChangeValueForKey(*person, "name");
  willChangeValueForKey(*person, "visits");
  didChangeValueForKey(*person, "name");
  EXPECT_THAT(observer->told, IsEmpty());
}

TEST_F(KeyValueObserving, AnExceptionInAChangeLeavesThePairOpen) {
  addObserverForKeyPath(*person, observer, "name", kOld | kNew);
  EXPECT_THROW(announceChange(*person, "name", [] { throw std::runtime_error("no"); }),
               std::runtime_error);
  EXPECT_THAT(observer->told, IsEmpty());
  person->setName("Grace");
  EXPECT_THAT(observer->told, ElementsAre("name Ada>Grace"));
  didChangeValueForKey(*person, "name");
  EXPECT_THAT(observer->told, ElementsAre("name Ada>Grace", "name Ada>Grace"));
}

TEST_F(KeyValueObserving, TwoRegistrationsAreTwo) {
  addObserverForKeyPath(*person, observer, "name", kNone);
  addObserverForKeyPath(*person, observer, "name", kNew);
  person->setName("a");
  EXPECT_THAT(observer->told, ElementsAre("name", "name>a"));
  removeObserverForKeyPath(*person, observer, "name");
  person->setName("b");
  EXPECT_THAT(observer->told, ElementsAre("name", "name>a", "name"));
  removeObserverForKeyPath(*person, observer, "name");
  person->setName("c");
  EXPECT_EQ(observer->told.size(), 3U);
}

TEST_F(KeyValueObserving, AContextChoosesTheRegistrationToRemove) {
  int first = 0;
  int second = 0;
  addObserverForKeyPath(*person, observer, "name", kNone, &first);
  addObserverForKeyPath(*person, observer, "name", kNone, &second);
  removeObserverForKeyPath(*person, observer, "name", &first);
  person->setName("a");
  EXPECT_THAT(observer->contexts, ElementsAre(&second));
  EXPECT_EQ(raisedBy([&] { removeObserverForKeyPath(*person, observer, "name", &first); }).first,
            NSRangeException);
}

TEST_F(KeyValueObserving, RemovingWhatIsNotRegisteredRaises) {
  const auto other = std::make_shared<ChangeRecorder>();
  addObserverForKeyPath(*person, other, "name", kNone);
  addObserverForKeyPath(*person, observer, "visits", kNone);
  const auto [name, reason] =
      raisedBy([&] { removeObserverForKeyPath(*person, observer, "name"); });
  EXPECT_EQ(name, NSRangeException);
  EXPECT_EQ(reason, "Cannot remove an observer <ChangeRecorder " + pointerText(observer.get()) +
                        "> for the key path \"name\" from <ObservedPerson " +
                        pointerText(person.get()) +
                        "> because it is not registered as an observer.");
}

TEST_F(KeyValueObserving, RemovingFromWhatNobodyObservesRaises) {
  EXPECT_EQ(raisedBy([&] { removeObserverForKeyPath(*person, observer, "name"); }).first,
            NSRangeException);
  EXPECT_EQ(raisedBy([&] { removeObserverForKeyPath(*person, nullptr, "name"); }).first,
            NSRangeException);
}

TEST_F(KeyValueObserving, AnAbsentObserverIsRefused) {
  EXPECT_EQ(raisedBy([&] { addObserverForKeyPath(*person, nullptr, "name"); }).first,
            NSInvalidArgumentException);
}

TEST_F(KeyValueObserving, AnAbsentObserverRemovesTheNewestOfTheDead) {
  int first = 0;
  addObserverForKeyPath(*person, observer, "name", kNone);
  addObserverForKeyPath(*person, std::make_shared<ChangeRecorder>(), "name", kNone, &first);
  addObserverForKeyPath(*person, std::make_shared<ChangeRecorder>(), "name", kNone);
  removeObserverForKeyPath(*person, nullptr, "name");
  removeObserverForKeyPath(*person, nullptr, "name", &first);
  EXPECT_EQ(raisedBy([&] { removeObserverForKeyPath(*person, nullptr, "name"); }).first,
            NSRangeException);
  person->setName("a");
  EXPECT_THAT(observer->told, ElementsAre("name"));
}

TEST_F(KeyValueObserving, AnObserverRemovesItselfInItsDestructor) {
  class Leaving final : public NSObject {
   public:
    explicit Leaving(ObservedPerson& person) : person_(person) {}
    ~Leaving() override { removeObserverForKeyPath(person_, *this, "name"); }

   private:
    ObservedPerson& person_;
  };
  auto leaving = std::make_shared<Leaving>(*person);
  addObserverForKeyPath(*person, leaving, "name");
  leaving.reset();
  EXPECT_EQ(raisedBy([&] { removeObserverForKeyPath(*person, nullptr, "name"); }).first,
            NSRangeException);
}

TEST_F(KeyValueObserving, AnObserverMustAnswerTheMessage) {
  const id deaf = box("deaf");
  addObserverForKeyPath(*person, deaf, "name", kNone);
  const auto [name, reason] = raisedBy([&] { person->setName("a"); });
  EXPECT_EQ(name, NSInternalInconsistencyException);
  EXPECT_EQ(reason, "<NSString " + pointerText(deaf.get()) +
                        ">: An -observeValueForKeyPath:ofObject:change:context: message was "
                        "received but not handled.\nKey path: name\nObserved object: "
                        "<ObservedPerson " +
                        pointerText(person.get()) + ">\nChange: {kind = 1;}\nContext: 0x0");
}

// Coding

TEST_F(KeyValueObserving, SettingByKeyAnnouncesExactlyOnce) {
  for (const char* key : {"visits", "quiet", "variable"}) {
    observer->told.clear();
    addObserverForKeyPath(*person, observer, key, kOld | kNew);
    setValueForKey(*person, box(person->visits() + 1), key);
    EXPECT_EQ(observer->told.size(), 1U) << key;
    removeObserverForKeyPath(*person, observer, key);
  }
}

TEST_F(KeyValueObserving, SettingByKeyAnnouncesWhatDependsOnIt) {
  addObserverForKeyPath(*person, observer, "label", kOld | kNew);
  setValueForKey(*person, box(5), "visits");
  EXPECT_THAT(observer->told, ElementsAre("label Ada 0>Ada 5"));
}

TEST_F(KeyValueObserving, AFailedSettingByKeyTellsNobody) {
  addObserverForKeyPath(*person, observer, "visits", kNew);
  EXPECT_EQ(raisedBy([&] { setValueForKey(*person, nullptr, "visits"); }).first,
            NSInvalidArgumentException);
  EXPECT_EQ(raisedBy([&] { setValueForKey(*person, box(1), "unknown"); }).first,
            NSUndefinedKeyException);
  EXPECT_THAT(observer->told, IsEmpty());
}

TEST_F(KeyValueObserving, ADictionaryAnnouncesWhatIsSetByKey) {
  const auto entries = NSMutableDictionary::dictionary();
  addObserverForKeyPath(*entries, observer, "key", kOld | kNew);
  setValueForKey(*entries, box("value"), "key");
  setValueForKey(*entries, nullptr, "key");
  EXPECT_THAT(observer->told, ElementsAre("key <null>>value", "key value><null>"));
  removeObserverForKeyPath(*entries, observer, "key");
}

// Dependent keys

TEST_F(KeyValueObserving, ADependentKeyIsToldWithItsOwnValues) {
  addObserverForKeyPath(*person, observer, "label", kOld | kNew);
  person->setName("Grace");
  person->setVisits(2);
  EXPECT_THAT(observer->told, ElementsAre("label Ada 0>Grace 0", "label Grace 0>Grace 2"));
}

TEST_F(KeyValueObserving, DependenceGoesOn) {
  addObserverForKeyPath(*person, observer, "badge", kNew);
  person->setVisits(2);
  EXPECT_THAT(observer->told, ElementsAre("badge><Ada 2>"));
}

TEST_F(KeyValueObserving, AnnouncingTheDependentKeyItselfTellsToo) {
  addObserverForKeyPath(*person, observer, "label", kNone);
  announceChange(*person, "label", [] {});
  EXPECT_THAT(observer->told, ElementsAre("label"));
}

TEST_F(KeyValueObserving, AKeyMayDependOnAPath) {
  person->setPartner(personNamed("Bob"));
  addObserverForKeyPath(*person, observer, "pair", kOld | kNew);
  person->partner()->setName("Bert");
  person->setPartner(personNamed("Cid"));
  person->partner()->setName("Carl");
  person->setName("Eve");
  EXPECT_THAT(observer->told, ElementsAre("pair Ada+Bob>Ada+Bert", "pair Ada+Bert>Ada+Cid",
                                          "pair Ada+Cid>Ada+Carl", "pair Ada+Carl>Eve+Carl"));
}

TEST_F(KeyValueObserving, DependenceInCirclesEnds) {
  const auto other = personNamed("Bob");
  person->setPartner(other);
  other->setPartner(person);
  addObserverForKeyPath(*person, observer, "oracle", kNone);
  other->setPartner(nullptr);
  EXPECT_THAT(observer->told, ElementsAre("oracle"));
}

// Paths

TEST_F(KeyValueObserving, APathTellsOfItsLastKey) {
  person->setPartner(personNamed("Bob"));
  addObserverForKeyPath(*person, observer, "partner.name", kOld | kNew);
  person->partner()->setName("Bert");
  EXPECT_THAT(observer->told, ElementsAre("partner.name Bob>Bert"));
  EXPECT_THAT(observer->objects, ElementsAre(person.get()));
}

TEST_F(KeyValueObserving, APathFollowsItsLinks) {
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  addObserverForKeyPath(*person, observer, "partner.name", kOld | kNew);
  person->setPartner(personNamed("Cid"));
  bob->setName("Bert");
  person->partner()->setName("Carl");
  EXPECT_THAT(observer->told, ElementsAre("partner.name Bob>Cid", "partner.name Cid>Carl"));
}

TEST_F(KeyValueObserving, AnAbsentLinkReadsAsNull) {
  addObserverForKeyPath(*person, observer, "partner.partner.name", kInitial | kOld | kNew);
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  bob->setPartner(personNamed("Cid"));
  person->setPartner(nullptr);
  EXPECT_THAT(observer->told,
              ElementsAre("partner.partner.name><null>", "partner.partner.name <null>><null>",
                          "partner.partner.name <null>>Cid", "partner.partner.name Cid><null>"));
}

TEST_F(KeyValueObserving, APathThroughADependentLinkFollowsIt) {
  addObserverForKeyPath(*person, observer, "companion.name", kNew);
  person->setPartner(personNamed("Bob"));
  person->partner()->setName("Bert");
  EXPECT_THAT(observer->told, ElementsAre("companion.name>Bob", "companion.name>Bert"));
}

TEST_F(KeyValueObserving, APathThroughItselfTellsOnce) {
  person->setPartner(person);
  addObserverForKeyPath(*person, observer, "partner.partner.name", kNew);
  person->setName("Eve");
  person->setPartner(personNamed("Bob"));
  EXPECT_THAT(observer->told,
              ElementsAre("partner.partner.name>Eve", "partner.partner.name><null>"));
}

TEST_F(KeyValueObserving, ARemovedPathLeavesItsLinksAlone) {
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  addObserverForKeyPath(*person, observer, "partner.name", kNew);
  removeObserverForKeyPath(*person, observer, "partner.name");
  bob->setName("Bert");
  person->setPartner(nullptr);
  EXPECT_THAT(observer->told, IsEmpty());
  EXPECT_FALSE(KeyValueHooks::isObserved(*bob));
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

TEST_F(KeyValueObserving, ALinkThatDiesUnannouncedEndsThePathThere) {
  const auto entries = NSMutableDictionary::dictionary();
  entries->setObject(personNamed("Bob"), "person");
  addObserverForKeyPath(*entries, observer, "person.name", kNew);
  testing::internal::CaptureStderr();
  entries->removeAllObjects();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  setValueForKey(*entries, personNamed("Cid"), "person");
  setValueForKeyPath(*entries, box("Carl"), "person.name");
  EXPECT_THAT(observer->told, ElementsAre("person.name>Cid", "person.name>Carl"));
  removeObserverForKeyPath(*entries, observer, "person.name");
}

TEST_F(KeyValueObserving, AnUnknownKeyOfAPathLeavesNothingRegistered) {
  EXPECT_EQ(raisedBy([&] { addObserverForKeyPath(*person, observer, "unknown.name"); }).first,
            NSUndefinedKeyException);
  EXPECT_EQ(
      raisedBy([&] { addObserverForKeyPath(*person, observer, "unknown", kInitial | kNew); }).first,
      NSUndefinedKeyException);
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

// Targets

TEST_F(KeyValueObserving, ATargetThatIsDestroyedWarnsOnce) {
  const std::string target = pointerText(person.get());
  addObserverForKeyPath(*person, observer, "name");
  addObserverForKeyPath(*person, observer, "visits");
  testing::internal::CaptureStderr();
  person.reset();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "<ObservedPerson " + target +
                "> was destroyed while it was observed: key path \"name\" by <ChangeRecorder " +
                pointerText(observer.get()) + ">, and 1 more\n");
}

TEST_F(KeyValueObserving, ATargetThatIsDestroyedLetsGoOfItsPaths) {
  const auto bob = personNamed("Bob");
  person->setPartner(bob);
  addObserverForKeyPath(*person, observer, "partner.name");
  testing::internal::CaptureStderr();
  person.reset();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("\"partner.name\""));
  bob->setName("Bert");
  EXPECT_THAT(observer->told, IsEmpty());
  EXPECT_FALSE(KeyValueHooks::isObserved(*bob));
}

TEST_F(KeyValueObserving, ATargetWithoutObserversGoesSilently) {
  addObserverForKeyPath(*person, observer, "name");
  removeObserverForKeyPath(*person, observer, "name");
  testing::internal::CaptureStderr();
  person.reset();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(KeyValueObserving, AnObjectIsUnmarkedWhenItsLastObserverLeft) {
  addObserverForKeyPath(*person, observer, "name");
  addObserverForKeyPath(*person, observer, "label");
  EXPECT_TRUE(KeyValueHooks::isObserved(*person));
  removeObserverForKeyPath(*person, observer, "name");
  EXPECT_TRUE(KeyValueHooks::isObserved(*person));
  removeObserverForKeyPath(*person, observer, "label");
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

TEST_F(KeyValueObserving, AProxyPassesItsMessagesOn) {
  ForwardingObject proxy(person);
  int context = 0;
  addObserverForKeyPath(proxy, observer, "name", kOld | kNew, &context);
  willChangeValueForKey(proxy, "name");
  didChangeValueForKey(proxy, "name");
  person->setName("Grace");
  EXPECT_THAT(observer->told, ElementsAre("name Ada>Ada", "name Ada>Grace"));
  EXPECT_THAT(observer->objects, ElementsAre(person.get(), person.get()));
  removeObserverForKeyPath(proxy, observer, "name", &context);
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

TEST_F(KeyValueObserving, ThreadsAnnounceOnTheirOwn) {
  addObserverForKeyPath(*person, observer, "name", kNone);
  willChangeValueForKey(*person, "name");
  std::thread([&] { didChangeValueForKey(*person, "name"); }).join();
  EXPECT_THAT(observer->told, IsEmpty());
  didChangeValueForKey(*person, "name");
  EXPECT_THAT(observer->told, ElementsAre("name"));
}

TEST_F(KeyValueObserving, ThreadsRegisterAndAnnounceAtOneObject) {
  std::vector<std::thread> threads;
  for (const char* key : {"a", "b", "c", "d"}) {
    threads.emplace_back([&, key] {
      const auto own = std::make_shared<ChangeRecorder>();
      for (int turn = 0; turn < 300; ++turn) {
        addObserverForKeyPath(*person, own, key);
        announceChange(*person, key, [] {});
        removeObserverForKeyPath(*person, own, key);
      }
      EXPECT_EQ(own->told.size(), 300U);
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_FALSE(KeyValueHooks::isObserved(*person));
}

/// Random registrations, removals and changes beside a plain list of who is registered.
TEST(KeyValueObservingProperty, WhoIsRegisteredIsToldInOrder) {
  EXPECT_TRUE(rc::check([](const std::vector<std::pair<unsigned, bool>>& steps) {
    const auto person = personNamed("Ada");
    std::vector<Ref<ChangeRecorder>> observers;
    std::vector<unsigned> told;
    std::vector<unsigned> registered;
    for (unsigned i = 0; i < 3; ++i) {
      observers.push_back(std::make_shared<ChangeRecorder>());
      observers.back()->action = [&told, i] { told.push_back(i); };
    }
    for (const auto& [number, isAdded] : steps) {
      const unsigned i = number % 3;
      const auto newest = std::find(registered.rbegin(), registered.rend(), i);
      if (isAdded) {
        addObserverForKeyPath(*person, observers[i], "visits");
        registered.push_back(i);
      } else if (newest != registered.rend()) {
        removeObserverForKeyPath(*person, observers[i], "visits");
        registered.erase(std::prev(newest.base()));
      }
      told.clear();
      person->setVisits(1);
      RC_ASSERT(told == registered);
    }
    for (const unsigned i : registered)
      removeObserverForKeyPath(*person, observers[i], "visits");
    RC_ASSERT(!KeyValueHooks::isObserved(*person));
  }));
}

}  // namespace
}  // namespace rvf
