// SPDX-License-Identifier: Apache-2.0
//
// What values read as, by the kind that is asked for.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "Platform/Network/NSURL.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/DefaultsInAFile.h"

namespace rvf {
namespace {

using NSUserDefaultsReadingTest = DefaultsInAFile;

TEST_F(NSUserDefaultsReadingTest, TypedReadingsAnswerOnlyTheirKind) {
  const id text = box("t");
  const id list = NSArray::arrayWithObjects({text});
  const id mixed = NSArray::arrayWithObjects({text, box(1)});
  const id map = NSDictionary::dictionary();
  const id data = NSData::data();
  const struct {
    id value;
    std::string string;
    bool isArray, isDictionary, isData, isStringArray;
  } rows[] = {
      {text, "t", false, false, false, false},
      {list, "", true, false, false, true},
      {mixed, "", true, false, false, false},
      {map, "", false, true, false, false},
      {data, "", false, false, true, false},
      {box(5), "5", false, false, false, false},
      {box(1.5), "1.5", false, false, false, false},
      {nullptr, "", false, false, false, false},
      {std::make_shared<NSDate>(0), "", false, false, false, false},
  };
  for (const auto& row : rows) {
    defaults_->setObject(row.value, "k");
    const std::string name = row.value ? row.value->description() : "absent";
    EXPECT_EQ(unboxText(defaults_->stringForKey("k")).value_or(""), row.string) << name;
    EXPECT_EQ(defaults_->arrayForKey("k") != nullptr, row.isArray) << name;
    EXPECT_EQ(defaults_->dictionaryForKey("k") != nullptr, row.isDictionary) << name;
    EXPECT_EQ(defaults_->dataForKey("k") != nullptr, row.isData) << name;
    EXPECT_EQ(defaults_->stringArrayForKey("k") != nullptr, row.isStringArray) << name;
  }
}

TEST_F(NSUserDefaultsReadingTest, NumbersAndTextsReadAsNumbers) {
  const struct {
    id value;
    long integer;
    double fraction;
    bool truth;
  } rows[] = {
      {nullptr, 0, 0, false},
      {box(12), 12, 12, true},
      {box(0.5), 0, 0.5, true},
      {box(true), 1, 1, true},
      {box("12abc"), 12, 12, true},
      {box(" +7"), 7, 7, true},
      {box("YES"), 0, 0, true},
      {box("true"), 0, 0, true},
      {box("1"), 1, 1, true},
      {box("no"), 0, 0, false},
      {box("1.9"), 1, 1.9, true},
      {box("99999999999999999999"), std::numeric_limits<long>::max(), 1e20, true},
      {NSArray::array(), 0, 0, false},
      {NSData::dataWithBytes("1"), 0, 0, false},
  };
  for (const auto& row : rows) {
    defaults_->setObject(row.value, "k");
    const std::string name = row.value ? row.value->description() : "absent";
    EXPECT_EQ(defaults_->integerForKey("k"), row.integer) << name;
    EXPECT_EQ(defaults_->doubleForKey("k"), row.fraction) << name;
    EXPECT_EQ(defaults_->floatForKey("k"), static_cast<float>(row.fraction)) << name;
    EXPECT_EQ(defaults_->boolForKey("k"), row.truth) << name;
  }
}

TEST_F(NSUserDefaultsReadingTest, SettersKeepTheTypeCode) {
  defaults_->setInteger(-3, "integer");
  defaults_->setDouble(2.5, "double");
  defaults_->setFloat(0.5F, "float");
  defaults_->setBool(true, "bool");
  const auto codeOf = [](const id& value) { return dynamic_cast<NSNumber&>(*value).objCType(); };
  EXPECT_EQ(codeOf(defaults_->objectForKey("integer")), "q");
  EXPECT_EQ(codeOf(defaults_->objectForKey("double")), "d");
  EXPECT_EQ(codeOf(defaults_->objectForKey("float")), "f");
  EXPECT_EQ(codeOf(defaults_->objectForKey("bool")), "c");
  defaults_->synchronize();
  EXPECT_EQ(codeOf(stored("bool")), "c");
  EXPECT_EQ(codeOf(stored("integer")), "q");
}

TEST_F(NSUserDefaultsReadingTest, KeepsURLsAsTheirAbsoluteText) {
  const auto base = NSURL::URLWithString("http://h/a/b");
  defaults_->setURL(NSURL::URLWithString("c?d", base), "url");
  EXPECT_EQ(unboxText(defaults_->objectForKey("url")), "http://h/a/c?d");
  EXPECT_TRUE(objectsAreEqual(defaults_->URLForKey("url"), NSURL::URLWithString("http://h/a/c?d")));
  defaults_->setURL(nullptr, "url");
  EXPECT_FALSE(defaults_->objectForKey("url"));
  defaults_->setObject(box("no url"), "url");
  EXPECT_FALSE(defaults_->URLForKey("url"));
  defaults_->setInteger(1, "url");
  EXPECT_FALSE(defaults_->URLForKey("url"));
}

}  // namespace
}  // namespace rvf
