// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/PerformSelector.h"

#include <gmock/gmock.h>
#include <poll.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/RunLoop/ServingThread.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const RunLoopModes kDefault{std::string(NSDefaultRunLoopMode)};
const RunLoopModes kPanel{"panel"};
const SEL kTake("take:");

/// Hands every argument that it is sent to a function.
class Receiver final : public NSObject {
 public:
  explicit Receiver(std::function<void(const id&)> taken) : taken_(std::move(taken)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Receiver>("PerformSelectorReceiver", NSObject::classObject())
            .method<&Receiver::take>("take:")
            .method<&Receiver::count>("count")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void take(const id& argument) { taken_(argument); }
  int count() {
    taken_(nullptr);
    return 1;
  }

 private:
  std::function<void(const id&)> taken_;
};

class PerformSelectorTest : public testing::Test {
 protected:
  void SetUp() override { loop->setClock(clock); }
  void TearDown() override { loop->setClock(nullptr); }

  id receiver() {
    return std::make_shared<Receiver>(
        [this](const id& argument) { taken.push_back(unboxText(argument).value_or("absent")); });
  }

  const Ref<NSRunLoop> loop = NSRunLoop::mainRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock = std::make_shared<ManualRunLoopClock>();
  std::vector<std::string> taken;
};

template <class Call>
std::string nameOfRaised(const Call& call) {
  try {
    call();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "nothing";
}

TEST_F(PerformSelectorTest, WithoutWaitingAMessageIsQueuedAlsoOnItsOwnThread) {
  performSelectorOnMainThread(receiver(), kTake, box("a"), false);
  EXPECT_THAT(taken, IsEmpty());
  loop->turn();
  EXPECT_THAT(taken, ElementsAre("a"));
}

TEST_F(PerformSelectorTest, WaitingOnTheOwnThreadSendsAtOnce) {
  performSelectorOnMainThread(receiver(), kTake, box("a"), true);
  EXPECT_THAT(taken, ElementsAre("a"));
  EXPECT_FALSE(loop->turn());
}

TEST_F(PerformSelectorTest, MessagesArriveInTheOrderSent) {
  for (const char* text : {"a", "b", "c"}) {
    performSelectorOnMainThread(receiver(), kTake, box(text), false);
  }
  loop->turn();
  EXPECT_THAT(taken, ElementsAre("a", "b", "c"));
}

TEST_F(PerformSelectorTest, AMessageWaitsForItsMode) {
  performSelectorOnMainThread(receiver(), kTake, box("panel"), false, kPanel);
  performSelectorOnMainThread(receiver(), kTake, box("common"), false);
  loop->turn();
  EXPECT_THAT(taken, ElementsAre("common"));
  loop->turn("panel");
  EXPECT_THAT(taken, ElementsAre("common", "panel"));
}

TEST_F(PerformSelectorTest, WithoutModesNothingIsSent) {
  performSelectorOnMainThread(receiver(), kTake, box("a"), false, {});
  performSelectorOnMainThread(receiver(), kTake, box("b"), true, {});
  performSelectorAfterDelay(receiver(), kTake, box("c"), 0, {});
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(taken, IsEmpty());
}

TEST_F(PerformSelectorTest, AnAbsentTargetIsSentNothing) {
  performSelectorOnMainThread(nullptr, kTake, nullptr, true);
  performSelectorAfterDelay(nullptr, kTake, nullptr, 0, kDefault);
  performSelectorInBackground(nullptr, kTake, nullptr);
  EXPECT_FALSE(loop->turn());
}

TEST_F(PerformSelectorTest, ASelectorWithoutArgumentsIsSentWithoutOne) {
  performSelectorOnMainThread(receiver(), SEL("count"), box("unused"), true);
  EXPECT_THAT(taken, ElementsAre("absent"));
}

TEST_F(PerformSelectorTest, AnUnknownSelectorRaises) {
  EXPECT_EQ(
      nameOfRaised([&] { performSelectorOnMainThread(receiver(), SEL("sing:"), nullptr, true); }),
      NSInvalidArgumentException);
}

TEST_F(PerformSelectorTest, WaitingElsewhereReturnsWhenTheMessageWasSentThere) {
  const ServingThread serving;
  bool wasThere = false;
  const id target = std::make_shared<Receiver>(
      [&](const id&) { wasThere = serving.thread()->isCurrentThread(); });
  performSelectorOnThread(target, kTake, serving.thread(), nullptr, true);
  EXPECT_TRUE(wasThere);
}

TEST_F(PerformSelectorTest, TheMainThreadServesOthersThatWaitForIt) {
  std::thread other([&, target = receiver()] {
    performSelectorOnMainThread(target, kTake, box("from another thread"), true);
    loop->stop();
  });
  loop->run();
  other.join();
  EXPECT_THAT(taken, ElementsAre("from another thread"));
}

TEST_F(PerformSelectorTest, AnExceptionOfAnAwaitedMessageIsRaisedInTheCaller) {
  ServingThread serving;
  const id target =
      std::make_shared<Receiver>([](const id&) { throw std::runtime_error("refused"); });
  EXPECT_THROW(performSelectorOnThread(target, kTake, serving.thread(), nullptr, true),
               std::runtime_error);
  performSelectorOnThread(receiver(), kTake, serving.thread(), box("still served"), true);
  EXPECT_THAT(taken, ElementsAre("still served"));
}

TEST_F(PerformSelectorTest, AnExceptionOfAQueuedMessageLeavesTheRunCall) {
  const id target =
      std::make_shared<Receiver>([](const id&) { throw std::runtime_error("refused"); });
  performSelectorOnMainThread(target, kTake, nullptr, false);
  EXPECT_THROW(loop->turn(), std::runtime_error);
}

TEST_F(PerformSelectorTest, AThreadThatFinishesRaisesInTheWaiter) {
  std::promise<Ref<NSThread>> started;
  std::thread leaving([&] {
    pollfd loopReady{NSRunLoop::currentRunLoop()->pollableDescriptor(), POLLIN, 0};
    started.set_value(NSThread::currentThread());
    ::poll(&loopReady, 1, -1);  // the message has been queued, and is left
  });
  const auto thread = started.get_future().get();
  EXPECT_EQ(
      nameOfRaised([&] { performSelectorOnThread(receiver(), kTake, thread, nullptr, true); }),
      NSDestinationInvalidException);
  leaving.join();
  EXPECT_THAT(taken, IsEmpty());
}

TEST_F(PerformSelectorTest, AFinishedThreadRaisesOnlyIfTheCallerWaits) {
  ServingThread serving;
  serving.finish();
  const auto performing = [&](bool wait) {
    return nameOfRaised(
        [&] { performSelectorOnThread(receiver(), kTake, serving.thread(), nullptr, wait); });
  };
  EXPECT_EQ(performing(true), NSDestinationInvalidException);
  EXPECT_EQ(performing(false), "nothing");
  EXPECT_THAT(taken, IsEmpty());
}

/// Notes when it is destroyed whether the future was ready by then, or soon after.
class ReadinessWitness final : public NSObject {
 public:
  ReadinessWitness(std::future<void> future, bool& wasReady)
      : future_(std::move(future)), wasReady_(wasReady) {}
  ~ReadinessWitness() override {
    wasReady_ = future_.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
  }

 private:
  std::future<void> future_;
  bool& wasReady_;
};

TEST_F(PerformSelectorTest, AnAwaitedMessageHasNoScopeBesideThatOfItsCallout) {
  bool hadReturned = false;
  {
    ServingThread serving;
    std::promise<void> returned;
    const id target = std::make_shared<Receiver>([&](const id&) {
      autorelease(std::make_shared<ReadinessWitness>(returned.get_future(), hadReturned));
    });
    performSelectorOnThread(target, kTake, serving.thread(), nullptr, true);
    returned.set_value();
    serving.finish();
  }
  EXPECT_TRUE(hadReturned);
}

TEST_F(PerformSelectorTest, AnAbsentThreadRaises) {
  EXPECT_EQ(
      nameOfRaised([&] { performSelectorOnThread(receiver(), kTake, nullptr, nullptr, true); }),
      NSInvalidArgumentException);
}

TEST_F(PerformSelectorTest, TargetAndArgumentLiveUntilTheMessageWasSent) {
  std::weak_ptr<NSObject> target;
  std::weak_ptr<NSObject> argument;
  {
    const id kept = receiver();
    const id text = box("a");
    performSelectorAfterDelay(kept, kTake, text, 1, kDefault);
    target = kept;
    argument = text;
  }
  EXPECT_FALSE(target.expired() || argument.expired());
  clock->runLoopFor(*loop, std::chrono::seconds(1));
  EXPECT_THAT(taken, ElementsAre("a"));
  EXPECT_TRUE(target.expired() && argument.expired());
}

TEST_F(PerformSelectorTest, ADelayOfNothingStillRunsOnALaterTurn) {
  for (const double delay : {0.0, -1.0}) {
    performSelectorAfterDelay(receiver(), kTake, box("late"), delay, kDefault);
  }
  EXPECT_THAT(taken, IsEmpty());
  loop->turn();
  EXPECT_THAT(taken, ElementsAre("late", "late"));
}

TEST_F(PerformSelectorTest, ADelayedMessageBelongsToTheLoopOfItsCaller) {
  std::thread([&] {
    performSelectorAfterDelay(receiver(), kTake, box("there"), 0, kDefault);
    NSRunLoop::currentRunLoop()->turn();
  }).join();
  EXPECT_THAT(taken, ElementsAre("there"));
  EXPECT_FALSE(loop->turn());
}

TEST_F(PerformSelectorTest, InTheBackgroundEveryMessageHasAThreadOfItsOwn) {
  std::promise<Ref<NSThread>> first;
  std::promise<Ref<NSThread>> second;
  const auto threadTo = [](std::promise<Ref<NSThread>>& found) -> id {
    return std::make_shared<Receiver>(
        [&](const id&) { found.set_value(NSThread::currentThread()); });
  };
  performSelectorInBackground(threadTo(first), kTake, nullptr);
  const auto one = first.get_future().get();
  performSelectorInBackground(threadTo(second), kTake, nullptr);
  const auto other = second.get_future().get();
  EXPECT_NE(one, other);
  EXPECT_NE(one, NSThread::mainThread());
}

TEST_F(PerformSelectorTest, InTheBackgroundAReleaseScopeIsOpen) {
  // Released by the scope of the message, which ends before the thread does.
  std::promise<void> released;
  const auto done = released.get_future();
  struct Announces : NSObject {
    explicit Announces(std::promise<void> p) : announced(std::move(p)) {}
    ~Announces() override { announced.set_value(); }
    std::promise<void> announced;
  };
  const id target = std::make_shared<Receiver>([](const id& argument) { autorelease(argument); });
  performSelectorInBackground(target, kTake, std::make_shared<Announces>(std::move(released)));
  done.wait();
}

}  // namespace
}  // namespace rvf
