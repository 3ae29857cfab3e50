// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/PropertyListBytes.h"

namespace rvf {
namespace {

TEST(BinaryPropertyList, ReadsEveryKindOfObjectInBinary) {
  using namespace std::string_literals;
  const struct {
    std::string object;
    id value;
    std::string_view typeCode;
  } rows[] = {
      {"\x08"s, box(false), "c"},
      {"\x09"s, box(true), "c"},
      {"\x10\xFF"s, box(255), "q"},
      {"\x11\xFF\xFF"s, box(65535), "q"},
      {"\x12\xFF\xFF\xFF\xFF"s, box(4294967295L), "q"},
      {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, box(-1), "q"},
      {"\x14\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, box(~0UL), "Q"},
      {"\x14"s + std::string(16, '\xFF'), box(-1), "q"},
      {"\x14"s + std::string(8, '\xFF') + "\x80\0\0\0\0\0\0\0"s,
       box(std::numeric_limits<long>::min()), "q"},
      {"\x22\x3F\xC0\0\0"s, box(1.5), "d"},
      {"\x23\x3F\xF8\0\0\0\0\0\0"s, box(1.5), "d"},
      {"\x33\x3F\xF8\0\0\0\0\0\0"s, std::make_shared<NSDate>(1.5), ""},
      {"\x33\xC2\x60\0\0\0\0\0\0"s, std::make_shared<NSDate>(-0x1p39), ""},
      {"\x42\xFF\0"s, NSData::dataWithBytes("\xFF\0"s), ""},
      {"\x53"s + "abc", box("abc"), ""},
      {"\x53"s + "a\0c"s, box("a\0c"s), ""},
      {"\x5F\x10\x03"s + "abc", box("abc"), ""},
      {"\x62\xD8\x3D\xDE\x00"s, box("😀"), ""},
      {"\x62\0a\0\0"s, box("a\0"s), ""},
      {"\x63\xD8\x3D\0a\xDE\0"s,
       box("\xEF\xBF\xBD"
           "a\xEF\xBF\xBD"),
       ""},
      {"\x50"s, box(""), ""},
      {"\xA0"s, NSArray::array(), ""},
      {"\xD0"s, NSDictionary::dictionary(), ""},
  };
  for (const auto& row : rows) {
    const id value = read(binary({row.object}));
    EXPECT_TRUE(objectsAreEqual(value, row.value)) << testing::PrintToString(row.object);
    const auto* number = dynamic_cast<const NSNumber*>(value.get());
    EXPECT_EQ(number ? number->objCType() : "", row.typeCode) << testing::PrintToString(row.object);
  }
}

TEST(BinaryPropertyList, RefusesBinaryObjectsThatAreMalformed) {
  using namespace std::string_literals;
  const std::vector<std::string> rows[] = {
      {"\x00"s},  // null
      {"\x01"s},
      {"\x0F"s},                         // padding
      {"\x15"s + std::string(32, 'a')},  // an integer of 32 bytes
      {"\x14"s + std::string(16, '\x01')},
      {"\x14"s + std::string(8, '\xFF') + std::string(8, '\x7F')},  // below -2^63
      {"\x13\0"s},
      {"\x21\0\0"s},
      {"\x24"s + std::string(16, 'a')},
      {"\x32\0\0\0\0"s},
      {"\x33\0"s},
      {"\x45"s + "a"},
      {"\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s},
      {"\x4F\x20\x01"s},
      {"\x4F"s},
      {"\x51\x80"s},
      {"\x63\0a\0b"s},
      {"\x6F\x13\x80\0\0\0\0\0\0\0"s},
      {"\x80\x01"s},  // a reference of an archive
      {"\xC0"s},      // a set
      {"\xA1\0"s},    // contains itself
      {"\xA1\x01"s, "\xA1\0"s},
      {"\xA1\x02"s, "\x08"s},  // refers to nothing
      {"\xA3\x01"s, "\x08"s},  // cut off
      {"\xAF\x13\x40\0\0\0\0\0\0\0"s},
      {"\xD1\x01"s, "\x08"s},
      {"\xD1\x01\x01"s, "\x08"s},  // a key that is no text
      {"\xD1\x01\x01"s, "\xD0"s},
  };
  for (const auto& row : rows)
    expectRefused(binary(row));
}

TEST(BinaryPropertyList, RefusesTrailersThatDoNotFit) {
  const std::string good = binary({std::string("\xA1\x01"), std::string("\x08")});
  ASSERT_TRUE(read(good));
  const std::size_t trailer = good.size() - 32;
  for (std::size_t at = trailer + 6; at < good.size(); ++at) {
    for (const int value : {0, 1, 2, 3, 4, 8, 9, 13, 127, 255}) {
      std::string bad = good;
      if (bad[at] == static_cast<char>(value)) continue;
      bad[at] = static_cast<char>(value);
      const id root = read(bad);  // another root is possible
      EXPECT_TRUE(!root || at == trailer + 23 || at == trailer + 15) << at << " " << value;
    }
  }
  for (std::size_t length = 6; length < good.size(); ++length)  // less is a bare word
    expectRefused(std::string_view(good).substr(0, length));
  expectRefused("bplist01" + good.substr(8));
  expectRefused("bplist");
}

TEST(BinaryPropertyList, ReadsOffsetsOfAnySize) {
  for (const std::size_t size : {10U, 1'000U, 100'000U, 20'000'000U}) {
    const id list = NSArray::arrayWithObjects({box(std::string(size, 'x')), box("y")});
    EXPECT_TRUE(objectsAreEqual(read(written(list, NSPropertyListFormat::binary)), list)) << size;
  }
}

TEST(BinaryPropertyList, WhatABinaryListHoldsOnceIsOneObject) {
  const id row = NSDictionary::dictionaryWithEntries({{"key", box("text")}});
  const id list = NSArray::arrayWithObjects({row, row, box("text"), box("text")});
  const std::string bytes = written(list, NSPropertyListFormat::binary);
  const auto again = std::static_pointer_cast<NSArray>(read(bytes));
  EXPECT_EQ(bytes.find("text"), bytes.rfind("text"));
  EXPECT_EQ(again->objectAtIndex(0), again->objectAtIndex(1));
  EXPECT_EQ(again->objectAtIndex(2), again->objectAtIndex(3));
  EXPECT_TRUE(objectsAreEqual(again, list));
}

TEST(BinaryPropertyList, EqualNumbersOfDifferentKindsStayApartInBinary) {
  const id list = NSArray::arrayWithObjects({box(1), box(1.0), box(true), box("1"), box(1)});
  const auto again =
      std::static_pointer_cast<NSArray>(read(written(list, NSPropertyListFormat::binary)));
  std::string codes;
  for (const std::size_t i : {0U, 1U, 2U, 4U})
    codes += static_cast<const NSNumber&>(*again->objectAtIndex(i)).objCType();
  EXPECT_EQ(codes, "qdcq");
}

TEST(BinaryPropertyList, ReadsAndWritesAMillionElementsInBinary) {
  std::vector<id> numbers;
  for (long i = 0; i < 1'000'000; ++i)
    numbers.push_back(box(i));
  const id list = NSArray::arrayWithObjects(std::move(numbers));
  EXPECT_TRUE(objectsAreEqual(read(written(list, NSPropertyListFormat::binary)), list));
}

}  // namespace
}  // namespace rvf
