// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSPropertyListSerialization.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sys/resource.h>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using Serialization = NSPropertyListSerialization;

id read(std::string_view bytes, Ref<NSError>* error = nullptr) {
  return Serialization::propertyListWithData(NSData::dataWithBytes(bytes), nullptr, error);
}

std::string xml(std::string_view body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + std::string(body) +
         "</plist>\n";
}

/// A binary list of the given objects with offsets and references of one byte; the first is the
/// root.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto start = static_cast<char>(bytes.size());
  bytes += table;
  bytes.append(6, '\0').append({1, 1});
  bytes.append(7, '\0').append({static_cast<char>(objects.size())});
  bytes.append(8, '\0').append(7, '\0').append({start});
  return bytes;
}

void expectRefused(std::string_view bytes) {
  Ref<NSError> error;
  EXPECT_FALSE(read(bytes, &error)) << testing::PrintToString(bytes);
  ASSERT_TRUE(error) << testing::PrintToString(bytes);
  EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 3840);
}

std::string written(const id& object, NSPropertyListFormat format) {
  const auto data = Serialization::dataWithPropertyList(object, format);
  return data ? std::string(data->characters()) : "";
}

TEST(NSPropertyListSerialization, ReadsEveryElementOfXML) {
  const struct {
    std::string_view body;
    id value;
    std::string_view typeCode;
  } rows[] = {
      {"<string>a</string>", box("a"), ""},
      {"<string/>", box(""), ""},
      {"<string> a<!-- x -->b<?x?> </string>", box(" ab "), ""},
      {"<string>&lt;&#x20AC;&#65;<![CDATA[<]]></string>", box("<€A<"), ""},
      {"<string>a\r\nb</string>", box("a\nb"), ""},
      {"<integer>-5</integer>", box(-5), "q"},
      {"<integer> +0x1F\n</integer>", box(31), "q"},
      {"<integer>-9223372036854775808</integer>", box(std::numeric_limits<long>::min()), "q"},
      {"<integer>9223372036854775807</integer>", box(std::numeric_limits<long>::max()), "q"},
      {"<integer>9223372036854775808</integer>", box(9223372036854775808UL), "Q"},
      {"<integer>18446744073709551615</integer>", box(18446744073709551615UL), "Q"},
      {"<real>1</real>", box(1.0), "d"},
      {"<real>-1.5e3</real>", box(-1500.0), "d"},
      {"<real>+infinity</real>", box(std::numeric_limits<double>::infinity()), "d"},
      {"<real>-inf</real>", box(-std::numeric_limits<double>::infinity()), "d"},
      {"<true/>", box(true), "c"},
      {"<false></false>", box(false), "c"},
      {"<data> AAEC\n/w== </data>", NSData::dataWithBytes(std::string_view("\0\1\2\xFF", 4)), ""},
      {"<data/>", NSData::data(), ""},
      {"<date>2001-01-01T00:00:01Z</date>", std::make_shared<NSDate>(1), ""},
      {"<date>1969-12-31T23:59:59Z</date>", NSDate::dateWithTimeIntervalSince1970(-1), ""},
      {"<array/>", NSArray::array(), ""},
      {" <dict><key/><array> <true/> </array></dict><!-- x -->",
       NSDictionary::dictionaryWithEntries({{"", NSArray::arrayWithObjects({box(true)})}}), ""},
      {"<dict><key>a</key><true/><key>a</key><false/></dict>",
       NSDictionary::dictionaryWithEntries({{"a", box(false)}}), ""},
  };
  for (const auto& row : rows) {
    const id value = read(xml(row.body));
    EXPECT_TRUE(objectsAreEqual(value, row.value)) << row.body;
    const auto* number = dynamic_cast<const NSNumber*>(value.get());
    EXPECT_EQ(number ? number->objCType() : "", row.typeCode) << row.body;
  }
}

TEST(NSPropertyListSerialization, RefusesWhatXMLAllowsButNoPropertyListIs) {
  const std::string_view bodies[] = {
      "",
      "a",
      "<true/><true/>",
      "<true/>a",
      "<a/>",
      "<key>a</key>",
      "<true>1</true>",
      "<dict><key>a</key></dict>",
      "<dict><string>a</string></dict>",
      "<dict><key>a</key><key>b</key></dict>",
      "<dict><true/><true/></dict>",
      "<dict>a</dict>",
      "<array>a</array>",
      "<array><a/></array>",
      "<string><true/></string>",
      "<string>&a;</string>",
      "<integer/>",
      "<integer>a</integer>",
      "<integer>1.5</integer>",
      "<integer>--1</integer>",
      "<integer>0x</integer>",
      "<integer>18446744073709551616</integer>",
      "<integer>-9223372036854775809</integer>",
      "<real/>",
      "<real>1,5</real>",
      "<real>1.5x</real>",
      "<real>+-1</real>",
      "<date/>",
      "<date>2001-01-01</date>",
      "<date>2001-13-01T00:00:00Z</date>",
      "<date>2001-02-29T00:00:00Z</date>",
      "<date>2001-01-01T24:00:00Z</date>",
      "<date>2001-01-01T00:60:00Z</date>",
      "<date>2001-01-01T00:00:60Z</date>",
      "<date>2001-01-01T00:00:00Zx</date>",
      "<date>2001-1-01T00:00:00Z</date>",
      "<data>A</data>",
      "<data>AA</data>",
      "<data>AAA</data>",
      "<data>AA=A</data>",
      "<data>=</data>",
      "<data>AAAA=</data>",
      "<data>AA===</data>",
      "<data>A*AA</data>",
      "<data>AA=</data>",
  };
  for (const std::string_view body : bodies)
    expectRefused(xml(body));
}

TEST(NSPropertyListSerialization, RefusesBrokenXML) {
  const std::string whole = xml("<dict><key>a</key><string>b</string></dict>");
  expectRefused(whole + "<x/>");
  expectRefused(whole + "x");
  expectRefused("<plist><true></plist>");
  expectRefused("<dict/>");
  expectRefused("<!-- only -->");
  expectRefused("<?xml version=\"1.0\"?><array/>");
  expectRefused("<plist/>");
  expectRefused(xml("<string>\xFF</string>"));
  for (std::size_t length = 6; length < whole.size() - 2; ++length)
    expectRefused(whole.substr(0, length));
}

TEST(NSPropertyListSerialization, FollowsNoEntityOfADocument) {
  expectRefused(
      "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/hostname\">]>"
      "<plist><string>&a;</string></plist>");
  expectRefused("<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>");
  EXPECT_TRUE(
      read("<!DOCTYPE plist SYSTEM \"http://localhost:1/none.dtd\"><plist><true/></plist>"));
}

TEST(NSPropertyListSerialization, CollectionsNestNoDeeperThan256InXML) {
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

TEST(NSPropertyListSerialization, ReadsEveryKindOfObjectInBinary) {
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

TEST(NSPropertyListSerialization, RefusesBinaryObjectsThatAreMalformed) {
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

TEST(NSPropertyListSerialization, RefusesTrailersThatDoNotFit) {
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

TEST(NSPropertyListSerialization, ReadsOffsetsOfAnySize) {
  for (const std::size_t size : {10U, 1'000U, 100'000U, 20'000'000U}) {
    const id list = NSArray::arrayWithObjects({box(std::string(size, 'x')), box("y")});
    EXPECT_TRUE(objectsAreEqual(read(written(list, NSPropertyListFormat::binary)), list)) << size;
  }
}

/// A number in so many bytes.
std::string word(std::size_t value, std::size_t size) {
  std::string bytes(size, '\0');
  for (; size-- > 0; value >>= 8U)
    bytes[size] = static_cast<char>(value & 0xFFU);
  return bytes;
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

TEST(NSPropertyListSerialization, RefusesObjectsThatOverlapBeforeTheyTakeMemory) {
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

TEST(NSPropertyListSerialization, RefusesSharedCollectionsThatUnfoldWithoutEnd) {
  std::vector<std::string> objects;
  for (char i = 1; i <= 60; ++i)
    objects.push_back({'\xA2', i, i});
  objects.emplace_back("\x08");
  expectRefused(binary(objects));
}

TEST(NSPropertyListSerialization, WhatABinaryListHoldsOnceIsOneObject) {
  const id row = NSDictionary::dictionaryWithEntries({{"key", box("text")}});
  const id list = NSArray::arrayWithObjects({row, row, box("text"), box("text")});
  const std::string bytes = written(list, NSPropertyListFormat::binary);
  const auto again = std::static_pointer_cast<NSArray>(read(bytes));
  EXPECT_EQ(bytes.find("text"), bytes.rfind("text"));
  EXPECT_EQ(again->objectAtIndex(0), again->objectAtIndex(1));
  EXPECT_EQ(again->objectAtIndex(2), again->objectAtIndex(3));
  EXPECT_TRUE(objectsAreEqual(again, list));
}

TEST(NSPropertyListSerialization, EqualNumbersOfDifferentKindsStayApartInBinary) {
  const id list = NSArray::arrayWithObjects({box(1), box(1.0), box(true), box("1"), box(1)});
  const auto again =
      std::static_pointer_cast<NSArray>(read(written(list, NSPropertyListFormat::binary)));
  std::string codes;
  for (const std::size_t i : {0U, 1U, 2U, 4U})
    codes += static_cast<const NSNumber&>(*again->objectAtIndex(i)).objCType();
  EXPECT_EQ(codes, "qdcq");
}

TEST(NSPropertyListSerialization, WritesSharedCollectionsOnceInBinary) {
  id list = NSArray::array();
  for (int i = 0; i < 15; ++i)
    list = NSArray::arrayWithObjects({list, list});
  const std::string bytes = written(list, NSPropertyListFormat::binary);
  EXPECT_LT(bytes.size(), 150U);
  EXPECT_TRUE(objectsAreEqual(read(bytes), list));
  for (int i = 0; i < 40; ++i)
    list = NSArray::arrayWithObjects({list, list});
  Ref<NSError> error;
  EXPECT_FALSE(Serialization::dataWithPropertyList(list, NSPropertyListFormat::binary, &error));
  EXPECT_EQ(error->code(), 3851) << "it would not be read either";
}

TEST(NSPropertyListSerialization, EqualLeavesMayBeAsManyAsTheyLike) {
  const id list = NSArray::arrayWithObjects(std::vector<id>(4'000'000, box(true)));
  EXPECT_EQ(
      std::static_pointer_cast<NSArray>(read(written(list, NSPropertyListFormat::binary)))->count(),
      4'000'000U);
}

TEST(NSPropertyListSerialization, EqualTextsAreReadBackWhereTheyAreWritten) {
  for (const std::size_t size : {9U, 12U, 40U, 41U, 100U}) {
    const id list =
        NSArray::arrayWithObjects(std::vector<id>(3'000'000, box(std::string(size, 'x'))));
    const std::string bytes = written(list, NSPropertyListFormat::binary);
    EXPECT_EQ(bytes.empty(), size > 40) << size;
    if (bytes.empty()) continue;
    EXPECT_TRUE(read(bytes)) << size;
  }
}

TEST(NSPropertyListSerialization, XMLHasTheLimitOfTheBinaryForm) {
  id list = NSArray::array();
  for (int i = 0; i < 22; ++i)
    list = NSArray::arrayWithObjects({list, list});
  Ref<NSError> error;
  EXPECT_FALSE(Serialization::dataWithPropertyList(list, NSPropertyListFormat::xml, &error));
  EXPECT_EQ(error->code(), 3851);
}

TEST(NSPropertyListSerialization, LongTextsAndDataAreReadBackFromXML) {
  const std::string bytes(10'100'000, 'x');
  for (const id& value : {id(box(bytes)), id(NSData::dataWithBytes(bytes))})
    EXPECT_TRUE(objectsAreEqual(read(written(value, NSPropertyListFormat::xml)), value));
}

TEST(NSPropertyListSerialization, PrintsNothingAboutBrokenXML) {
  testing::internal::CaptureStderr();
  expectRefused(xml("<string>" + std::string(11'000'000, 'x')));
  expectRefused(xml("<a b=\"&c;\"/>"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(NSPropertyListSerialization, EntitiesOfADocumentDoNotGrow) {
  std::string type = "<!DOCTYPE plist [<!ENTITY a0 \"xxxxxxxxxx\">";
  for (int i = 1; i < 30; ++i) {
    const std::string inner = "&a" + std::to_string(i - 1) + ";";
    type += "<!ENTITY a" + std::to_string(i) + " \"" + inner + inner + inner + "\">";
  }
  expectRefused(type + "]><plist version=\"&a29;\"><true/></plist>");
}

TEST(NSPropertyListSerialization, ReadsAndWritesAMillionElementsInBinary) {
  std::vector<id> numbers;
  for (long i = 0; i < 1'000'000; ++i)
    numbers.push_back(box(i));
  const id list = NSArray::arrayWithObjects(std::move(numbers));
  EXPECT_TRUE(objectsAreEqual(read(written(list, NSPropertyListFormat::binary)), list));
}

TEST(NSPropertyListSerialization, CollectionsNestNoDeeperThan256InBinary) {
  id list = NSArray::array();
  for (int i = 1; i < 256; ++i)
    list = NSArray::arrayWithObjects({list});
  const std::string deepest = written(list, NSPropertyListFormat::binary);
  EXPECT_TRUE(objectsAreEqual(read(deepest), list));
  EXPECT_EQ(written(NSArray::arrayWithObjects({list}), NSPropertyListFormat::binary), "");
}

TEST(NSPropertyListSerialization, SharedCollectionsCountWithTheirDeepestPlace) {
  id list = NSArray::array();
  for (int i = 1; i < 200; ++i)
    list = NSArray::arrayWithObjects({list});
  id deep = list;
  for (int i = 1; i < 100; ++i)
    deep = NSArray::arrayWithObjects({deep});
  EXPECT_EQ(written(NSArray::arrayWithObjects({list, deep}), NSPropertyListFormat::binary), "");
}

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

TEST(NSPropertyListSerialization, CutsDatesInXMLToWholeSeconds) {
  for (const double seconds : {1.75, -1.75}) {
    const std::string text = written(std::make_shared<NSDate>(seconds), NSPropertyListFormat::xml);
    EXPECT_TRUE(objectsAreEqual(read(text), std::make_shared<NSDate>(seconds < 0 ? -2 : 1)));
  }
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
