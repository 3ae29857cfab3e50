// SPDX-License-Identifier: Apache-2.0
//
// One file under several user defaults objects, as under several processes and threads.

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Values/NSNumber.h"
#include "tests/Platform/Storage/DefaultsInAFile.h"

namespace rvf {
namespace {

using NSUserDefaultsSharingTest = DefaultsInAFile;

TEST_F(NSUserDefaultsSharingTest, TwoThatShareAFileLoseNothingOfEachOther) {
  const auto other = open();
  defaults_->setInteger(1, "mine");
  other->setInteger(2, "theirs");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_TRUE(other->synchronize());
  EXPECT_FALSE(defaults_->objectForKey("theirs")) << "read again only when synchronized";
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(defaults_->integerForKey("theirs"), 2);
  EXPECT_EQ(other->integerForKey("mine"), 1);
}

TEST_F(NSUserDefaultsSharingTest, OnlyKeysChangedHereReplaceTheFiles) {
  defaults_->setInteger(1, "a");
  defaults_->setInteger(1, "b");
  defaults_->setInteger(1, "c");
  defaults_->synchronize();
  const auto other = open();
  other->setInteger(2, "a");
  other->setInteger(2, "b");
  other->removeObjectForKey("c");
  other->synchronize();
  defaults_->setInteger(3, "b");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(defaults_->integerForKey("a"), 2);
  EXPECT_EQ(defaults_->integerForKey("b"), 3);
  EXPECT_FALSE(defaults_->objectForKey("c"));
}

TEST_F(NSUserDefaultsSharingTest, ExclusiveWorkSeesWhatOthersWrote) {
  const auto other = open();
  EXPECT_EQ(other->integerForKey("n"), 0);
  for (int i = 0; i < 3; ++i) {
    for (const auto& defaults : {defaults_, other}) {
      EXPECT_TRUE(defaults->performExclusively(
          [&] { defaults->setInteger(defaults->integerForKey("n") + 1, "n"); }));
    }
  }
  EXPECT_EQ(other->integerForKey("n"), 6);
}

TEST_F(NSUserDefaultsSharingTest, ExclusiveWorkNestsAndItsExceptionsPass) {
  EXPECT_TRUE(defaults_->performExclusively([&] {
    EXPECT_TRUE(defaults_->performExclusively([&] { defaults_->setInteger(1, "a"); }));
    EXPECT_EQ(bytesOf(path_).substr(0, 6), "bplist");
  }));
  EXPECT_THROW(defaults_->performExclusively([&] {
    defaults_->setInteger(2, "a");
    throw std::runtime_error("no");
  }),
               std::runtime_error);
  EXPECT_EQ(open()->integerForKey("a"), 1);
  EXPECT_TRUE(open()->performExclusively([] {})) << "the lock is free again";
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("a"), 2);
}

TEST_F(NSUserDefaultsSharingTest, ServesManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 20;
  const auto other = open();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      const auto& defaults = thread % 2 == 0 ? defaults_ : other;
      for (int round = 1; round <= kRounds; ++round) {
        defaults->setInteger(round, "own " + std::to_string(thread));
        defaults->registerDefaults(NSDictionary::dictionaryWithEntries({{"r", box(round)}}));
        EXPECT_TRUE(defaults->performExclusively(
            [&] { defaults->setInteger(defaults->integerForKey("n") + 1, "n"); }));
        EXPECT_TRUE(defaults->boolForKey("r"));
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  const auto all = open();
  EXPECT_EQ(all->integerForKey("n"), kThreads * kRounds);
  for (int thread = 0; thread < kThreads; ++thread)
    EXPECT_EQ(all->integerForKey("own " + std::to_string(thread)), kRounds);
}

}  // namespace
}  // namespace rvf
