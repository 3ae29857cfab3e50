// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSString.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(NSString, CountsUTF16Units) {
  const std::pair<std::string_view, std::size_t> rows[] = {
      {"", 0}, {"abc", 3}, {"€", 1}, {"é", 1}, {"😀", 2}, {"a\0b"sv, 3}, {"\xFF\xC3", 2}};
  for (const auto& [text, length] : rows)
    EXPECT_EQ(box(text)->length(), length) << text;
}

TEST(NSString, IsEqualLiterally) {
  EXPECT_TRUE(box("é")->isEqual(box("é").get()));
  EXPECT_FALSE(box("\u00E9")->isEqual(box("e\u0301").get()));  // composed, decomposed
  EXPECT_FALSE(box("a")->isEqual(box("A").get()));
  EXPECT_FALSE(box("a"sv)->isEqual(box("a\0"sv).get()));
  EXPECT_FALSE(box("1")->isEqual(box(1).get()));
  EXPECT_FALSE(box("")->isEqual(nullptr));
}

TEST(NSString, EqualOnesHashAlike) {
  EXPECT_EQ(box("text")->hash(), box("text"s)->hash());
}

TEST(NSString, OrdersByUTF16Unit) {
  EXPECT_LT(box("a")->compare(*box("b")), 0);
  EXPECT_LT(box("a")->compare(*box("ab")), 0);
  EXPECT_EQ(box("a")->compare(*box("a")), 0);
  EXPECT_GT(box("\uFB01")->compare(*box("😀")), 0);  // its surrogates come first
}

TEST(NSString, DecodesStrictly) {
  for (const std::string_view bytes :
       {"\xFF"sv, "a\xC3"sv, "\xC0\x80"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv, "\x80"sv})
    EXPECT_EQ(NSString::stringWithUTF8Bytes(bytes), nullptr) << bytes;
}

TEST(NSString, DecodingKeepsByteOrderMarksAndZeroBytes) {
  EXPECT_EQ(NSString::stringWithUTF8Bytes("\xEF\xBB\xBF"
                                          "a")
                ->string(),
            "\xEF\xBB\xBF"
            "a");
  EXPECT_EQ(NSString::stringWithUTF8Bytes("a\0b"sv)->string(), "a\0b"s);
  EXPECT_EQ(NSString::stringWithUTF8Bytes("")->string(), "");
}

TEST(NSString, KeepsBytesThatAreNoText) {
  EXPECT_EQ(box("\xFF")->string(), "\xFF");
}

TEST(NSString, BoxesEveryFormOfText) {
  EXPECT_EQ(box("a")->string(), "a");
  EXPECT_EQ(box("a"s)->string(), "a");
  EXPECT_EQ(box("a"sv)->string(), "a");
  EXPECT_EQ(box(std::optional("a"s))->string(), "a");
  EXPECT_EQ(box(std::optional<std::string>()), nullptr);
  EXPECT_EQ(box(static_cast<const char*>(nullptr)), nullptr);
}

TEST(NSString, UnboxesTextOnly) {
  EXPECT_EQ(unboxText(box("a")), "a");
  EXPECT_EQ(unboxText(box(1)), std::nullopt);
  EXPECT_EQ(unboxText(nullptr), std::nullopt);
}

TEST(NSString, AnswersItsLengthAsAMessage) {
  EXPECT_EQ(send<std::size_t>(id(box("😀")), SEL("length")), 2U);
}

TEST(NSString, AnswersATruthValue) {
  EXPECT_TRUE(send<bool>(box("yes"), SEL("boolValue")));
  EXPECT_FALSE(send<bool>(box("no"), SEL("boolValue")));
}

TEST(NSString, AnswersItsUpperCase) {
  EXPECT_EQ(send<std::string>(box("straße"), SEL("uppercaseString")), "STRASSE");
}

TEST(NSString, ReadsAsNumbers) {
  const auto text = box(" 1.5x");
  EXPECT_EQ(text->integerValue(), 1);
  EXPECT_EQ(text->floatValue(), 1.5F);
  EXPECT_EQ(text->doubleValue(), 1.5);
  EXPECT_TRUE(text->boolValue());
  EXPECT_EQ(send<double>(text, SEL("doubleValue")), 1.5);
  EXPECT_FALSE(box("no")->boolValue());
}

}  // namespace
}  // namespace rvf
