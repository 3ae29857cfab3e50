// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSDictionary-RVFExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <map>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

constexpr auto dictionaryFromURLQuery = &NSDictionary_RVFExtensions::RVF_dictionaryFromURLQuery;

using Texts = std::map<std::string, std::string>;

Ref<NSDictionary> dictionaryOf(const Texts& texts) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (const auto& [key, value] : texts)
    dictionary->setObject(box(value), key);
  return dictionary;
}

/// The name of the exception that a query raises, or "none".
std::string problemOf(std::string_view query) {
  try {
    dictionaryFromURLQuery(query);
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "none";
}

TEST(NSDictionary_RVFExtensions, ReadsAQuery) {
  struct Row {
    std::string query;
    Texts entries;
  };
  const Row rows[] = {
      {"a=1&b=%41", {{"a", "1"}, {"b", "A"}}},
      {"a=1&a=2", {{"a", "2"}}},
      {"a=b=c", {{"a", "b"}}},
      {"a=b=%FF", {{"a", "b"}}},
      {"a=", {{"a", ""}}},
      {"=1", {{"", "1"}}},
      {"=", {{"", ""}}},
      {"a+b=c+d", {{"a+b", "c+d"}}},
      {"%61=1&a=2", {{"a", "2"}}},
      {"a%3Db=c%26d", {{"a=b", "c&d"}}},
      {"%C3%BC=%F0%9F%98%80", {{"ü", "😀"}}},
      {"a=%00", {{"a", std::string(1, '\0')}}},
      {"a= b ?c#d", {{"a", " b ?c#d"}}},
  };
  for (const Row& row : rows)
    EXPECT_TRUE(objectsAreEqual(dictionaryFromURLQuery(row.query), dictionaryOf(row.entries)))
        << row.query;
}

TEST(NSDictionary_RVFExtensions, APieceWithoutEqualsSignRaises) {
  for (const char* query : {"", "a", "&", "a=1&", "&a=1", "a=1&&b=2", "a=1&b", "%FF"})
    EXPECT_EQ(problemOf(query), "NSRangeException") << query;
}

TEST(NSDictionary_RVFExtensions, APieceThatDoesNotDecodeRaises) {
  for (const char* query : {"%FF=1", "a=%FF", "a=100%", "%zz=1", "a=1&b=%C3", "a=\xFF", "\xC3=1"})
    EXPECT_EQ(problemOf(query), "NSInvalidArgumentException") << query;
}

TEST(NSDictionary_RVFExtensions, WritesAQueryAndAForm) {
  struct Row {
    Texts entries;
    const char* query;
    const char* form;
  };
  const Row rows[] = {
      {{{"b", "x y"}, {"a", "1&2"}}, "a=1%262&b=x%20y", "a=1%262&b=x+y"},
      {{}, "", ""},
      {{{"", ""}}, "=", "="},
      {{{" a ", "+ +"}}, "%20a%20=%2B%20%2B", "+a+=%2B+%2B"},
      {{{"a", "%20"}}, "a=%2520", "a=%2520"},
      {{{"ü", "€"}}, "%C3%BC=%E2%82%AC", "%C3%BC=%E2%82%AC"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(RVF_URLEncodedDictionary(dictionaryOf(row.entries)), row.query);
    EXPECT_EQ(RVF_wwwFormEncodedDictionary(dictionaryOf(row.entries)), row.form);
    EXPECT_EQ(RVF_encodedDictionary(dictionaryOf(row.entries), false), row.query);
    EXPECT_EQ(RVF_encodedDictionary(dictionaryOf(row.entries), true), row.form);
  }
}

TEST(NSDictionary_RVFExtensions, SortsKeysByUtf16CodeUnit) {
  const auto dictionary =
      dictionaryOf({{"a1", ""}, {"a", ""}, {"B", ""}, {"\uFF21", ""}, {"😀", ""}, {"b", ""}});
  EXPECT_EQ(RVF_URLEncodedDictionary(dictionary), "B=&a=&a1=&b=&%F0%9F%98%80=&%EF%BC%A1=");
}

TEST(NSDictionary_RVFExtensions, KeysAndValuesMustBeTexts) {
  const auto numberValue = NSDictionary::dictionaryWithEntries({{"a", box(1)}});
  EXPECT_THROW(RVF_URLEncodedDictionary(numberValue), NSException);
  const auto numberKey = NSMutableDictionary::dictionary();
  numberKey->setObject(box("a"), id(box(1)));
  EXPECT_THROW(RVF_wwwFormEncodedDictionary(numberKey), NSException);
}

TEST(NSDictionary_RVFExtensions, TextsMustBeWellFormed) {
  EXPECT_THROW(RVF_URLEncodedDictionary(dictionaryOf({{"a", "\xFF"}})), NSException);
  EXPECT_THROW(RVF_URLEncodedDictionary(dictionaryOf({{"\xED\xA0\xBD", "1"}})), NSException);
}

TEST(NSDictionary_RVFExtensions, AnAbsentDictionaryAnswersAbsent) {
  EXPECT_EQ(RVF_encodedDictionary(nullptr, true), std::nullopt);
  EXPECT_EQ(RVF_URLEncodedDictionary(nullptr), std::nullopt);
  EXPECT_EQ(RVF_wwwFormEncodedDictionary(nullptr), std::nullopt);
}

TEST(NSDictionary_RVFExtensions, ReadingGivesBackWhatWasWritten) {
  EXPECT_TRUE(rc::check([] {
    const auto texts = *rc::gen::nonEmpty(rc::gen::container<Texts>(anyText(), anyText()));
    const auto dictionary = dictionaryOf(texts);
    const auto query = RVF_URLEncodedDictionary(dictionary);
    RC_ASSERT(objectsAreEqual(dictionaryFromURLQuery(*query), dictionary));
  }));
}

TEST(NSDictionary_RVFExtensions, HandlesAMegabyte) {
  Texts texts;
  for (int i = 0; i < 50000; ++i)
    texts["key" + std::to_string(i)] = "value of a key";
  const auto query = RVF_URLEncodedDictionary(dictionaryOf(texts));
  ASSERT_GT(query->size(), 1U << 20);
  EXPECT_EQ(dictionaryFromURLQuery(*query)->count(), texts.size());
}

}  // namespace
}  // namespace rvf
