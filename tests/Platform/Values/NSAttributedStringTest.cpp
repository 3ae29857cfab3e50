// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSAttributedString.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSAttributedString, HasItsAttributesOverItsWholeLength) {
  const auto attributes = NSDictionary::dictionaryWithEntries({{"size", box(12)}});
  const auto text = NSAttributedString::attributedStringWithString("a\U0001F600", attributes);
  EXPECT_EQ(text->string(), "a\U0001F600");
  EXPECT_EQ(text->length(), 3U);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_TRUE(text->attributesAtIndex(i)->isEqual(attributes.get()));
  EXPECT_THROW(text->attributesAtIndex(3), NSException);
}

TEST(NSAttributedString, KeepsItsAttributesWhenTheOriginalChanges) {
  const auto attributes = NSMutableDictionary::dictionary();
  const auto text = NSAttributedString::attributedStringWithString("a", attributes);
  attributes->setObject(box(12), "size");
  EXPECT_EQ(text->attributesAtIndex(0)->count(), 0U);
}

TEST(NSAttributedString, AbsentTextRaises) {
  try {
    NSAttributedString::attributedStringWithString(std::nullopt, nullptr);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
  }
}

TEST(NSAttributedString, EqualityIsByTextAndAttributes) {
  const auto plain = NSAttributedString::attributedStringWithString("a", nullptr);
  const auto same = NSAttributedString::attributedStringWithString("a", NSDictionary::dictionary());
  const auto large = NSAttributedString::attributedStringWithString(
      "a", NSDictionary::dictionaryWithEntries({{"size", box(12)}}));
  EXPECT_TRUE(plain->isEqual(same.get()));
  EXPECT_EQ(plain->hash(), same->hash());
  EXPECT_FALSE(plain->isEqual(large.get()));
  EXPECT_FALSE(plain->isEqual(box("a").get()));
}

}  // namespace
}  // namespace rvf
