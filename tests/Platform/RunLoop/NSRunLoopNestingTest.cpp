// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "RunLoopFixture.h"

namespace rvf {
namespace {

/// Blocks that run the loop while others are queued behind them.
class NSRunLoopNestingTest : public RunLoopFixture {
 protected:
  void postNotes(int count) {
    for (int i = 0; i < count; ++i)
      loop->performBlock(note(std::to_string(i)));
  }
  static std::vector<std::string> numbers(int count) {
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i)
      texts.push_back(std::to_string(i));
    return texts;
  }
};

TEST_F(NSRunLoopNestingTest, AnInnerRunTakesOverWhatIsLeftInOrder) {
  loop->performBlock([this] {
    while (loop->turn()) {
    }
    ran.emplace_back("outer");
  });
  postNotes(2);
  EXPECT_TRUE(loop->turn());
  EXPECT_EQ(ran, (std::vector<std::string>{"0", "1", "outer"}));
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopNestingTest, WhatARunningBlockHoldsStaysWhereItIsWhileInnerRunsTakeOverThousands) {
  std::array<char, 8> held{"held"};
  const auto check = [this, held, address = static_cast<const void*>(nullptr)]() mutable {
    address = &held;
    for (int round = 0; round < 3; ++round) {
      postNotes(2'000);
      loop->turn();
    }
    EXPECT_EQ(address, &held);
    EXPECT_STREQ(held.data(), "held");
  };
  loop->performBlock(check);
  loop->turn();
  EXPECT_EQ(ran.size(), 6'000U);
}

TEST_F(NSRunLoopNestingTest, ManyLevelsRunEachBlockOnceAndInOrder) {
  constexpr int kLevels = 50;
  for (int i = 0; i < kLevels; ++i) {
    loop->performBlock([this, i] {
      ran.push_back(std::to_string(i));
      loop->performBlock(note("posted by " + std::to_string(i)));
      loop->turn();
    });
  }
  while (loop->turn()) {
  }
  std::vector<std::string> expected = numbers(kLevels);
  for (int i = 0; i < kLevels; ++i)
    expected.push_back("posted by " + std::to_string(i));
  EXPECT_EQ(ran, expected);
}

TEST_F(NSRunLoopNestingTest, ABlockThatThrowsIsDestroyedAtOnce) {
  const auto witness = std::make_shared<int>();
  loop->performBlock([witness] { throw std::runtime_error("refused"); });
  loop->performBlock(note("later"));
  EXPECT_THROW(loop->turn(), std::runtime_error);
  EXPECT_EQ(witness.use_count(), 1);
  EXPECT_TRUE(loop->turn());
  EXPECT_EQ(ran, std::vector<std::string>{"later"});
}

TEST_F(NSRunLoopNestingTest, InAnInnerRunOfAnotherModeTheOthersKeepTheirPlace) {
  loop->performBlock([this] { loop->turn("panel"); });
  postNotes(2);
  loop->performInModes(kPanel, note("panel"));
  loop->turn();
  EXPECT_EQ(ran, std::vector<std::string>{"panel"});
  loop->performBlock(note("2"));
  loop->turn();
  EXPECT_EQ(ran, (std::vector<std::string>{"panel", "0", "1", "2"}));
}

}  // namespace
}  // namespace rvf
