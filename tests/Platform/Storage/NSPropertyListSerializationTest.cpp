// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSPropertyListSerialization.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/PropertyListBytes.h"

namespace rvf {
namespace {

using Serialization = NSPropertyListSerialization;

TEST(NSPropertyListSerialization, TellsWhichFormItRead) {
  const struct {
    std::string bytes;
    NSPropertyListFormat format;
  } rows[] = {
      {xml("<true/>"), NSPropertyListFormat::xml},
      {"\xEF\xBB\xBF" + xml("<true/>"), NSPropertyListFormat::xml},
      {"\n<plist><true/></plist>", NSPropertyListFormat::xml},
      {binary({"\x08"}), NSPropertyListFormat::binary},
      {"word", NSPropertyListFormat::olderText},
      {"<00>", NSPropertyListFormat::olderText},
  };
  for (const auto& row : rows) {
    NSPropertyListFormat format = {};
    EXPECT_TRUE(Serialization::propertyListWithData(NSData::dataWithBytes(row.bytes), &format));
    EXPECT_EQ(format, row.format) << row.bytes;
  }
}

TEST(NSPropertyListSerialization, ReadsNothingFromNothing) {
  Ref<NSError> error;
  EXPECT_FALSE(Serialization::propertyListWithData(nullptr, nullptr, &error));
  EXPECT_EQ(error->code(), 3840);
  EXPECT_FALSE(read(""));
}

TEST(NSPropertyListSerialization, IsNoReaderOfJSON) {
  expectRefused("{\"a\": [1, 2]}");
  expectRefused("[1]");
}

TEST(NSPropertyListSerialization, RefusesToWriteWhatTheFormHasNoRoomFor) {
  using namespace std::string_literals;
  const auto cyclic = NSMutableArray::array();
  cyclic->addObject(cyclic);
  const struct {
    id object;
    bool inXML;
    bool inBinary;
  } rows[] = {
      {nullptr, false, false},
      {NSNull::null(), false, false},
      {NSArray::arrayWithObjects({NSNull::null()}), false, false},
      {cyclic, false, false},
      {box("\xFF"), false, false},
      {box("a\0b"s), false, true},
      {box("\x01"), false, true},
      {box("\xEF\xBF\xBF"), false, true},
      {NSDictionary::dictionaryWithEntries({{"a\0b"s, box(1)}}), false, true},
      {NSDictionary::dictionaryWithEntries({{"\xFF", box(1)}}), false, false},
      {std::make_shared<NSDictionary>(NSDictionary::Entries{{box(1), box(1)}}), false, false},
      {std::make_shared<NSDate>(1e12), false, true},
      {std::make_shared<NSDate>(-1e12), false, true},
      {std::make_shared<NSDate>(std::numeric_limits<double>::quiet_NaN()), false, true},
  };
  for (const auto& row : rows) {
    const std::string text = row.object ? std::string(class_getName(row.object->isa())) : "absent";
    for (const bool isXML : {true, false}) {
      Ref<NSError> error;
      const auto data = Serialization::dataWithPropertyList(
          row.object, isXML ? NSPropertyListFormat::xml : NSPropertyListFormat::binary, &error);
      EXPECT_EQ(data != nullptr, isXML ? row.inXML : row.inBinary) << text;
      EXPECT_EQ(error ? error->code() : 0, data ? 0 : 3851) << text;
    }
  }
  cyclic->removeAllObjects();
}

TEST(NSPropertyListSerialization, DoesNotWriteTheOlderTextForm) {
  Ref<NSError> error;
  EXPECT_FALSE(
      Serialization::dataWithPropertyList(box("a"), NSPropertyListFormat::olderText, &error));
  EXPECT_EQ(error->code(), 3851);
}

TEST(NSPropertyListSerialization, WritesMutableCollectionsAndCharactersAsWhatTheyAre) {
  const auto list = NSMutableArray::array();
  list->addObject(NSMutableDictionary::dictionary());
  list->addObject(box(static_cast<signed char>(5)));
  list->addObject(box(static_cast<signed char>(1)));
  const id again = read(written(list, NSPropertyListFormat::binary));
  EXPECT_EQ(again->description(), "({}, 5, 1)");
  EXPECT_TRUE(again->isMemberOfClass(NSArray::classObject()));
}

TEST(NSPropertyListSerialization, IsKnownByItsName) {
  EXPECT_EQ(objc_getClass("NSPropertyListSerialization"), Serialization::classObject());
}

}  // namespace
}  // namespace rvf
