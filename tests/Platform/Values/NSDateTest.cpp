// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSDate.h"

#include <gtest/gtest.h>

#include <chrono>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

class NSDateClockTest : public testing::Test {
 protected:
  ~NSDateClockTest() override { NSDate::setClock(nullptr); }
};

TEST(NSDate, CountsFromTheBeginningOf2001) {
  const auto date = NSDate::dateWithTimeIntervalSince1970(978307200);
  EXPECT_EQ(date->timeIntervalSinceReferenceDate(), 0);
  EXPECT_EQ(NSDate::dateWithTimeIntervalSinceReferenceDate(-1.5)->timeIntervalSince1970(),
            978307198.5);
}

TEST(NSDate, IsEqualByItsMoment) {
  const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(7.5);
  EXPECT_TRUE(objectsAreEqual(date, std::make_shared<NSDate>(7.5)));
  EXPECT_EQ(date->hash(), std::make_shared<NSDate>(7.5)->hash());
  EXPECT_FALSE(objectsAreEqual(date, std::make_shared<NSDate>(8)));
  EXPECT_FALSE(objectsAreEqual(date, std::make_shared<NSObject>()));
}

TEST(NSDate, IsItsOwnCopy) {
  const auto date = NSDate::date();
  EXPECT_EQ(copyOfObject(date), date);
}

TEST(NSDate, AnswersMessages) {
  const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(7.5);
  EXPECT_EQ(send<double>(date, SEL("timeIntervalSinceReferenceDate")), 7.5);
}

TEST_F(NSDateClockTest, NowIsWhatTheClockSays) {
  double now = 5;
  NSDate::setClock([&now] { return now; });
  EXPECT_EQ(NSDate::date()->timeIntervalSinceReferenceDate(), 5);
  now = 6;
  EXPECT_EQ(NSDate::date()->timeIntervalSinceReferenceDate(), 6);
}

TEST_F(NSDateClockTest, TheSystemsClockComesBack) {
  NSDate::setClock([] { return -1e9; });
  NSDate::setClock(nullptr);
  const auto seconds = [] {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
  };
  const double before = seconds();
  const double now = NSDate::date()->timeIntervalSince1970();
  EXPECT_NEAR(now, before, seconds() - before + 1);
}

TEST_F(NSDateClockTest, AClockMayReplaceItself) {
  NSDate::setClock([] {
    NSDate::setClock([] { return 2.0; });
    return 1.0;
  });
  EXPECT_EQ(NSDate::date()->timeIntervalSinceReferenceDate(), 1);
  EXPECT_EQ(NSDate::date()->timeIntervalSinceReferenceDate(), 2);
}

}  // namespace
}  // namespace rvf
