// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSMutableDictionary-RVFExtensions.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSMutableDictionary_RVFExtensions, KeepsTheVeryKey) {
  const auto dictionary = NSMutableDictionary::dictionary();
  const id uncopyable = std::make_shared<NSObject>();
  RVF_setObject(dictionary, box(1), uncopyable);
  EXPECT_EQ(dictionary->allKeys()->objects().at(0), uncopyable);
  EXPECT_TRUE(objectsAreEqual(dictionary->objectForKey(uncopyable), box(1)));
}

TEST(NSMutableDictionary_RVFExtensions, HoldsOnToTheKey) {
  const auto dictionary = NSMutableDictionary::dictionary();
  id key = std::make_shared<NSObject>();
  const std::weak_ptr<NSObject> watched = key;
  RVF_setObject(dictionary, box(1), key);
  key.reset();
  EXPECT_FALSE(watched.expired());
  dictionary->removeAllObjects();
  EXPECT_TRUE(watched.expired());
}

TEST(NSMutableDictionary_RVFExtensions, AnEqualKeyStaysAndGetsTheNewValue) {
  const auto dictionary = NSMutableDictionary::dictionary();
  const id first = box("key");
  RVF_setObject(dictionary, box(1), first);
  RVF_setObject(dictionary, box(2), box("key"));
  ASSERT_EQ(dictionary->count(), 1U);
  EXPECT_EQ(dictionary->allKeys()->objects().at(0), first);
  EXPECT_TRUE(objectsAreEqual(dictionary->objectForKey("key"), box(2)));
}

TEST(NSMutableDictionary_RVFExtensions, RaisesForWhatIsAbsent) {
  const auto dictionary = NSMutableDictionary::dictionary();
  EXPECT_THROW(RVF_setObject(dictionary, box(1), nullptr), NSException);
  EXPECT_THROW(RVF_setObject(dictionary, nullptr, box("key")), NSException);
  EXPECT_EQ(dictionary->count(), 0U);
  EXPECT_NO_THROW(RVF_setObject(nullptr, box(1), box("key")));
}

}  // namespace
}  // namespace rvf
