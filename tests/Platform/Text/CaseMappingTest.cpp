// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/CaseMapping.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

TEST(CaseMapping, RaisesByTheFullMappingsOfUnicode) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {"abc1-z{`", "ABC1-Z{`"},
      {"straße", "STRASSE"},
      {"i", "I"},
      {"ı", "I"},
      {"ﬁn", "FIN"},
      {"\u0390", "\u0399\u0308\u0301"},
      {"éÀ", "ÉÀ"},
      {"\U00010428", "\U00010400"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(uppercaseText(text), expected) << text;
}

TEST(CaseMapping, KeepsBytesThatBelongToNoCharacter) {
  EXPECT_EQ(uppercaseText("a\xFFz\xC3"), "A\xFFZ\xC3");
  EXPECT_EQ(uppercaseText("é\xE2\x82z"), "É\xE2\x82Z");
}

TEST(CaseMapping, LongTextsAreRaisedWhole) {
  std::string text;
  while (text.size() < 10'000'000)
    text += "straße ";
  const std::string raised = uppercaseText(text);
  EXPECT_EQ(raised.size(), text.size() / 8 * 8);
  EXPECT_TRUE(raised.ends_with("STRASSE "));
  EXPECT_EQ(raised.find("\xC3"), std::string::npos);
}

TEST(CaseMapping, RaisingTwiceChangesNothingMore) {
  EXPECT_TRUE(rc::check([] {
    const std::string raised = uppercaseText(*anyBytes());
    RC_ASSERT(uppercaseText(raised) == raised);
  }));
}

}  // namespace
}  // namespace rvf
