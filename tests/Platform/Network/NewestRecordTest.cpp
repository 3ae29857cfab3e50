// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NewestRecord.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <string>

namespace rvf {
namespace {

constexpr ServiceLink kFirstLink{1, AF_INET};
constexpr ServiceLink kSecondLink{1, AF_INET6};

class NewestRecordTest : public testing::Test {
 protected:
  std::string newest() const { return records_.newest() ? *records_.newest() : "none"; }

  NewestRecord<std::string> records_;
};

TEST_F(NewestRecordTest, IsNoneAtFirst) {
  EXPECT_EQ(newest(), "none");
}

TEST_F(NewestRecordTest, IsTheFirstThatTheCacheTells) {
  records_.add("new", kFirstLink);
  records_.add("old", kFirstLink);
  EXPECT_EQ(newest(), "new");
}

TEST_F(NewestRecordTest, IsTheLastOneAfterThat) {
  records_.add("new", kFirstLink);
  records_.add("old", kFirstLink);
  records_.cacheExhausted();
  records_.add("newer", kFirstLink);
  EXPECT_EQ(newest(), "newer");
}

TEST_F(NewestRecordTest, IsTheOneThatIsLeftWhenItGoes) {
  records_.cacheExhausted();
  records_.add("old", kFirstLink);
  records_.add("new", kFirstLink);
  records_.remove("new", kFirstLink);
  EXPECT_EQ(newest(), "old");
}

TEST_F(NewestRecordTest, StaysWhenAnOlderOneGoes) {
  records_.add("new", kFirstLink);
  records_.add("old", kFirstLink);
  records_.remove("old", kFirstLink);
  EXPECT_EQ(newest(), "new");
}

TEST_F(NewestRecordTest, StaysUntilItHasGoneFromEveryLink) {
  records_.add("one", kFirstLink);
  records_.add("one", kSecondLink);
  records_.remove("one", kFirstLink);
  EXPECT_EQ(newest(), "one");
  records_.remove("one", kSecondLink);
  EXPECT_EQ(newest(), "none");
}

TEST_F(NewestRecordTest, ARemovalOfSomethingUnknownChangesNothing) {
  records_.add("one", kFirstLink);
  records_.remove("one", kSecondLink);
  EXPECT_EQ(newest(), "one");
}

}  // namespace
}  // namespace rvf
