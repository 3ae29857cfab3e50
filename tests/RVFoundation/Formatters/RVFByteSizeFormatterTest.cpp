// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFByteSizeFormatter.h"

#include <gtest/gtest.h>

#include <limits>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"

namespace rvf {
namespace {

/// A formatter of a program that uses the library.
class OwnByteSizeFormatter final : public RVFByteSizeFormatter {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<OwnByteSizeFormatter>(
                                    "OwnByteSizeFormatter", RVFByteSizeFormatter::classObject())
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
};

class RVFByteSizeFormatterTest : public testing::Test {
 protected:
  RVFByteSizeFormatterTest() {
    NSLocale::setCurrentLocaleIdentifier("en_US");
    RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  }
  ~RVFByteSizeFormatterTest() override {
    RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  }
};

TEST_F(RVFByteSizeFormatterTest, WritesCountsInUnitsOf1024) {
  struct Row {
    std::uint64_t count;
    const char* withUnits;
    const char* withoutUnits;
  };
  const Row rows[] = {
      {0, "0 bytes", "0"},
      {1, "1 byte", "1"},
      {2, "2 bytes", "2"},
      {1023, "1023 bytes", "1023"},
      {1024, "1.0 KB", "1.0"},
      {1536, "1.5 KB", "1.5"},
      {1048575, "1024.0 KB", "1024.0"},
      {1048576, "1.0 MB", "1.0"},
      {1073741823, "1024.0 MB", "1024.0"},
      {1073741824, "1.0 GB", "1.0"},
      {1ULL << 40, "1024.0 GB", "1024.0"},
      {std::numeric_limits<std::uint64_t>::max(), "17179869184.0 GB", "17179869184.0"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(row.count, true), row.withUnits);
    EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(row.count, false), row.withoutUnits);
  }
}

TEST_F(RVFByteSizeFormatterTest, WritesUnitsOnlyIfItIsToldTo) {
  RVFByteSizeFormatter formatter;
  EXPECT_FALSE(formatter.includeUnits());
  EXPECT_EQ(formatter.stringForObjectValue(box(1536)), "1.5");
  formatter.setIncludeUnits(true);
  EXPECT_EQ(formatter.stringForObjectValue(box(1536)), "1.5 KB");
  EXPECT_EQ(formatter.stringForObjectValue(box(1.9)), "1 byte");
  EXPECT_EQ(formatter.stringForObjectValue(box(-1)), "17179869184.0 GB");
}

TEST_F(RVFByteSizeFormatterTest, TranslatesUnitsButNotTheDecimalPoint) {
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(1536, true), "1.5 KB");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(1, true), "1 Byte");
  NSLocale::setCurrentLocaleIdentifier("fr_FR");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(1536, true), "1.5 Ko");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(1, true), "1 octet");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(2, true), "2 octets");
}

TEST_F(RVFByteSizeFormatterTest, TheUnitsComeFromTheBundleOfTheClass) {
  NSLocale::setCurrentLocaleIdentifier("fr_FR");
  OwnByteSizeFormatter formatter;
  formatter.setIncludeUnits(true);
  EXPECT_EQ(formatter.stringForObjectValue(box(2)), "2 bytes");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount<OwnByteSizeFormatter>(2, true), "2 bytes");
  EXPECT_EQ(RVFByteSizeFormatter::stringFromByteCount(2, true), "2 octets");
}

TEST_F(RVFByteSizeFormatterTest, WhatIsNoNumberHasNoText) {
  RVFByteSizeFormatter formatter;
  EXPECT_EQ(formatter.stringForObjectValue(box("1536")), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(NSNull::null()), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(NSDate::date()), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(nullptr), std::nullopt);
}

TEST_F(RVFByteSizeFormatterTest, AttributesGoOverTheWholeText) {
  RVFByteSizeFormatter formatter;
  const auto attributes = NSDictionary::dictionaryWithEntries({{"size", box(12)}});
  const auto text = formatter.attributedStringForObjectValue(box(1536), attributes);
  EXPECT_EQ(text->string(), "1.5");
  EXPECT_TRUE(text->attributesAtIndex(2)->isEqual(attributes.get()));
}

TEST_F(RVFByteSizeFormatterTest, AttributedTextOfNoNumberRaises) {
  RVFByteSizeFormatter formatter;
  try {
    formatter.attributedStringForObjectValue(box("1536"), nullptr);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
  }
}

TEST_F(RVFByteSizeFormatterTest, TheFlagIsReadAndSetBySelector) {
  const auto formatter = std::make_shared<RVFByteSizeFormatter>();
  EXPECT_FALSE(send<bool>(formatter, SEL("includeUnits")));
  send(formatter, SEL("setIncludeUnits:"), true);
  EXPECT_TRUE(send<bool>(formatter, SEL("includeUnits")));
  EXPECT_EQ(formatter->stringForObjectValue(box(1536)), "1.5 KB");
}

TEST_F(RVFByteSizeFormatterTest, DescribesItselfToTheRuntime) {
  const Class described = objc_getClass("RVFByteSizeFormatter");
  const auto properties = class_copyPropertyList(described);
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "includeUnits");
  EXPECT_EQ(properties[0].attributes, "Tc,N,V_includeUnits");
  const Ivar* flag = class_getInstanceVariable(described, "_includeUnits");
  ASSERT_NE(flag, nullptr);
  EXPECT_EQ(ivar_getTypeEncoding(*flag), "c");
}

}  // namespace
}  // namespace rvf
