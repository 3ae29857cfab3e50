// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/PercentEncoding.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "Platform/Text/Text.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using namespace std::string_literals;

constexpr std::size_t kMegabyte = 1 << 20;

TEST(PercentEncoding, EscapesAllButUnreservedCharacters) {
  struct Row {
    std::string text;
    std::string escaped;
  };
  const Row rows[] = {
      {"a b&c", "a%20b%26c"},
      {"ü", "%C3%BC"},
      {"~-._", "~-._"},
      {"", ""},
      {"azAZ09", "azAZ09"},
      {"!*'();:@&=+$,/?%#[] ", "%21%2A%27%28%29%3B%3A%40%26%3D%2B%24%2C%2F%3F%25%23%5B%5D%20"},
      {"\"<>\\^`{|}", "%22%3C%3E%5C%5E%60%7B%7C%7D"},
      {"\0\x01\x7F\n"s, "%00%01%7F%0A"},
      {"😀", "%F0%9F%98%80"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(addPercentEscapes(row.text), row.escaped) << row.text;
}

TEST(PercentEncoding, IllFormedTextCannotBeEscaped) {
  for (const std::string& text : {"\xED\xA0\xBD"s, "\xFF"s, "a\xC3"s, "\x80"s})
    EXPECT_EQ(addPercentEscapes(text), std::nullopt) << testing::PrintToString(text);
}

TEST(PercentEncoding, DecodesEveryEscape) {
  struct Row {
    std::string text;
    std::string decoded;
  };
  const Row rows[] = {{"%41+%c3%bc", "A+ü"}, {"", ""},         {"abc", "abc"},
                      {"%00", "\0"s},        {"%2541", "%41"}, {"%25", "%"},
                      {"a%20b", "a b"},      {"\xC3%BC", "ü"}, {"%eF%Bc%A1", "\uFF21"}};
  for (const Row& row : rows)
    EXPECT_EQ(removePercentEscapes(row.text), row.decoded) << row.text;
}

TEST(PercentEncoding, WhatDoesNotDecodeIsAbsent) {
  for (const std::string& text : {"%FF"s, "%C3"s, "100%"s, "%zz"s, "%4"s, "%"s, "%%41"s, "%4\0"s,
                                  "%ED%A0%80"s, "%C0%80"s, "\xFF"s, "% 41"s, "%+1"s})
    EXPECT_EQ(removePercentEscapes(text), std::nullopt) << testing::PrintToString(text);
}

TEST(PercentEncoding, KnowsWholeEscapes) {
  for (const char* text : {"", "abc", "%41", "%FF%00", "a%20"})
    EXPECT_TRUE(hasOnlyWholePercentEscapes(text)) << text;
  for (const char* text : {"%", "a%", "%4", "%4g", "%41%", "%%41"})
    EXPECT_FALSE(hasOnlyWholePercentEscapes(text)) << text;
}

TEST(PercentEncoding, DecodingGivesBackWhatWasEscaped) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyText();
    const auto escaped = addPercentEscapes(text);
    RC_ASSERT(escaped.has_value());
    RC_ASSERT(removePercentEscapes(*escaped) == text);
  }));
}

TEST(PercentEncoding, AnyBytesAreAbsentExactlyWhenIllFormed) {
  EXPECT_TRUE(rc::check([] {
    const std::string bytes = *anyBytes();
    RC_ASSERT(addPercentEscapes(bytes).has_value() == isValidUtf8(bytes));
    const auto decoded = removePercentEscapes(bytes);
    if (decoded) RC_ASSERT(isValidUtf8(*decoded));
  }));
}

TEST(PercentEncoding, HandlesAMegabyte) {
  const auto escaped = addPercentEscapes(std::string(kMegabyte, '%'));
  ASSERT_TRUE(escaped);
  EXPECT_EQ(escaped->size(), 3 * kMegabyte);
  EXPECT_EQ(removePercentEscapes(*escaped), std::string(kMegabyte, '%'));
}

}  // namespace
}  // namespace rvf
