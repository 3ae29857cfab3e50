// SPDX-License-Identifier: Apache-2.0
//
// How deep and how far property lists may go, whoever made them.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/PropertyListBytes.h"

namespace rvf {
namespace {

TEST(PropertyListLimits, CollectionsNestNoDeeperThan256InXML) {
  const auto nested = [](int depth, std::string_view leaf) {
    std::string body(leaf);
    for (int i = 0; i < depth; ++i)
      body = "<array>" + body + "</array>";
    return xml(body);
  };
  for (const int depth : {254, 255, 256}) {
    for (const std::string_view leaf : {"", "<string>a</string>"})
      EXPECT_TRUE(read(nested(depth, leaf))) << depth << leaf;
  }
  EXPECT_FALSE(read(nested(257, "")));
  std::string endless = "<plist>";
  for (int i = 0; i < 100'000; ++i)
    endless += "<array>";
  EXPECT_FALSE(read(endless));
}

TEST(PropertyListLimits, CollectionsNestNoDeeperThan256InBinary) {
  id list = NSArray::array();
  for (int i = 1; i < 256; ++i)
    list = NSArray::arrayWithObjects({list});
  const std::string deepest = written(list, NSPropertyListFormat::binary);
  EXPECT_TRUE(objectsAreEqual(read(deepest), list));
  EXPECT_EQ(written(NSArray::arrayWithObjects({list}), NSPropertyListFormat::binary), "");
}

TEST(PropertyListLimits, SharedCollectionsCountWithTheirDeepestPlace) {
  id list = NSArray::array();
  for (int i = 1; i < 200; ++i)
    list = NSArray::arrayWithObjects({list});
  id deep = list;
  for (int i = 1; i < 100; ++i)
    deep = NSArray::arrayWithObjects({deep});
  EXPECT_EQ(written(NSArray::arrayWithObjects({list, deep}), NSPropertyListFormat::binary), "");
}

TEST(PropertyListLimits, RefusesSharedCollectionsThatUnfoldWithoutEnd) {
  std::vector<std::string> objects;
  for (char i = 1; i <= 60; ++i)
    objects.push_back({'\xA2', i, i});
  objects.emplace_back("\x08");
  expectRefused(binary(objects));
}

TEST(PropertyListLimits, WritesSharedCollectionsOnceInBinary) {
  id list = NSArray::array();
  for (int i = 0; i < 15; ++i)
    list = NSArray::arrayWithObjects({list, list});
  const std::string bytes = written(list, NSPropertyListFormat::binary);
  EXPECT_LT(bytes.size(), 150U);
  EXPECT_TRUE(objectsAreEqual(read(bytes), list));
  for (int i = 0; i < 40; ++i)
    list = NSArray::arrayWithObjects({list, list});
  Ref<NSError> error;
  EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListFormat::binary,
                                                                 &error));
  EXPECT_EQ(error->code(), 3851) << "it would not be read either";
}

TEST(PropertyListLimits, EqualLeavesMayBeAsManyAsTheyLike) {
  const id list = NSArray::arrayWithObjects(std::vector<id>(4'000'000, box(true)));
  EXPECT_EQ(
      std::static_pointer_cast<NSArray>(read(written(list, NSPropertyListFormat::binary)))->count(),
      4'000'000U);
}

TEST(PropertyListLimits, EqualTextsAreReadBackWhereTheyAreWritten) {
  for (const std::size_t size : {9U, 40U, 41U}) {
    const id list =
        NSArray::arrayWithObjects(std::vector<id>(3'000'000, box(std::string(size, 'x'))));
    const std::string bytes = written(list, NSPropertyListFormat::binary);
    EXPECT_EQ(bytes.empty(), size > 40) << size;
    if (bytes.empty()) continue;
    EXPECT_TRUE(read(bytes)) << size;
  }
}

TEST(PropertyListLimits, XMLHasTheLimitOfTheBinaryForm) {
  id list = NSArray::array();
  for (int i = 0; i < 22; ++i)
    list = NSArray::arrayWithObjects({list, list});
  Ref<NSError> error;
  EXPECT_FALSE(
      NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListFormat::xml, &error));
  EXPECT_EQ(error->code(), 3851);
}

/// An array of so many objects, all of which stand at the same place; what they refer to is true.
std::string overlapping(std::size_t count, const std::string& object) {
  std::string bytes = "bplist00\xAF\x12" + word(count, 4);
  for (std::size_t i = 1; i <= count; ++i)
    bytes += word(i, 2);
  const std::size_t place = bytes.size();
  bytes += object;
  const std::size_t truth = bytes.size();
  bytes += '\x09';
  const std::size_t table = bytes.size();
  bytes += word(8, 3);
  for (std::size_t i = 0; i < count; ++i)
    bytes += word(place, 3);
  bytes += word(truth, 3);
  return bytes + std::string(6, '\0') + "\3\2" + word(count + 2, 8) + word(0, 8) + word(table, 8);
}

TEST(PropertyListLimits, RefusesObjectsThatOverlapBeforeTheyTakeMemory) {
  const auto data = [](std::size_t size) {
    return "\x4F\x12" + word(size, 4) + std::string(size, 'x');
  };
  const auto array = [](std::size_t count, std::size_t reference) {
    std::string bytes = "\xAF\x12" + word(count, 4);
    for (std::size_t i = 0; i < count; ++i)
      bytes += word(reference, 2);
    return bytes;
  };
  EXPECT_TRUE(read(overlapping(100, data(1000))));
  EXPECT_TRUE(read(overlapping(100, array(1000, 101))));
  struct rusage first = {};
  ASSERT_EQ(getrusage(RUSAGE_SELF, &first), 0);
  expectRefused(overlapping(20'000, data(100'000)));
  expectRefused(overlapping(20'000, array(50'000, 20'001)));
  struct rusage last = {};
  ASSERT_EQ(getrusage(RUSAGE_SELF, &last), 0);
  EXPECT_LT(last.ru_maxrss - first.ru_maxrss, 500'000) << "KB; it would be 2 GB";
}

/// A dictionary of so many entries that all have the same key.
std::string sameKeys(std::size_t count, std::size_t bytesOfKey) {
  std::string bytes = "bplist00\xDF\x12" + word(count, 4);
  bytes.append(count, '\x01').append(count, '\x02');
  const std::size_t key = bytes.size();
  bytes += "\x5F\x12" + word(bytesOfKey, 4) + std::string(bytesOfKey, 'k');
  const std::size_t truth = bytes.size();
  bytes += '\x09';
  const std::size_t table = bytes.size();
  for (const std::size_t place : {std::size_t{8}, key, truth})
    bytes += word(place, 4);
  return bytes + std::string(6, '\0') + "\4\1" + word(3, 8) + word(0, 8) + word(table, 8);
}

TEST(PropertyListLimits, LongKeysOfManyEntriesAreRefusedBeforeTheyTakeTime) {
  EXPECT_EQ(read(sameKeys(1000, 1000))->description(), "{" + std::string(1000, 'k') + " = 1;}");
  expectRefused(sameKeys(1'000'000, 4'000'000));  // 4 TB to look at
}

TEST(PropertyListLimits, LongLeavesThatManyShareAreLookedAtOnce) {
  const std::string bytes(4'000'000, 'x');
  for (const id& leaf : {id(box(bytes)), id(NSData::dataWithBytes(bytes))}) {
    const id few = NSArray::arrayWithObjects(std::vector<id>(10, leaf));
    const std::string list = written(few, NSPropertyListFormat::binary);
    EXPECT_LT(list.size(), 4'000'200U);
    EXPECT_TRUE(objectsAreEqual(read(list), few));
    const id many = NSArray::arrayWithObjects(std::vector<id>(100'000, leaf));
    EXPECT_EQ(written(many, NSPropertyListFormat::binary), "");  // 400 GB to look at
  }
}

TEST(PropertyListLimits, XMLCountsTheKeysOfWhatIsShared) {
  const id row = NSDictionary::dictionaryWithEntries({{std::string(1'000'000, 'k'), box(true)}});
  EXPECT_NE(written(NSArray::arrayWithObjects({row, row}), NSPropertyListFormat::xml), "");
  const id rows = NSArray::arrayWithObjects(std::vector<id>(3000, row));
  Ref<NSError> error;
  EXPECT_FALSE(
      NSPropertyListSerialization::dataWithPropertyList(rows, NSPropertyListFormat::xml, &error));
  EXPECT_EQ(error->code(), 3851) << "it would be 3 GB";
}

}  // namespace
}  // namespace rvf
