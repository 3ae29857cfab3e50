// SPDX-License-Identifier: Apache-2.0
//
// Which values may be set, and what becomes of them.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/DefaultsInAFile.h"

namespace rvf {
namespace {

using NSUserDefaultsValuesTest = DefaultsInAFile;

TEST_F(NSUserDefaultsValuesTest, KeepsEveryKindOfValueInItsFile) {
  const std::vector<std::pair<std::string, id>> values = {
      {"text", box("é 😀")},
      {"empty", box("")},
      {"", box("under the empty key")},
      {std::string("a\0b", 3), box(std::string("c\0d", 3))},
      {"number", box(-5)},
      {"fraction", box(0.1)},
      {"flag", box(true)},
      {"data", NSData::dataWithBytes("\xFF")},
      {"date", std::make_shared<NSDate>(0.125)},
      {"list", NSArray::arrayWithObjects({box(1), NSArray::array()})},
      {"map", NSDictionary::dictionaryWithEntries({{"a", box("b")}})},
  };
  for (const auto& [key, value] : values)
    defaults_->setObject(value, key);
  EXPECT_TRUE(defaults_->synchronize());
  for (const auto& [key, value] : values) {
    EXPECT_TRUE(objectsAreEqual(defaults_->objectForKey(key), value)) << key;
    EXPECT_TRUE(objectsAreEqual(stored(key), value)) << key;
  }
}

TEST_F(NSUserDefaultsValuesTest, SettingTakesADeepImmutableSnapshot) {
  const auto inner = NSMutableDictionary::dictionary();
  inner->setObject(box("before"), "k");
  const auto list = NSMutableArray::array();
  list->addObject(inner);
  defaults_->setObject(list, "list");
  defaults_->registerDefaults(NSDictionary::dictionaryWithEntries({{"registered", list}}));
  inner->setObject(box("after"), "k");
  list->removeAllObjects();
  for (const char* key : {"list", "registered"}) {
    const id value = defaults_->objectForKey(key);
    EXPECT_EQ(value->description(), "({k = before;})");
    EXPECT_TRUE(value->isMemberOfClass(NSArray::classObject()));
    EXPECT_TRUE(
        static_cast<NSArray&>(*value).firstObject()->isMemberOfClass(NSDictionary::classObject()));
  }
}

TEST_F(NSUserDefaultsValuesTest, WhatIsImmutableIsSharedAndNotCopied) {
  const id row = NSDictionary::dictionaryWithEntries({{"k", box("v")}});
  const auto mutableRow = NSMutableDictionary::dictionary();
  const id shared = NSArray::arrayWithObjects({row, row});
  const id partly = NSArray::arrayWithObjects({row, mutableRow});
  defaults_->setObject(shared, "shared");
  defaults_->setObject(partly, "partly");
  EXPECT_EQ(defaults_->objectForKey("shared"), shared);
  const auto copy = std::static_pointer_cast<NSArray>(defaults_->objectForKey("partly"));
  EXPECT_NE(copy, partly);
  EXPECT_EQ(copy->objectAtIndex(0), row);
  EXPECT_NE(copy->objectAtIndex(1), mutableRow);
}

TEST_F(NSUserDefaultsValuesTest, RefusesWhatNoPropertyListHolds) {
  const auto cyclic = NSMutableArray::array();
  cyclic->addObject(cyclic);
  const std::vector<id> values = {
      NSNull::null(),
      defaults_,
      NSArray::arrayWithObjects({NSNull::null()}),
      NSDictionary::dictionaryWithEntries({{"a", NSNull::null()}}),
      std::make_shared<NSDictionary>(NSDictionary::Entries{{box(1), box(1)}}),
      NSDictionary::dictionaryWithEntries({{"\xFF", box(1)}}),
      box("\xFF"),
      cyclic,
  };
  for (const id& value : values) {
    EXPECT_EQ(nameOfException([&] { defaults_->setObject(value, "k"); }),
              NSInvalidArgumentException);
    EXPECT_EQ(nameOfException([&] {
                defaults_->registerDefaults(NSDictionary::dictionaryWithEntries({{"k", value}}));
              }),
              NSInvalidArgumentException);
  }
  EXPECT_EQ(nameOfException([&] { defaults_->setInteger(1, "\xFF"); }), NSInvalidArgumentException);
  EXPECT_FALSE(defaults_->objectForKey("k"));
  cyclic->removeAllObjects();
}

TEST_F(NSUserDefaultsValuesTest, RefusesWhatUnfoldsTooFarAndGoesOnSaving) {
  id tree = NSArray::array();
  for (int i = 0; i < 100; ++i)
    tree = NSArray::arrayWithObjects({tree, tree});
  const id texts = NSArray::arrayWithObjects(std::vector<id>(3'000'000, box(std::string(50, 'x'))));
  const id longTexts =
      NSArray::arrayWithObjects(std::vector<id>(100'000, box(std::string(4'000'000, 'x'))));
  for (const id& value : {tree, texts, longTexts}) {
    EXPECT_EQ(nameOfException([&] { defaults_->setObject(value, "k"); }),
              NSInvalidArgumentException);
  }
  defaults_->setInteger(1, "other");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("other"), 1);
}

TEST_F(NSUserDefaultsValuesTest, SharedCollectionsCountWithTheirDeepestPlace) {
  const auto nested = [](id list, int depth) {
    for (int i = 0; i < depth; ++i)
      list = NSArray::arrayWithObjects({list});
    return list;
  };
  const id inner = nested(NSArray::array(), 99);  // 100 deep; the file's root is one more
  const auto sharing = [&](int depth) {
    return NSArray::arrayWithObjects({inner, nested(inner, depth)});
  };
  EXPECT_EQ(nameOfException([&] { defaults_->setObject(sharing(154), "k"); }), "none");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(nameOfException([&] { defaults_->setObject(sharing(155), "k"); }),
            NSInvalidArgumentException);
}

TEST_F(NSUserDefaultsValuesTest, KeysThatTogetherUnfoldTooFarFailUntilSomeAreGone) {
  id tree = NSArray::array();
  for (int i = 0; i < 20; ++i)
    tree = NSArray::arrayWithObjects({tree, tree});  // 2 million collections: each key may have it
  const auto nameOf = [](int number) { return "key " + std::to_string(number); };
  for (int number = 0; number < 10'000; ++number)
    defaults_->setObject(tree, nameOf(number));
  EXPECT_FALSE(defaults_->synchronize());
  const auto error = defaults_->synchronizationError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 3851);
  EXPECT_EQ(error->userInfo()->textForKey("NSDebugDescription"),
            "the values of all keys together: unfolds too far");
  EXPECT_FALSE(std::filesystem::exists(path_));
  for (int number = 1; number < 10'000; ++number)
    defaults_->setInteger(number, nameOf(number));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(defaults_->synchronizationError());
  EXPECT_EQ(open()->integerForKey("key 9999"), 9999);
}

TEST_F(NSUserDefaultsValuesTest, KeysThatUnfoldTooFarWithThoseOfOthersReplaceNothing) {
  id tree = NSArray::array();
  for (int i = 0; i < 20; ++i)
    tree = NSArray::arrayWithObjects({tree, tree});
  defaults_->setObject(tree, "mine");
  EXPECT_TRUE(defaults_->synchronize());
  const std::string before = bytesOf(path_);
  const auto other = open();
  other->setObject(tree, "theirs");
  EXPECT_FALSE(other->performExclusively([&] { other->setInteger(1, "n"); }));
  EXPECT_EQ(bytesOf(path_), before);
  EXPECT_EQ(other->integerForKey("n"), 1);
  other->removeObjectForKey("mine");
  EXPECT_TRUE(other->synchronize());
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(defaults_->objectForKey("mine"));
  EXPECT_EQ(defaults_->integerForKey("n"), 1);
}

}  // namespace
}  // namespace rvf
