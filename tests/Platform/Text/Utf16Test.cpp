// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Utf16.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using namespace std::string_literals;

TEST(Utf16, TextsHaveTheirUnits) {
  const struct {
    std::string text;
    std::string units;
  } rows[] = {
      {"", ""},
      {"a\0b"s, "\0a\0\0\0b"s},
      {"é", "\0\xE9"s},
      {"€", "\x20\xAC"},
      {"\xEF\xBF\xBF", "\xFF\xFF"},
      {"\xF0\x90\x80\x80", "\xD8\0\xDC\0"s},
      {"😀", "\xD8\x3D\xDE\0"s},
      {"\xF4\x8F\xBF\xBF", "\xDB\xFF\xDF\xFF"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(utf16BigEndianOfText(row.text), row.units) << row.text;
    EXPECT_EQ(textOfUtf16BigEndian(row.units), row.text) << row.text;
  }
}

TEST(Utf16, HalvedCharactersAreReplaced) {
  const struct {
    std::string units;
    std::string text;
  } rows[] = {
      {"\xD8\x3D", "\xEF\xBF\xBD"},
      {"\xDE\0"s, "\xEF\xBF\xBD"},
      {"\xD8\x3D\0a"s,
       "\xEF\xBF\xBD"
       "a"},
      {"\xDE\0\xD8\x3D"s, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xD8\x3D\xD8\x3D\xDE\0"s, "\xEF\xBF\xBD😀"},
      {"\0a\0"s, "a"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(textOfUtf16BigEndian(row.units), row.text) << testing::PrintToString(row.units);
}

TEST(Utf16, AnyTextSurvives) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyText();
    RC_ASSERT(textOfUtf16BigEndian(utf16BigEndianOfText(text)) == text);
  }));
}

}  // namespace
}  // namespace rvf
