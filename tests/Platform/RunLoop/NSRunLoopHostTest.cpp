// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/Platform/RunLoop/RunLoopFixture.h"

namespace rvf {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::Optional;

/// A host that drives the loop of the test's thread: it polls and takes turns.
class NSRunLoopHostTest : public RunLoopFixture {
 protected:
  bool isReadable(int waitMilliseconds = 0) {
    pollfd request{loop->pollableDescriptor(), POLLIN, 0};
    return ::poll(&request, 1, waitMilliseconds) == 1;
  }
  void settle() {
    while (loop->turn()) {
    }
  }
  static constexpr int kLong = 60'000;
};

TEST_F(NSRunLoopHostTest, WithNothingToDoTheHostMayWaitForEver) {
  settle();
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  EXPECT_FALSE(isReadable());
}

TEST_F(NSRunLoopHostTest, TheTimeOutIsRoundedUpToWholeMilliseconds) {
  const auto timer = loop->scheduleTimer(0.0101, kDefault, note("timer"));
  EXPECT_THAT(loop->nextTimeout(), Optional(milliseconds(11)));
  clock->advance(milliseconds(10));
  EXPECT_THAT(loop->nextTimeout(), Optional(milliseconds(1)));
  clock->advance(microseconds(100));
  EXPECT_THAT(loop->nextTimeout(), Optional(milliseconds(0)));
  EXPECT_TRUE(loop->turn());
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
}

TEST_F(NSRunLoopHostTest, TheTimeOutIsThatOfTheModeToRun) {
  const auto timer = loop->scheduleTimer(1, kPanel, note("timer"));
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  EXPECT_THAT(loop->nextTimeout("panel"), Optional(milliseconds(1000)));
}

TEST_F(NSRunLoopHostTest, APostFromAnotherThreadWakesAHostThatPolls) {
  settle();
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  std::thread poster([&] { loop->performBlock(note("posted")); });
  EXPECT_TRUE(isReadable(kLong));
  loop->turn();
  poster.join();
  EXPECT_THAT(ran, ElementsAre("posted"));
  EXPECT_FALSE(isReadable());
}

TEST_F(NSRunLoopHostTest, WhatWasPostedBeforeTheWaitNeedsNone) {
  loop->performBlock(note("posted"));
  EXPECT_THAT(loop->nextTimeout(), Optional(milliseconds(0)));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("posted"));
}

TEST_F(NSRunLoopHostTest, APostDuringATurnWakesTheHostAfterIt) {
  loop->performBlock([&] { loop->performBlock(note("posted")); });
  loop->turn();
  EXPECT_TRUE(isReadable());
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("posted"));
}

TEST_F(NSRunLoopHostTest, WhatAnExceptionLeftShowsInTheTimeOut) {
  loop->performBlock([] { throw std::runtime_error("callout"); });
  loop->performBlock(note("left"));
  EXPECT_THROW(loop->turn(), std::runtime_error);
  EXPECT_THAT(loop->nextTimeout(), Optional(milliseconds(0)));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("left"));
}

TEST_F(NSRunLoopHostTest, AWatchAddedOutsideOfATurnWakesTheHost) {
  settle();
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  auto watching = loop->watchDescriptor(ends[0], {.readable = true}, kDefault,
                                        [&](DescriptorEvents) { ran.push_back("readable"); });
  EXPECT_TRUE(isReadable()) << "the host must ask again what to wait for";
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  EXPECT_FALSE(isReadable());
  EXPECT_EQ(::write(ends[1], "x", 1), 1);
  EXPECT_TRUE(isReadable(kLong));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable"));
  watching.reset();
  for (const int end : ends)
    ::close(end);
}

TEST_F(NSRunLoopHostTest, ATimerAddedOutsideOfATurnWakesTheHost) {
  settle();
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  const auto timer = loop->scheduleTimer(1, kDefault, note("timer"));
  EXPECT_TRUE(isReadable());
  EXPECT_THAT(loop->nextTimeout(), Optional(milliseconds(1000)));
}

TEST_F(NSRunLoopHostTest, ATurnOfAnIdleLoopCallsNothingAndDoesNotWait) {
  settle();
  const auto timer = loop->scheduleTimer(10, kDefault, note("timer"));
  EXPECT_FALSE(loop->turn());
}

}  // namespace
}  // namespace rvf
