// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSThread.h"

#include <gmock/gmock.h>
#include <pthread.h>

#include <array>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "tests/Platform/RunLoop/ServingThread.h"

namespace rvf {
namespace {

std::string systemName() {
  std::array<char, 16> name{};
  EXPECT_EQ(::pthread_getname_np(::pthread_self(), name.data(), name.size()), 0);
  return name.data();
}

TEST(NSThreadTest, TheInitialThreadIsTheMainThread) {
  EXPECT_TRUE(NSThread::isMainThread());
  EXPECT_EQ(NSThread::currentThread(), NSThread::mainThread());
  EXPECT_TRUE(NSThread::mainThread()->isExecuting());
}

TEST(NSThreadTest, AnotherThreadIsNotTheMainThreadAndStaysTheSameObject) {
  std::thread([main = NSThread::mainThread()] {
    EXPECT_FALSE(NSThread::isMainThread());
    EXPECT_NE(NSThread::currentThread(), main);
    EXPECT_EQ(NSThread::currentThread(), NSThread::currentThread());
    EXPECT_TRUE(NSThread::currentThread()->isCurrentThread());
    EXPECT_FALSE(main->isCurrentThread());
  }).join();
}

TEST(NSThreadTest, ADetachedThreadFindsItselfAsTheObjectThatWasReturned) {
  std::promise<Ref<NSThread>> found;
  const auto thread =
      NSThread::detachNewThread([&] { found.set_value(NSThread::currentThread()); });
  EXPECT_EQ(found.get_future().get(), thread);
}

TEST(NSThreadTest, AThreadIsExecutingUntilItHasFinished) {
  Ref<NSThread> thread;
  std::thread([&] {
    thread = NSThread::currentThread();
    EXPECT_TRUE(thread->isExecuting());
    EXPECT_FALSE(thread->isFinished());
  }).join();
  EXPECT_FALSE(thread->isExecuting());
  EXPECT_TRUE(thread->isFinished());
}

TEST(NSThreadTest, ANameIsShownByTheSystemAsFarAsItFits) {
  std::thread([] {
    NSThread::currentThread()->setName("card reader in the corner");
    EXPECT_EQ(NSThread::currentThread()->name(), "card reader in the corner");
    EXPECT_EQ(systemName(), "card reader in ");
    NSThread::currentThread()->setName("12345678901234ü");
    EXPECT_EQ(systemName(), "12345678901234");
  }).join();
}

TEST(NSThreadTest, AThreadCanBeNamedFromOutside) {
  const ServingThread serving;
  serving.thread()->setName("drawer");
  std::promise<std::string> name;
  serving.loop().performBlock([&] { name.set_value(systemName()); });
  EXPECT_EQ(name.get_future().get(), "drawer");
}

TEST(NSThreadTest, AThreadWithoutANameAnswersTheSystemsName) {
  std::thread([] { EXPECT_EQ(NSThread::currentThread()->name(), systemName()); }).join();
}

TEST(NSThreadTest, TheRunLoopOfAThreadCanBePostedToFromAnyThread) {
  const ServingThread serving;
  std::promise<bool> ranThere;
  serving.loop().performBlock([&] { ranThere.set_value(serving.thread()->isCurrentThread()); });
  EXPECT_TRUE(ranThere.get_future().get());
}

TEST(NSThreadTest, BlocksStillQueuedAreDroppedWhenTheThreadFinishes) {
  const auto witness = std::make_shared<int>();
  std::thread([witness] {
    NSRunLoop::currentRunLoop()->performBlock([witness] { FAIL() << "must not run"; });
    NSRunLoop::currentRunLoop()->performAfterDelay(0, {std::string(NSDefaultRunLoopMode)},
                                                   [witness] { FAIL() << "must not run"; });
  }).join();
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(NSThreadTest, TheLoopOfAFinishedThreadDropsWhatIsPosted) {
  Ref<NSThread> thread;
  std::thread([&] { thread = NSThread::currentThread(); }).join();
  const auto witness = std::make_shared<int>();
  thread->runLoop()->performBlock([witness] { FAIL() << "must not run"; });
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(NSThreadTest, ADroppedBlockMayPostAgainFromItsDestructor) {
  struct PostsAgain {
    ~PostsAgain() {
      const auto loop = NSRunLoop::currentRunLoop();
      loop->performBlock([] { FAIL() << "must not run"; });
      loop->performAfterDelay(0, {std::string(NSDefaultRunLoopMode)}, [] {});
    }
  };
  std::thread([] {
    NSRunLoop::currentRunLoop()->performBlock([last = std::make_shared<PostsAgain>()] {});
  }).join();
}

TEST(NSThreadTest, ObjectsHandedOverOutsideEveryScopeLiveUntilTheThreadEnds) {
  const auto witness = std::make_shared<int>();
  std::promise<long> duringThread;
  std::thread([&] {
    NSAutoreleasePool::addObject(witness);
    duringThread.set_value(witness.use_count());
  }).join();
  EXPECT_EQ(duringThread.get_future().get(), 2);
  EXPECT_EQ(witness.use_count(), 1);
}

}  // namespace
}  // namespace rvf
