// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

id read(std::string_view text, Ref<NSError>* error = nullptr) {
  NSPropertyListFormat format = {};
  const id root = NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text),
                                                                    &format, error);
  EXPECT_TRUE(!root || format == NSPropertyListFormat::olderText) << text;
  return root;
}

id texts(std::initializer_list<const char*> elements) {
  std::vector<id> objects;
  for (const char* element : elements)
    objects.push_back(box(element));
  return NSArray::arrayWithObjects(std::move(objects));
}

TEST(TextPropertyList, ReadsEveryKindOfValue) {
  const auto bytes = [](std::string_view data) { return NSData::dataWithBytes(data); };
  const struct {
    std::string_view text;
    id value;
  } rows[] = {
      {"word", box("word")},
      {" \t\r\nword\n", box("word")},
      {"\xEF\xBB\xBFword", box("word")},
      {"a_$/:.-9Z", box("a_$/:.-9Z")},
      {"12", box("12")},
      {"\"two words\"", box("two words")},
      {"'two \"words\"'", box("two \"words\"")},
      {"\"\"", box("")},
      {"\"é €😀\"", box("é €😀")},
      {"<>", bytes("")},
      {"<0fbD 7\n7>", nullptr},
      {"<0fbD 77>", bytes("\x0F\xBD\x77")},
      {"()", texts({})},
      {"(a)", texts({"a"})},
      {"(a, \"b c\" , d,)", texts({"a", "b c", "d"})},
      {"{}", NSDictionary::dictionary()},
      {"{ a = b; \"c d\" = (e); }",
       NSDictionary::dictionaryWithEntries({{"a", box("b")}, {"c d", texts({"e"})}})},
      {"{a=1;a=2;}", NSDictionary::dictionaryWithEntries({{"a", box("2")}})},
      {"// one\n/* two */ ( a /* three */ , // four\r b ) // five", texts({"a", "b"})},
  };
  for (const auto& row : rows)
    EXPECT_TRUE(objectsAreEqual(read(row.text), row.value)) << row.text;
}

TEST(TextPropertyList, ReadsEscapes) {
  const struct {
    std::string_view text;
    std::string value;
  } rows[] = {
      {R"("\a\b\f\n\r\t\v")", "\a\b\f\n\r\t\v"},
      {R"("\"\\\'\q")", "\"\\'q"},
      {"\"a\\\nb\"", "a\nb"},
      {R"("\101\60x\0609")", "A0x09"},
      {R"("\0")", std::string(1, '\0')},
      {R"("\351")", "é"},
      {R"("\U00e9\U20AC")", "é€"},
      {R"("\UD83D\UDE00")", "😀"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(unboxText(read(row.text)), row.value) << row.text;
}

TEST(TextPropertyList, RefusesEverythingElse) {
  const std::string_view rows[] = {
      "",
      " \n",
      "a b",
      "a = b;",
      "é",
      "(a b)",
      "(a,,b)",
      "(,)",
      "(",
      "(a",
      "(a,",
      "{",
      "{a}",
      "{a=}",
      "{a=b}",
      "{a=b;",
      "{=b;}",
      "{(a)=b;}",
      "<0>",
      "<0g>",
      "<00",
      "<",
      "\"a",
      "'a\"",
      "\"a\\",
      "\"\\U12\"",
      "\"\\UD83D\"",
      "\"\\UDE00\"",
      "/* a",
      "a /* b",
      "{a=b;} c",
      ")",
      "{\"a\":1}",
      "[1]",
      "\"\xFF\"",
      "\"\\UD83Dx\"",
      "\xED\xA0\x80",
      "(a;b)",
      "{a=b,c=d;}",
      "a//b\n;",
      "\"\\UD83D\\U0041\"",
  };
  for (const std::string_view row : rows) {
    Ref<NSError> error;
    EXPECT_FALSE(read(row, &error)) << row;
    ASSERT_TRUE(error) << row;
    EXPECT_EQ(error->code(), 3840) << row;
    EXPECT_FALSE(error->userInfo()->textForKey("NSDebugDescription")->empty()) << row;
  }
}

TEST(TextPropertyList, NestsNoDeeperThan256Collections) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '(') + std::string(depth, ')');
  };
  EXPECT_TRUE(read(nested(256)));
  EXPECT_FALSE(read(nested(257)));
  EXPECT_FALSE(read(std::string(1'000'000, '(')));
}

}  // namespace
}  // namespace rvf
