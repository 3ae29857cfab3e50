// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/XMLAttributes.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace rvf {
namespace {

XMLText bytes(const char* text) {
  return reinterpret_cast<XMLText>(text);
}

/// What a parser hands over for <item name="Salt &amp; Pepper" p:id="7" empty=""/>.
class XMLAttributesTest : public ::testing::Test {
 protected:
  const char* source_ = "Salt &#38; Pepper|7|";
  const std::array<XMLText, 15> groups_ = {
      bytes("name"),  nullptr,    nullptr,        bytes(source_),      bytes(source_ + 17),
      bytes("id"),    bytes("p"), bytes("urn:p"), bytes(source_ + 18), bytes(source_ + 19),
      bytes("empty"), nullptr,    nullptr,        bytes(source_ + 20), bytes(source_ + 20)};
  const XMLAttributes attributes_{groups_.data(), 3};
};

TEST_F(XMLAttributesTest, ListsAttributesInOrder) {
  std::vector<std::string> names;
  for (const XMLAttribute attribute : attributes_)
    names.emplace_back(attribute.localName());
  EXPECT_EQ(names, (std::vector<std::string>{"name", "id", "empty"}));
  EXPECT_EQ(attributes_.count(), 3U);
}

TEST_F(XMLAttributesTest, ReadsNamespacesAndValuesInPlace) {
  const auto id = attributes_.attributeNamed("id");
  ASSERT_TRUE(id);
  EXPECT_EQ(id->prefix(), "p");
  EXPECT_EQ(id->URI(), "urn:p");
  EXPECT_EQ(id->value(), "7");
  EXPECT_EQ(id->value().data(), source_ + 18);
}

TEST_F(XMLAttributesTest, AbsentTextsReadAsEmpty) {
  const auto empty = attributes_.attributeNamed("empty");
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->prefix(), "");
  EXPECT_EQ(empty->URI(), "");
  EXPECT_EQ(empty->value(), "");
  EXPECT_EQ(xmlView(nullptr), "");
}

TEST_F(XMLAttributesTest, UnknownNameIsAbsent) {
  EXPECT_FALSE(attributes_.attributeNamed("price"));
  EXPECT_FALSE(XMLAttributes(nullptr, 0).attributeNamed("name"));
}

TEST_F(XMLAttributesTest, DecodesAmpersandsOnRequest) {
  const auto name = attributes_.attributeNamed("name");
  ASSERT_TRUE(name);
  EXPECT_EQ(name->value(), "Salt &#38; Pepper");
  EXPECT_EQ(name->decodedValue(), "Salt & Pepper");
}

TEST(XMLAttribute, DecodesEachAmpersandOnce) {
  const struct {
    std::string value, decoded;
  } rows[] = {{"", ""},
              {"&#38;", "&"},
              {"&#38;&#38;", "&&"},
              {"&#38;#38;", "&#38;"},
              {"&#38;amp;", "&amp;"},
              {"a&#38;b", "a&b"}};
  for (const auto& row : rows) {
    const XMLText start = bytes(row.value.data());
    const XMLText group[] = {bytes("a"), nullptr, nullptr, start, start + row.value.size()};
    EXPECT_EQ(XMLAttribute(group).decodedValue(), row.decoded) << row.value;
  }
}

}  // namespace
}  // namespace rvf
