// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/NSNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps the names of what it hears, through two selectors.
class Listener final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void hear(const Ref<NSNotification>& notification) {
    heard.push_back(notification->name());
    if (const auto now = action) now();
  }
  void hearOtherwise(const Ref<NSNotification>& notification) {
    heard.push_back("otherwise " + notification->name());
  }

  std::vector<std::string> heard;
  std::function<void()> action;
};

Class Listener::classObject() {
  static const Class kClass = ClassBuilder<Listener>("NotifiedListener", NSObject::classObject())
                                  .method<&Listener::hear>("hear:")
                                  .method<&Listener::hearOtherwise>("hearOtherwise:")
                                  .registered();
  return kClass;
}

const SEL kHear("hear:");

/// Has its method replaced at the first notification.
class Replaced final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Replaced>("ReplacedListener", NSObject::classObject())
                                    .method<&Replaced::hear>("hear:")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void hear(const Ref<NSNotification>&) {
    heard = "as declared";
    const IMP replacement(+[](NSObject& self, SEL, Ref<NSNotification>) {
      static_cast<Replaced&>(self).heard = "as replaced";
    });
    class_addExtension(classObject(), {{kHear, replacement}});
  }

  std::string heard;
};

class NotificationCenter : public testing::Test {
 protected:
  Ref<NSNotificationCenter> center = std::make_shared<NSNotificationCenter>();
  Ref<Listener> first = std::make_shared<Listener>();
  Ref<Listener> second = std::make_shared<Listener>();
  id thing = box("thing");
  id equalThing = box("thing");
};

struct MatchRow {
  std::string description;
  std::optional<std::string> name;
  bool hasObject;
  std::vector<std::string> heard;
};

class NotificationMatch : public testing::TestWithParam<MatchRow> {};

TEST_P(NotificationMatch, IsByNameAndObject) {
  const auto center = std::make_shared<NSNotificationCenter>();
  const auto listener = std::make_shared<Listener>();
  const id thing = box("thing");
  const id equalThing = box("thing");
  center->addObserver(listener, kHear, GetParam().name, GetParam().hasObject ? thing : nullptr);
  center->postNotificationName("a with thing", thing);
  center->postNotificationName("a", thing);
  center->postNotificationName("a", equalThing);
  center->postNotificationName("a", nullptr);
  center->postNotificationName("b", thing);
  EXPECT_EQ(listener->heard, GetParam().heard);
}

INSTANTIATE_TEST_SUITE_P(
    Of, NotificationMatch,
    testing::Values(MatchRow{"Name", "a", false, {"a", "a", "a"}},
                    MatchRow{"NameAndObject", "a", true, {"a"}},
                    MatchRow{"Object", std::nullopt, true, {"a with thing", "a", "b"}},
                    MatchRow{"Anything", std::nullopt, false, {"a with thing", "a", "a", "a", "b"}},
                    MatchRow{"AnotherName", "c", false, {}},
                    MatchRow{"TheEmptyName", "", false, {}}),
    [](const auto& row) { return row.param.description; });

TEST_F(NotificationCenter, TheNotificationIsHandedOver) {
  const auto info = NSDictionary::dictionaryWithEntries({{"key", box(1)}});
  const auto notification = NSNotification::notificationWithName("a", thing, info);
  EXPECT_EQ(notification->name(), "a");
  EXPECT_EQ(notification->object(), thing);
  EXPECT_EQ(notification->userInfo(), info);
  EXPECT_EQ(unboxText(valueForKey(*notification, "name")), "a");
  center->addObserver(first, kHear, "a", nullptr);
  center->postNotification(notification);
  EXPECT_THAT(first->heard, ElementsAre("a"));
}

TEST_F(NotificationCenter, ThereIsOneDefaultCenter) {
  EXPECT_EQ(NSNotificationCenter::defaultCenter(), NSNotificationCenter::defaultCenter());
  EXPECT_NE(NSNotificationCenter::defaultCenter(), nullptr);
}

TEST_F(NotificationCenter, RegisteringTwiceDeliversTwice) {
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(first, SEL("hearOtherwise:"), "a", nullptr);
  center->addObserver(first, kHear, "a", nullptr);
  center->postNotificationName("a", nullptr);
  EXPECT_THAT(first->heard, ElementsAre("a", "otherwise a", "a"));
}

TEST_F(NotificationCenter, TheOrderIsThatOfRegistration) {
  std::vector<int> order;
  first->action = [&] { order.push_back(1); };
  second->action = [&] { order.push_back(2); };
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(second, kHear, std::nullopt, nullptr);
  center->addObserver(first, kHear, std::nullopt, nullptr);
  center->addObserver(second, kHear, "a", thing);
  center->postNotificationName("a", thing);
  EXPECT_THAT(order, ElementsAre(1, 2, 1, 2));
}

TEST_F(NotificationCenter, LeadingObserversHearBeforeTheOthers) {
  std::vector<std::string> order;
  std::vector<Ref<Listener>> listeners;
  const auto listener = [&](const std::string& name) {
    listeners.push_back(std::make_shared<Listener>());
    listeners.back()->action = [&order, name] { order.push_back(name); };
    return listeners.back();
  };
  center->addObserver(listener("any 1"), kHear, std::nullopt, nullptr);
  center->addObserver(listener("a 1"), kHear, "a", nullptr);
  center->addLeadingObserver(listener("leading a 1"), kHear, "a", nullptr);
  center->addObserver(listener("a 2"), kHear, "a", nullptr);
  center->addLeadingObserver(listener("leading a 2"), kHear, "a", nullptr);
  center->addObserver(listener("any 2"), kHear, std::nullopt, nullptr);
  center->postNotificationName("a", nullptr);
  EXPECT_THAT(order, ElementsAre("leading a 1", "leading a 2", "any 1", "a 1", "a 2", "any 2"));
}

TEST_F(NotificationCenter, ALeadingObserverIsOneLikeTheOthersOtherwise) {
  center->addLeadingObserver(first, kHear, std::nullopt, thing);
  center->postNotificationName("a", thing);
  center->postNotificationName("a", equalThing);
  center->removeObserver(first, "a");
  EXPECT_THAT(first->heard, ElementsAre("a"));
  center->removeObserver(first);
  center->postNotificationName("a", thing);
  EXPECT_THAT(first->heard, ElementsAre("a"));
  EXPECT_THROW(center->addLeadingObserver(nullptr, kHear, "a", nullptr), NSException);
  EXPECT_THROW(center->addLeadingObserver(first, SEL(), "a", nullptr), NSException);
}

TEST_F(NotificationCenter, NothingIsOwned) {
  center->addObserver(first, kHear, "a", thing);
  EXPECT_EQ(first.use_count(), 1);
  EXPECT_EQ(thing.use_count(), 1);
}

TEST_F(NotificationCenter, ADeadObserverIsToldNothing) {
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(first, kHear, std::nullopt, nullptr);
  center->addObserver(second, kHear, "a", nullptr);
  first.reset();
  center->postNotificationName("a", nullptr);
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(second->heard.size(), 2U);
}

TEST_F(NotificationCenter, AMethodThatIsReplacedDuringAPostIsUsedFromThenOn) {
  const auto earlier = std::make_shared<Replaced>();
  const auto later = std::make_shared<Replaced>();
  center->addObserver(earlier, kHear, "a", nullptr);
  center->addObserver(later, kHear, "a", nullptr);
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(earlier->heard, "as declared");
  EXPECT_EQ(later->heard, "as replaced");
}

/// Counts the memory that is given back.
template <class T>
struct CountingAllocator {
  using value_type = T;
  explicit CountingAllocator(int* counted) : freed(counted) {}
  template <class U>
  CountingAllocator(const CountingAllocator<U>& other) : freed(other.freed) {}  // NOLINT: converts
  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* memory, std::size_t count) {
    ++*freed;
    std::allocator<T>().deallocate(memory, count);
  }
  template <class U>
  bool operator==(const CountingAllocator<U>& other) const {
    return freed == other.freed;
  }
  int* freed;
};

TEST_F(NotificationCenter, RegistrationsForObjectsThatAreGoneAreDropped) {
  static int freed = 0;  // the center lets go of the last ones after this test
  for (int i = 0; i < 1000; ++i) {
    const id gone = std::allocate_shared<Listener>(CountingAllocator<Listener>(&freed));
    center->addObserver(first, kHear, "a" + std::to_string(i), gone);
  }
  EXPECT_GT(freed, 900);
}

TEST_F(NotificationCenter, WhatLivesIsHeardHoweverManyHaveDied) {
  center->addObserver(first, kHear, "a", nullptr);
  for (int i = 0; i < 200; ++i)
    center->addObserver(std::make_shared<Listener>(), kHear, "a", box("gone"));
  center->addObserver(second, kHear, "a", thing);
  center->postNotificationName("a", thing);
  EXPECT_EQ(first->heard.size(), 1U);
  EXPECT_EQ(second->heard.size(), 1U);
}

TEST_F(NotificationCenter, AnObjectAtTheAddressOfADeadOneIsAnotherOne) {
  alignas(NSString) static std::byte memory[256];
  const auto placed = [] {
    auto* text = new (memory) NSString("thing");
    return Ref<NSString>(text, [](NSString* gone) { gone->~NSString(); });
  };
  id object = placed();
  center->addObserver(first, kHear, "a", object);
  object.reset();
  object = placed();
  center->postNotificationName("a", object);
  EXPECT_THAT(first->heard, IsEmpty());
  center->removeObserver(first, "a", object);
}

struct RemovalRow {
  std::string description;
  std::optional<std::string> name;
  bool hasObject;
  std::vector<std::string> heard;
};

class NotificationRemoval : public testing::TestWithParam<RemovalRow> {};

TEST_P(NotificationRemoval, TakesEveryMatchAway) {
  const auto center = std::make_shared<NSNotificationCenter>();
  const auto listener = std::make_shared<Listener>();
  const id thing = box("thing");
  for (const auto& name : {std::optional<std::string>("a"), std::optional<std::string>("b"),
                           std::optional<std::string>()}) {
    center->addObserver(listener, kHear, name, thing);
    center->addObserver(listener, kHear, name, nullptr);
    center->addObserver(listener, kHear, name, thing);
  }
  center->removeObserver(listener, GetParam().name, GetParam().hasObject ? thing : nullptr);
  center->postNotificationName("a", thing);
  center->postNotificationName("b", thing);
  center->postNotificationName("c", nullptr);
  EXPECT_EQ(listener->heard, GetParam().heard);
}

std::vector<std::string> times(std::size_t a, std::size_t b, std::size_t c) {
  std::vector<std::string> all(a, "a");
  all.insert(all.end(), b, "b");
  all.insert(all.end(), c, "c");
  return all;
}

INSTANTIATE_TEST_SUITE_P(Of, NotificationRemoval,
                         testing::Values(RemovalRow{"Everything", std::nullopt, false, {}},
                                         RemovalRow{"AName", "a", false, times(3, 6, 1)},
                                         RemovalRow{"AnObject", std::nullopt, true, times(2, 2, 1)},
                                         RemovalRow{"ANameAndObject", "a", true, times(4, 6, 1)},
                                         RemovalRow{"AnUnknownName", "z", false, times(6, 6, 1)}),
                         [](const auto& row) { return row.param.description; });

TEST_F(NotificationCenter, RemovingNothingIsHarmless) {
  center->removeObserver(first);
  center->removeObserver(nullptr);
  center->addObserver(second, kHear, "a", nullptr);
  center->removeObserver(first, "a");
  center->removeObserver(second, "a", thing);
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(second->heard.size(), 1U);
}

TEST_F(NotificationCenter, AnObserverRemovesItselfInItsDestructor) {
  class Leaving final : public NSObject {
   public:
    explicit Leaving(Ref<NSNotificationCenter> center) : center_(std::move(center)) {}
    ~Leaving() override { center_->removeObserver(*this); }

   private:
    Ref<NSNotificationCenter> center_;
  };
  center->addObserver(std::make_shared<Leaving>(center), kHear, "a", nullptr);
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(center.use_count(), 1);
}

TEST_F(NotificationCenter, WhatIsRemovedBeforeItsTurnIsSkipped) {
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(second, kHear, "a", nullptr);
  first->action = [&] { center->removeObserver(second); };
  center->postNotificationName("a", nullptr);
  EXPECT_THAT(second->heard, IsEmpty());
}

TEST_F(NotificationCenter, WhatIsAddedDuringAPostWaitsForTheNext) {
  center->addObserver(first, kHear, "a", nullptr);
  first->action = [&] {
    first->action = nullptr;
    center->addObserver(second, kHear, "a", nullptr);
    center->addObserver(second, kHear, std::nullopt, nullptr);
  };
  center->postNotificationName("a", nullptr);
  EXPECT_THAT(second->heard, IsEmpty());
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(second->heard.size(), 2U);
}

TEST_F(NotificationCenter, AnObserverMayRemoveItselfAndPostAgain) {
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(second, kHear, "a", nullptr);
  first->action = [&] {
    center->removeObserver(first);
    center->postNotificationName("a", nullptr);
  };
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(first->heard.size(), 1U);
  EXPECT_EQ(second->heard.size(), 2U);
}

TEST_F(NotificationCenter, AnObserverMayDropAnotherAndTheCenter) {
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(second, kHear, "a", nullptr);
  const auto third = std::make_shared<Listener>();
  center->addObserver(third, kHear, "a", nullptr);
  first->action = [&] {
    second.reset();
    center.reset();
  };
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(third->heard.size(), 1U);
}

TEST_F(NotificationCenter, AnExceptionEndsThePost) {
  center->addObserver(first, kHear, "a", nullptr);
  center->addObserver(second, kHear, "a", nullptr);
  first->action = [&] { throw std::string("no"); };
  EXPECT_THROW(center->postNotificationName("a", nullptr), std::string);
  EXPECT_THAT(second->heard, IsEmpty());
  first->action = nullptr;
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(second->heard.size(), 1U);
}

TEST_F(NotificationCenter, AbsentThingsAreRefused) {
  EXPECT_THROW(center->addObserver(nullptr, kHear, "a", nullptr), NSException);
  EXPECT_THROW(center->addObserver(first, SEL(), "a", nullptr), NSException);
  EXPECT_THROW(center->postNotification(nullptr), NSException);
}

TEST_F(NotificationCenter, AnObserverWithoutTheMethodRaises) {
  center->addObserver(thing, kHear, "a", nullptr);
  EXPECT_THROW(center->postNotificationName("a", nullptr), NSException);
}

TEST_F(NotificationCenter, ItAnswersMessages) {
  NSObject& receiver = *center;
  send(receiver, SEL("addObserver:selector:name:object:"), id(first), kHear, id(box("a")), id());
  send(receiver, SEL("addObserver:selector:name:object:"), id(first), kHear, id(), thing);
  send(receiver, SEL("postNotificationName:object:"), id(box("a")), thing);
  EXPECT_THAT(first->heard, ElementsAre("a", "a"));
  send(receiver, SEL("removeObserver:name:object:"), id(first), id(box("a")), id());
  send(receiver, SEL("postNotificationName:object:userInfo:"), id(box("a")), thing, id());
  EXPECT_EQ(first->heard.size(), 3U);
  send(receiver, SEL("removeObserver:"), id(first));
  send(receiver, SEL("postNotification:"), id(NSNotification::notificationWithName("a", thing)));
  EXPECT_EQ(first->heard.size(), 3U);
}

TEST_F(NotificationCenter, TenThousandObserversHearAndLeave) {
  std::vector<Ref<Listener>> listeners;
  for (int i = 0; i < 10'000; ++i) {
    listeners.push_back(std::make_shared<Listener>());
    center->addObserver(listeners.back(), kHear, "a", nullptr);
  }
  listeners[0]->action = [&] {
    for (std::size_t i = 1; i < listeners.size(); i += 2)
      center->removeObserver(listeners[i]);
  };
  center->postNotificationName("a", nullptr);
  for (std::size_t i = 0; i < listeners.size(); ++i) {
    ASSERT_EQ(listeners[i]->heard.size(), i % 2 == 0 ? 1U : 0U) << i;
  }
  for (const auto& listener : listeners)
    center->removeObserver(listener);
  center->postNotificationName("a", nullptr);
  EXPECT_EQ(listeners[2]->heard.size(), 1U);
}

TEST_F(NotificationCenter, ThreadsRegisterAndPostAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      const auto own = std::make_shared<Listener>();
      const id mine = box("mine");
      for (int turn = 0; turn < 300; ++turn) {
        center->addObserver(own, kHear, "a", mine);
        center->postNotificationName("a", mine);
        center->removeObserver(own);
      }
      EXPECT_EQ(own->heard.size(), 300U);
    });
  }
  for (std::thread& thread : threads)
    thread.join();
}

/// Random registrations and removals beside a plain list of them.
TEST(NotificationCenterProperty, WhoIsRegisteredHearsInOrder) {
  EXPECT_TRUE(rc::check([](const std::vector<std::pair<unsigned, bool>>& steps) {
    const auto center = std::make_shared<NSNotificationCenter>();
    std::vector<Ref<Listener>> listeners;
    std::vector<unsigned> heard;
    std::vector<unsigned> registered;
    for (unsigned i = 0; i < 4; ++i) {
      listeners.push_back(std::make_shared<Listener>());
      listeners.back()->action = [&heard, i] { heard.push_back(i); };
    }
    for (const auto& [number, isAdded] : steps) {
      const unsigned i = number % 4;
      if (isAdded) {
        center->addObserver(listeners[i], kHear,
                            number % 8 < 4 ? std::optional<std::string>("a") : std::nullopt,
                            nullptr);
        registered.push_back(i);
      } else {
        center->removeObserver(listeners[i]);
        std::erase(registered, i);
      }
      heard.clear();
      center->postNotificationName("a", nullptr);
      RC_ASSERT(heard == registered);
    }
  }));
}

}  // namespace
}  // namespace rvf
