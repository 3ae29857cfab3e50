// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/NSObject-RVFExtensions.h"

#include <gmock/gmock.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSBlock.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

const RunLoopModes kDefault{std::string(NSDefaultRunLoopMode)};
const SEL kPerformer("_RVF_BLOCKPERFORMER_:");

/// Counts the blocks that travel through it.
class Overriding final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Overriding>("BlockPerformerOverriding", NSObject::classObject())
            .method<&Overriding::perform>("_RVF_BLOCKPERFORMER_:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  void perform(const id& block) {
    ++performed;
    std::static_pointer_cast<NSBlock>(block)->invoke();
  }
  int performed = 0;
};

class NSObjectExtensionsTest : public testing::Test {
 protected:
  void SetUp() override { loop->setClock(clock); }
  void TearDown() override { loop->setClock(nullptr); }

  std::function<void()> note(std::string text) {
    return [this, text] { ran.push_back(text); };
  }

  const Ref<NSRunLoop> loop = NSRunLoop::mainRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock = std::make_shared<ManualRunLoopClock>();
  const id receiver = std::make_shared<NSObject>();
  std::vector<std::string> ran;
};

TEST_F(NSObjectExtensionsTest, OnTheMainThreadABlockRunsAfterTheCallAlsoFromThere) {
  RVF_performBlockOnMainThread(receiver, note("a"));
  EXPECT_THAT(ran, IsEmpty());
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("a"));
}

TEST_F(NSObjectExtensionsTest, BlocksOfOtherThreadsReachTheMainThreadInOrder) {
  std::thread([&] {
    RVF_performBlockOnMainThread(receiver, note("a"));
    RVF_performBlockOnMainThread(receiver, note("b"));
    RVF_performBlockOnMainThread(
        receiver, [&] { ran.push_back(NSThread::isMainThread() ? "main" : "other"); });
  }).join();
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("a", "b", "main"));
}

TEST_F(NSObjectExtensionsTest, OnTheMainThreadABlockNeedsACommonMode) {
  RVF_performBlockOnMainThread(receiver, note("a"));
  EXPECT_FALSE(loop->turn("private mode of the extension's test"));
  EXPECT_TRUE(loop->turn());
}

TEST_F(NSObjectExtensionsTest, InTheBackgroundABlockRunsOnAThreadOfItsOwn) {
  std::promise<Ref<NSThread>> found;
  RVF_performBlockInBackground(receiver, [&] { found.set_value(NSThread::currentThread()); });
  EXPECT_NE(found.get_future().get(), NSThread::mainThread());
}

TEST_F(NSObjectExtensionsTest, InTheBackgroundTheReceiverLivesAndAScopeEndsWithTheBlock) {
  auto performer = std::make_shared<Overriding>();
  const std::weak_ptr<Overriding> isAlive = performer;
  std::promise<void> let;
  const auto handedOver = std::make_shared<int>();
  RVF_performBlockInBackground(performer, [&let, held = handedOver] {
    let.get_future().wait();
    NSAutoreleasePool::addObject(held);
  });
  performer = nullptr;
  EXPECT_FALSE(isAlive.expired());
  EXPECT_EQ(handedOver.use_count(), 2);
  let.set_value();
  while (handedOver.use_count() > 1 || !isAlive.expired())
    std::this_thread::yield();
}

TEST_F(NSObjectExtensionsTest, AfterADelayABlockRunsInItsModesAndNotEarlier) {
  RVF_performOnMainThreadAfterDelay(receiver, 2, kDefault, note("default"));
  RVF_performOnMainThreadAfterDelay(receiver, 1, {"panel"}, note("panel"));
  clock->runLoopFor(*loop, seconds(2) - std::chrono::nanoseconds(1));
  EXPECT_THAT(ran, IsEmpty());
  clock->runLoopFor(*loop, std::chrono::nanoseconds(1));
  EXPECT_THAT(ran, ElementsAre("default"));
  loop->turn("panel");
  EXPECT_THAT(ran, ElementsAre("default", "panel"));
}

TEST_F(NSObjectExtensionsTest, ADelayOfNothingRunsAfterTheCall) {
  RVF_performOnMainThreadAfterDelay(receiver, 0, kDefault, note("zero"));
  RVF_performOnMainThreadAfterDelay(receiver, -1, kDefault, note("negative"));
  EXPECT_THAT(ran, IsEmpty());
  clock->runLoopFor(*loop, seconds(0));
  EXPECT_THAT(ran, testing::UnorderedElementsAre("zero", "negative"));
}

TEST_F(NSObjectExtensionsTest, ADelayStaysOnTheThreadThatAsked) {
  std::thread([&] {
    RVF_performOnMainThreadAfterDelay(receiver, 0, kDefault, [&] {
      ran.push_back(NSThread::isMainThread() ? "main" : "asking thread");
    });
    NSRunLoop::currentRunLoop()->turn();
  }).join();
  EXPECT_THAT(ran, ElementsAre("asking thread"));
}

TEST_F(NSObjectExtensionsTest, TheReceiverLivesUntilTheBlockHasRun) {
  auto owned = std::make_shared<NSObject>();
  const std::weak_ptr<NSObject> watched = owned;
  RVF_performBlockOnMainThread(owned, note("a"));
  owned.reset();
  EXPECT_FALSE(watched.expired());
  loop->turn();
  EXPECT_TRUE(watched.expired());
}

TEST_F(NSObjectExtensionsTest, AnAbsentReceiverRunsNothing) {
  RVF_performBlockInBackground(nullptr, note("background"));
  RVF_performBlockOnMainThread(nullptr, note("main"));
  RVF_performOnMainThreadAfterDelay(nullptr, 0, kDefault, note("delayed"));
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, IsEmpty());
}

TEST_F(NSObjectExtensionsTest, ASubclassMayOverrideHowItsBlocksAreCalled) {
  const auto overriding = std::make_shared<Overriding>();
  RVF_performBlockOnMainThread(overriding, note("main"));
  RVF_performOnMainThreadAfterDelay(overriding, 0, kDefault, note("delayed"));
  clock->runLoopFor(*loop, seconds(0));
  EXPECT_THAT(ran, ElementsAre("main", "delayed"));
  EXPECT_EQ(overriding->performed, 2);
}

TEST_F(NSObjectExtensionsTest, TheTrampolineCallsTheBlockInAScopeOfItsOwn) {
  RVF_performBlockOnMainThread(receiver, [] {});
  loop->turn();
  const NSAutoreleasePool pool;
  const auto witness = std::make_shared<int>();
  send(receiver, kPerformer, id(std::make_shared<NSBlock>([&] {
         NSAutoreleasePool::addObject(witness);
         EXPECT_EQ(witness.use_count(), 2);
       })));
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSObjectExtensionsTest, TheTrampolineRefusesWhatIsNoBlock) {
  EXPECT_TRUE(objc_getClass("RVFBlockQueue"));
  EXPECT_TRUE(receiver->respondsToSelector(kPerformer));
  EXPECT_THROW(send(receiver, kPerformer, receiver), NSException);
}

}  // namespace
}  // namespace rvf
