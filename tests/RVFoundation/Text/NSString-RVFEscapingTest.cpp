// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFEscaping.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>

#include "Platform/Text/Text.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

std::string replaced(std::string_view text, std::string_view what, std::string_view with) {
  return joinText(splitText(text, what), with);
}

std::string repeated(std::string_view text, std::size_t size) {
  std::string result;
  while (result.size() < size)
    result += text;
  return result;
}

TEST(NSString_RVFEscaping, EscapesTheFiveSpecialCharactersOfXML) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {"plain äöü", "plain äöü"},
      {"a < b & c", "a &lt; b &amp; c"},
      {"&amp;", "&amp;amp;"},
      {"<\"it's\">", "&lt;&quot;it&apos;s&quot;&gt;"},
      {"\xFF&\xC3", "\xFF&amp;\xC3"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(stringByEscapingXMLEntities(text), expected) << text;
}

TEST(NSString_RVFEscaping, EntitiesCanBeTakenBack) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes() + *rc::gen::container<std::string>(
                                               rc::gen::element('&', '<', '>', '"', '\'', ';'));
    std::string back = stringByEscapingXMLEntities(text);
    for (const auto& [entity, character] :
         {std::pair{"&lt;", "<"}, std::pair{"&gt;", ">"}, std::pair{"&quot;", "\""},
          std::pair{"&apos;", "'"}, std::pair{"&amp;", "&"}})
      back = replaced(back, entity, character);
    RC_ASSERT(back == text);
  }));
}

TEST(NSString_RVFEscaping, EscapesTheWildcardsOfPredicates) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {"50%_off*", "50\\%\\_off\\*"},
      {"a?b", "a\\?b"},
      {"\\", "\\"},
      {"\\*", "\\\\*"},
      {"ü*", "ü\\*"},
      {"\xFF%", "\xFF\\%"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(RVF_stringByEscapingPredicateWildcards(text), expected) << text;
}

TEST(NSString_RVFEscaping, CleansATextToOneLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {"\ta\n\nb\t", "a b"},
      {"a\r\nb", "a b"},
      {"a\vb\fc\u0085d\u2028e\u2029f", "a b c d e f"},
      {" a  b ", " a  b "},
      {"a \n b", "a   b"},
      {"\n\t\r", ""},
      {"\u00A0\u2027\u202A\u0084", "\u00A0\u2027\u202A\u0084"},
      {"\xE2\x80\n\xC2", "\xE2\x80 \xC2"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(RVF_cleanStringRemovingNewlinesAndTabs(text), expected) << text;
}

TEST(NSString_RVFEscaping, CleaningTwiceChangesNothingMore) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::container<std::string>(
        rc::gen::element('a', ' ', '\t', '\n', '\r', '\xC2', '\x85', '\xE2', '\x80', '\xA8'));
    const std::string clean = RVF_cleanStringRemovingNewlinesAndTabs(text);
    RC_ASSERT(RVF_cleanStringRemovingNewlinesAndTabs(clean) == clean);
    RC_ASSERT(clean.find_first_of("\t\n\r") == std::string::npos);
  }));
}

TEST(NSString_RVFEscaping, TakesTextsOfTenMegabytes) {
  constexpr std::size_t kSize = 10'000'000;
  EXPECT_EQ(stringByEscapingXMLEntities(std::string(kSize, '&')), repeated("&amp;", 5 * kSize));
  EXPECT_EQ(RVF_stringByEscapingPredicateWildcards(std::string(kSize, '*')),
            repeated("\\*", 2 * kSize));
  EXPECT_EQ(RVF_cleanStringRemovingNewlinesAndTabs(std::string(kSize, '\n')), "");
  EXPECT_EQ(RVF_cleanStringRemovingNewlinesAndTabs(repeated("a\n", kSize)),
            repeated("a ", kSize - 2) + "a");
}

}  // namespace
}  // namespace rvf
