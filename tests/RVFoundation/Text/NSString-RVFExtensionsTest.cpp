// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

TEST(NSString_RVFExtensions, EscapesATextForAURLArgument) {
  EXPECT_EQ(RVF_stringByEscapingForURLArgument("a b&c"), "a%20b%26c");
  EXPECT_EQ(RVF_stringByEscapingForURLArgument("\u00FC"), "%C3%BC");
  EXPECT_EQ(RVF_stringByEscapingForURLArgument(""), "");
}

TEST(NSString_RVFExtensions, EscapesAllButLettersDigitsAndFourMarks) {
  std::string escaped;
  for (int c = 0; c < 0x80; ++c) {
    const std::string text(1, static_cast<char>(c));
    if (RVF_stringByEscapingForURLArgument(text) == text) escaped += text;
  }
  EXPECT_EQ(escaped, "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
}

TEST(NSString_RVFExtensions, IllFormedTextHasNoEscapedForm) {
  EXPECT_EQ(RVF_stringByEscapingForURLArgument("a\xFF"), std::nullopt);
  EXPECT_EQ(RVF_stringByEscapingForURLArgument("\xED\xA0\xBD"), std::nullopt);
}

TEST(NSString_RVFExtensions, DecodesEscapesAndLeavesPlusSigns) {
  EXPECT_EQ(RVF_stringByDecodingURLArguments("%41+%c3%bc"), "A+\u00FC");
  EXPECT_EQ(RVF_stringByDecodingURLArguments(""), "");
}

TEST(NSString_RVFExtensions, WhatDoesNotDecodeIsAbsent) {
  for (const char* text : {"%FF", "%C3", "100%", "%zz", "%4"})
    EXPECT_EQ(RVF_stringByDecodingURLArguments(text), std::nullopt) << text;
}

TEST(NSString_RVFExtensions, DecodingGivesBackWhatWasEscaped) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyText();
    RC_ASSERT(RVF_stringByDecodingURLArguments(*RVF_stringByEscapingForURLArgument(text)) == text);
  }));
}

TEST(NSString_RVFExtensions, EscapesAndDecodesTenMegabytes) {
  std::string text;
  std::string escaped;
  while (text.size() < 10'000'000) {
    text += "ab ü%";
    escaped += "ab%20%C3%BC%25";
  }
  EXPECT_TRUE(RVF_stringByEscapingForURLArgument(text) == escaped);
  EXPECT_TRUE(RVF_stringByDecodingURLArguments(escaped) == text);
  EXPECT_EQ(RVF_stringByDecodingURLArguments(escaped + "%FF"), std::nullopt);
}

}  // namespace
}  // namespace rvf
