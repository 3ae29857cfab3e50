// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSDictionary.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSDictionary, AnswersItsEntries) {
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box("x")}});
  EXPECT_EQ(dictionary->count(), 2U);
  EXPECT_TRUE(objectsAreEqual(dictionary->objectForKey("a"), box(1)));
  EXPECT_TRUE(objectsAreEqual(dictionary->objectForKey(box("a")), box(1)));
  EXPECT_EQ(dictionary->textForKey("b"), "x");
}

TEST(NSDictionary, AnswersAbsentForWhatItDoesNotHave) {
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"a", box(1)}});
  EXPECT_EQ(dictionary->objectForKey("b"), nullptr);
  EXPECT_EQ(dictionary->objectForKey(id()), nullptr);
  EXPECT_EQ(dictionary->textForKey("a"), std::nullopt);
}

TEST(NSDictionary, FindsKeysByValue) {
  const auto dictionary = std::make_shared<NSDictionary>(
      NSDictionary::Entries{{box(1), box("one")}, {box("1"), box("text")}});
  EXPECT_EQ(unboxText(dictionary->objectForKey(box(1.0))), "one");
  EXPECT_EQ(dictionary->textForKey("1"), "text");
}

TEST(NSDictionary, OfTwoEqualKeysTheLaterOneCounts) {
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"a", box(2)}});
  EXPECT_EQ(dictionary->description(), "{a = 2;}");
}

TEST(NSDictionary, RaisesForAnAbsentKeyOrObject) {
  EXPECT_THROW(NSDictionary::dictionaryWithEntries({{"a", nullptr}}), NSException);
  EXPECT_THROW(NSDictionary(NSDictionary::Entries{{nullptr, box(1)}}), NSException);
}

TEST(NSDictionary, IsEqualToOneOfEqualEntries) {
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box(2)}});
  const auto same = NSDictionary::dictionaryWithEntries({{"b", box(2)}, {"a", box(1.0)}});
  EXPECT_TRUE(dictionary->isEqual(same.get()));
  EXPECT_EQ(dictionary->hash(), same->hash());
  EXPECT_FALSE(dictionary->isEqual(NSDictionary::dictionaryWithEntries({{"a", box(1)}}).get()));
}

TEST(NSDictionary, HashesKeysTogetherWithTheirValues) {
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box(2)}});
  const auto crossed = NSDictionary::dictionaryWithEntries({{"a", box(2)}, {"b", box(1)}});
  const auto others = NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"c", box(2)}});
  EXPECT_NE(dictionary->hash(), crossed->hash());
  EXPECT_NE(dictionary->hash(), others->hash());
}

TEST(NSDictionary, ListsKeysAndValuesInOneOrder) {
  const auto dictionary = NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box(2)}});
  const auto keys = dictionary->allKeys();
  const auto values = dictionary->allValues();
  ASSERT_EQ(keys->count(), 2U);
  for (std::size_t i = 0; i < keys->count(); ++i)
    EXPECT_EQ(dictionary->objectForKey(keys->objectAtIndex(i)), values->objectAtIndex(i));
}

TEST(NSDictionary, DescribesItsEntriesInOrderOfTheKeys) {
  EXPECT_EQ(NSDictionary::dictionary()->description(), "{}");
  EXPECT_EQ(NSDictionary::dictionaryWithEntries({{"b", box(2)}, {"a", box("x")}})->description(),
            "{a = x; b = 2;}");
}

}  // namespace
}  // namespace rvf
