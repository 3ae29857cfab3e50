// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSString-RVFPredicateExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "Platform/Text/Text.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using Words = std::vector<std::string>;

TEST(RVFWordComponents, SplitsAtEverySingleBlank) {
  const std::pair<std::string_view, Words> rows[] = {
      {"red shoe", {"red", "shoe"}},
      {"red  shoe", {"red", "", "shoe"}},
      {"red", {"red"}},
      {"", {""}},
      {"   ", {""}},
      {"\t\r\n\u00A0\u2028", {""}},
      {"  red shoe\n", {"red", "shoe"}},
      {"red\tshoe\nsize", {"red", "shoe", "size"}},
      {"a\r\nb", {"a", "", "b"}},
      {"a\u00A0b\u2003c\u2029d\u0085e\u3000f", {"a", "b", "c", "d", "e", "f"}},
      {"a\u200Bb", {"a\u200Bb"}},
      {"don't, stop!", {"don't,", "stop!"}},
      {"größe 漢字", {"größe", "漢字"}},
      {"\xFF \xC3", {"\xFF", "\xC3"}},
  };
  for (const auto& [text, words] : rows)
    EXPECT_EQ(RVF_wordComponents(text), words) << text;
}

TEST(RVFWordComponents, KeepsEveryCharacterThatIsNoBlank) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::oneOf(anyText(), anyBytes());
    std::string kept;
    for (std::string_view rest = text; !rest.empty();) {
      const Utf8Unit unit = firstUtf8Unit(rest);
      if (!isWhiteSpaceOrNewline(unit.codePoint)) kept.append(rest, 0, unit.length);
      rest.remove_prefix(unit.length);
    }
    std::string joined;
    for (const std::string& word : RVF_wordComponents(text))
      joined += word;
    RC_ASSERT(joined == kept);
  }));
}

}  // namespace
}  // namespace rvf
