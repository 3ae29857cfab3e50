// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Selector.h"

#include <gtest/gtest.h>

#include <thread>
#include <unordered_set>

namespace rvf {
namespace {

using namespace std::string_view_literals;

TEST(Selector, EqualTextsAreOneSelector) {
  EXPECT_EQ(SEL("setCount:"), SEL(std::string("setCount:")));
  EXPECT_EQ(sel_registerName("setCount:").name().data(), SEL("setCount:").name().data());
}

TEST(Selector, DifferentTextsAreDifferentSelectors) {
  EXPECT_NE(SEL("count"), SEL("Count"));
  EXPECT_NE(SEL("count"), SEL("count:"));
}

TEST(Selector, ItsTextEndsAtTheFirstZeroByte) {
  EXPECT_EQ(SEL("count\0:more"sv), SEL("count"));
  EXPECT_EQ(sel_getName(SEL("count\0:more"sv)), "count");
}

TEST(Selector, TheNullSelectorIsFalseEmptyAndUnlikeTheEmptyName) {
  EXPECT_FALSE(SEL());
  EXPECT_EQ(SEL().name(), "");
  EXPECT_EQ(NSStringFromSelector(SEL()), "");
  EXPECT_TRUE(SEL(""));
  EXPECT_NE(SEL(), SEL(""));
}

TEST(Selector, AnAbsentTextGivesTheNullSelector) {
  EXPECT_EQ(NSSelectorFromString(std::nullopt), SEL());
  EXPECT_EQ(NSSelectorFromString("count"), SEL("count"));
}

TEST(Selector, CountsTheArgumentsThatItsNameAsksFor) {
  EXPECT_EQ(SEL("count").argumentCount(), 0U);
  EXPECT_EQ(SEL("setCount:").argumentCount(), 1U);
  EXPECT_EQ(SEL("netServiceBrowser:didFindService:moreComing:").argumentCount(), 3U);
}

TEST(Selector, HashesByIdentity) {
  const std::unordered_set<SEL> selectors = {SEL("a"), SEL("b"), SEL("a")};
  EXPECT_EQ(selectors.size(), 2U);
}

TEST(Selector, ThreadsThatMakeTheSameOneAtOnceGetTheSame) {
  SEL first;
  SEL second;
  {
    std::jthread a([&first] { first = SEL("madeByTwoThreads:"); });
    std::jthread b([&second] { second = SEL("madeByTwoThreads:"); });
  }
  EXPECT_EQ(first, second);
}

}  // namespace
}  // namespace rvf
