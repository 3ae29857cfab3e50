// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFPlaceholders.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

Ref<NSDictionary> values() {
  return NSDictionary::dictionaryWithEntries({{"name", box("World")},
                                              {" a b ", box("blank")},
                                              {"ü(", box("umlaut")},
                                              {"nested", box("%@(name)")}});
}

std::string filled(std::string_view text) {
  return stringByReplacingPlaceholdersWithDictionaryValues(text, values());
}

TEST(NSString_RVFPlaceholders, ReplacesEveryPlaceholder) {
  const std::pair<const char*, const char*> rows[] = {
      {"Hello %@(name)!", "Hello World!"},
      {"Hello %@(unknown)!", "Hello !"},
      {"%@(name)%@(name)", "WorldWorld"},
      {"%@()", ""},
      {"", ""},
      {"no placeholder", "no placeholder"},
      {"%@( a b )%@(a b)", "blank"},
      {"%@(ü()", "umlaut"},
      {"%@(nested)", "%@(name)"},
      {"%% %@ %(name) @(name) )", "%% %@ %(name) @(name) )"},
      {"%%@(name)", "%World"},
      {" %@(name) \n", " World \n"},
      {"\xFF%@(name)\xC3", "\xFFWorld\xC3"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(filled(text), expected) << text;
}

TEST(NSString_RVFPlaceholders, APlaceholderThatIsNotClosedRaises) {
  for (const char* text : {"Hello %@(name", "%@(", "%@(name)%@(", "%@(unknown", "%@(a%@(b"}) {
    try {
      filled(text);
      ADD_FAILURE() << text;
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSInvalidArgumentException) << text;
      EXPECT_EQ(exception.reason(),
                "invalid placeholder format string. Make sure any %@( is closed with )");
    }
  }
}

/// Counts how often it is asked for its text.
class CountingValue final : public NSObject {
 public:
  std::string description() const override {
    ++uses;
    return "value";
  }
  mutable int uses = 0;
};

TEST(NSString_RVFPlaceholders, AKeyThatRunsToTheEndIsLookedUpBeforeTheException) {
  const auto value = std::make_shared<CountingValue>();
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"name", value}});
  EXPECT_THROW(stringByReplacingPlaceholdersWithDictionaryValues("Hello %@(name", dictionary),
               NSException);
  EXPECT_EQ(value->uses, 1);
}

TEST(NSString_RVFPlaceholders, AnEmptyPlaceholderLooksNothingUp) {
  const auto value = std::make_shared<CountingValue>();
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"", value}});
  EXPECT_EQ(stringByReplacingPlaceholdersWithDictionaryValues("a%@()b", dictionary), "ab");
  EXPECT_THROW(stringByReplacingPlaceholdersWithDictionaryValues("%@(", dictionary), NSException);
  EXPECT_EQ(value->uses, 0);
}

TEST(NSString_RVFPlaceholders, AnAbsentDictionaryHasNoValues) {
  EXPECT_EQ(stringByReplacingPlaceholdersWithDictionaryValues("a%@(name)b", nullptr), "ab");
}

TEST(NSString_RVFPlaceholders, TakesATextOfTenMegabytes) {
  std::string text;
  std::string expected;
  while (text.size() < 10'000'000) {
    text += "ab %@(name) ";
    expected += "ab World ";
  }
  EXPECT_EQ(filled(text), expected);
  EXPECT_EQ(filled(std::string(10'000'000, '%')).size(), 10'000'000U);
}

}  // namespace
}  // namespace rvf
