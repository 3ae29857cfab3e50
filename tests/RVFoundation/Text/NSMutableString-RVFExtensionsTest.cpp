// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSMutableString-RVFExtensions.h"

#include <gtest/gtest.h>

#include "RVFoundation/Text/RVFStringConstants.h"

namespace rvf {
namespace {

TEST(NSMutableString_RVFExtensions, EndsATextThatIsNotEmptyInOneLineFeed) {
  const std::pair<const char*, const char*> rows[] = {{"", ""},           {"abc", "abc\n"},
                                                      {"abc\n", "abc\n"}, {"a\n\n", "a\n\n"},
                                                      {"\n", "\n"},       {"abc\r", "abc\r\n"}};
  for (const auto& [before, after] : rows) {
    std::string text = before;
    appendNewLineIfNeeded(text);
    EXPECT_EQ(text, after) << before;
    appendNewLineIfNeeded(text);
    EXPECT_EQ(text, after) << before;
  }
}

TEST(NSMutableString_RVFExtensions, IllFormedTextGetsALineFeedToo) {
  std::string text = "a\xFF\xC3";
  appendNewLineIfNeeded(text);
  EXPECT_EQ(text, "a\xFF\xC3\n");
}

TEST(NSMutableString_RVFExtensions, EndsTenMegabytesInOneLineFeed) {
  const std::string before(10'000'000, 'a');
  std::string text = before;
  appendNewLineIfNeeded(text);
  appendNewLineIfNeeded(text);
  EXPECT_EQ(text, before + '\n');
}

TEST(RVFStringConstants, AreOneCharacterEach) {
  EXPECT_EQ(RVFStringNewParagraph, "\xE2\x80\xA9");
  EXPECT_EQ(RVFStringNewLine, "\xE2\x80\xA8");
  EXPECT_EQ(RVFStringEllipsis, "…");
}

}  // namespace
}  // namespace rvf
