// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/PropertyListBytes.h"

namespace rvf {
namespace {

TEST(XMLPropertyList, ReadsEveryElementOfXML) {
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

TEST(XMLPropertyList, RefusesWhatXMLAllowsButNoPropertyListIs) {
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

TEST(XMLPropertyList, RefusesBrokenXML) {
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

TEST(XMLPropertyList, FollowsNoEntityOfADocument) {
  expectRefused(
      "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/hostname\">]>"
      "<plist><string>&a;</string></plist>");
  expectRefused("<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>");
  EXPECT_TRUE(
      read("<!DOCTYPE plist SYSTEM \"http://localhost:1/none.dtd\"><plist><true/></plist>"));
}

TEST(XMLPropertyList, EntitiesOfADocumentDoNotGrow) {
  std::string type = "<!DOCTYPE plist [<!ENTITY a0 \"xxxxxxxxxx\">";
  for (int i = 1; i < 30; ++i) {
    const std::string inner = "&a" + std::to_string(i - 1) + ";";
    type += "<!ENTITY a" + std::to_string(i) + " \"" + inner + inner + inner + "\">";
  }
  expectRefused(type + "]><plist version=\"&a29;\"><true/></plist>");
}

TEST(XMLPropertyList, PrintsNothingAboutBrokenXML) {
  testing::internal::CaptureStderr();
  expectRefused(xml("<string>" + std::string(11'000'000, 'x')));
  expectRefused(xml("<a b=\"&c;\"/>"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(XMLPropertyList, LongTextsAndDataAreReadBackFromXML) {
  const std::string bytes(10'100'000, 'x');
  for (const id& value : {id(box(bytes)), id(NSData::dataWithBytes(bytes))})
    EXPECT_TRUE(objectsAreEqual(read(written(value, NSPropertyListFormat::xml)), value));
}

TEST(XMLPropertyList, CutsDatesInXMLToWholeSeconds) {
  for (const double seconds : {1.75, -1.75}) {
    const std::string text = written(std::make_shared<NSDate>(seconds), NSPropertyListFormat::xml);
    EXPECT_TRUE(objectsAreEqual(read(text), std::make_shared<NSDate>(seconds < 0 ? -2 : 1)));
  }
}

}  // namespace
}  // namespace rvf
