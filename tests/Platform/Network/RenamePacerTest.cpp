// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/RenamePacer.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

using namespace std::chrono_literals;

const RenamePacer::TimePoint kStart{1h};

/// What the last of so many collisions at one moment gets.
std::optional<double> delayAfter(RenamePacer& pacer, int collisions) {
  std::optional<double> delay;
  for (int i = 0; i < collisions; ++i)
    delay = pacer.delayAfterCollision(kStart);
  return delay;
}

TEST(RenamePacer, AnswersTheFirstCollisionsAtOnce) {
  RenamePacer pacer;
  EXPECT_EQ(delayAfter(pacer, 10), 0);
}

TEST(RenamePacer, SpacesTheFollowingOnes) {
  RenamePacer pacer;
  EXPECT_EQ(delayAfter(pacer, 11), 5);
}

TEST(RenamePacer, GivesUpAtLast) {
  RenamePacer pacer;
  EXPECT_EQ(delayAfter(pacer, 50), 5);
  EXPECT_EQ(delayAfter(pacer, 1), std::nullopt);
}

TEST(RenamePacer, StartsAnewAfterAQuietMinute) {
  RenamePacer pacer;
  delayAfter(pacer, 20);
  EXPECT_EQ(pacer.delayAfterCollision(kStart + 59s), 5);
  EXPECT_EQ(pacer.delayAfterCollision(kStart + 119s), 0);
}

}  // namespace
}  // namespace rvf
