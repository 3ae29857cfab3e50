// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSData.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

using namespace std::string_view_literals;

TEST(NSData, KeepsEveryByte) {
  const auto data = NSData::dataWithBytes("a\0\xFF"sv);
  EXPECT_EQ(data->length(), 3U);
  EXPECT_EQ(data->characters(), "a\0\xFF"sv);
  EXPECT_EQ(data->bytes()[2], std::byte{0xFF});
}

TEST(NSData, MayBeEmpty) {
  EXPECT_TRUE(NSData::data()->empty());
  EXPECT_EQ(NSData::data()->characters(), "");
}

TEST(NSData, IsEqualByContent) {
  const auto data = NSData::dataWithBytes("ab");
  EXPECT_TRUE(data->isEqual(NSData::dataWithBytes("ab").get()));
  EXPECT_EQ(data->hash(), NSData::dataWithBytes("ab")->hash());
  EXPECT_FALSE(data->isEqual(NSData::dataWithBytes("ab\0"sv).get()));
  EXPECT_FALSE(data->isEqual(nullptr));
}

TEST(NSData, DescribesItselfInGroupsOfFourBytes) {
  EXPECT_EQ(NSData::data()->description(), "<>");
  EXPECT_EQ(NSData::dataWithBytes("hello")->description(), "<68656c6c 6f>");
}

}  // namespace
}  // namespace rvf
