// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/stat.h>

#include <limits>
#include <string>
#include <string_view>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Storage/FileContents.h"
#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

constexpr std::string_view kOlderText = R"({
  orders = {
    "Default Column Width" = 80; "Minimum Column Width" = "30.5";
    "Auto-Resize Width" = YES; "List Order" = -3;
    Columns = {
      number = { "Default Column Width" = 60.25; };
      customer = { "Default Column Width" = 0; "Minimum Column Width" = 12;
                   "Auto-Resize Width" = NO; "List Order" = 7; };
    };
  };
  plain = { Columns = { name = { "List Order" = 2; }; }; };
  alone = { "Default Column Width" = 5; };
  broken = { Columns = ( a, b ); "Default Column Width" = 9; };
  text = word;
})";

id parsed(std::string_view text) {
  return NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text));
}

/// "default minimum autoresize order".
std::string summary(const RVFColumnWidthRegistry& registry, std::string_view table,
                    std::string_view column) {
  const auto info = registry.columnWidthInfoForKey(column, table);
  return box(info->defaultWidth())->stringValue() + " " + box(info->minimumWidth())->stringValue() +
         " " + (info->autoresize() ? "yes" : "no") + " " + std::to_string(info->listOrder());
}

class RVFColumnWidthRegistryTest : public testing::Test {
 protected:
  /// What loading these bytes answers.
  bool load(std::string_view bytes, Ref<NSError>* error = nullptr) {
    writeBytes(folder_.file("columns.plist"), bytes);
    return registry_.loadFromFile(NSURL::fileURLWithPath(folder_.file("columns.plist")), error);
  }
  /// Of a column that has one value everywhere.
  Ref<RVFColumnWidthInfo> infoOf(const id& value) {
    const auto column = NSDictionary::dictionaryWithEntries({{"Default Column Width", value},
                                                             {"Minimum Column Width", value},
                                                             {"Auto-Resize Width", value},
                                                             {"List Order", value}});
    registry_.setRegistry(NSDictionary::dictionaryWithEntries(
        {{"t", NSDictionary::dictionaryWithEntries(
                   {{"Columns", NSDictionary::dictionaryWithEntries({{"c", column}})}})}}));
    return registry_.columnWidthInfoForKey("c", "t");
  }
  long codeOfLoading(const Ref<NSURL>& location) {
    Ref<NSError> error;
    EXPECT_FALSE(registry_.loadFromFile(location, &error));
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    return error->code();
  }

  const TemporaryFolder folder_;
  RVFColumnWidthRegistry registry_;
};

TEST_F(RVFColumnWidthRegistryTest, AnswersFromColumnTableOrNeither) {
  struct Row {
    const char* table;
    const char* column;
    const char* summary;
  };
  const Row rows[] = {
      {"orders", "number", "60.25 30.5 yes -3"},  // the rest from its table
      {"orders", "customer", "0 12 no 7"},        // everything its own, 0 and false too
      {"orders", "unknown", "80 30.5 yes -3"},
      {"orders", "Columns", "80 30.5 yes -3"},
      {"plain", "name", "0 0 no 2"},
      {"plain", "unknown", "0 0 no 0"},
      {"alone", "name", "5 0 no 0"},
      {"unknown", "number", "0 0 no 0"},
      {"", "", "0 0 no 0"},
      {"broken", "a", "9 0 no 0"},
      {"text", "a", "0 0 no 0"},
  };
  ASSERT_TRUE(load(kOlderText));
  for (const Row& row : rows)
    EXPECT_EQ(summary(registry_, row.table, row.column), row.summary)
        << row.table << " " << row.column;
}

TEST_F(RVFColumnWidthRegistryTest, ReadsEveryFormOfPropertyLists) {
  const id root = parsed(kOlderText);
  for (const auto format : {NSPropertyListFormat::xml, NSPropertyListFormat::binary}) {
    registry_.setRegistry(nullptr);
    ASSERT_TRUE(
        load(NSPropertyListSerialization::dataWithPropertyList(root, format)->characters()));
    EXPECT_EQ(summary(registry_, "orders", "number"), "60.25 30.5 yes -3");
  }
}

TEST_F(RVFColumnWidthRegistryTest, ReadsNumbersAndTruthValues) {
  ASSERT_TRUE(load(R"(<?xml version="1.0"?><plist version="1.0"><dict><key>t</key><dict>
    <key>Columns</key><dict><key>c</key><dict>
      <key>Default Column Width</key><real>60.5</real>
      <key>Minimum Column Width</key><integer>20</integer>
      <key>Auto-Resize Width</key><true/>
      <key>List Order</key><real>3.9</real></dict>
    <key>d</key><dict>
      <key>Default Column Width</key><true/>
      <key>Minimum Column Width</key><array/>
      <key>Auto-Resize Width</key><integer>2</integer>
      <key>List Order</key><date>2024-03-01T00:00:00Z</date></dict></dict></dict></dict></plist>)"));
  EXPECT_EQ(summary(registry_, "t", "c"), "60.5 20 yes 3");
  EXPECT_EQ(summary(registry_, "t", "d"), "1 0 yes 0");
}

TEST_F(RVFColumnWidthRegistryTest, ReadsTextsAsNumbers) {
  struct Row {
    const char* text;
    double width;
    long order;
  };
  constexpr long kMost = std::numeric_limits<long>::max();
  constexpr long kLeast = std::numeric_limits<long>::min();
  const Row rows[] = {{"60", 60, 60},
                      {"60.75", 60.75, 60},
                      {"-3.9", -3.9, -3},
                      {"+7", 7, 7},
                      {".5", 0.5, 0},
                      {"1e2", 100, 1},
                      {" \n 12", 12, 12},
                      {"12 pt", 12, 12},
                      {"1,5", 1, 1},
                      {"0x10", 0, 0},
                      {"", 0, 0},
                      {"wide", 0, 0},
                      {"٣", 0, 0},
                      {"9223372036854775807", 9223372036854775807.0, kMost},
                      {"9223372036854775808", 9223372036854775808.0, kMost},
                      {"-9999999999999999999", -9999999999999999999.0, kLeast}};
  for (const Row& row : rows) {
    const auto info = infoOf(box(row.text));
    EXPECT_EQ(info->defaultWidth(), row.width) << row.text;
    EXPECT_EQ(info->minimumWidth(), row.width) << row.text;
    EXPECT_EQ(info->listOrder(), row.order) << row.text;
  }
}

TEST_F(RVFColumnWidthRegistryTest, ReadsTextsAsTruthValues) {
  for (const char* yes : {"YES", "yes", "Y", "true", "TRUE", "t", "1", "9", "01", "-1", "+0001",
                          " \t1", "2 of 3", "Yo"})
    EXPECT_TRUE(infoOf(box(yes))->autoresize()) << yes;
  for (const char* no : {"NO", "no", "N", "false", "f", "0", "-0", "00", "", " ", "on", "\n1",
                         "0.5", ".1", "maybe", "١"})
    EXPECT_FALSE(infoOf(box(no))->autoresize()) << no;
}

TEST_F(RVFColumnWidthRegistryTest, ReadsNumbersAsTheyAre) {
  struct Row {
    Ref<NSNumber> number;
    double width;
    bool autoresize;
    long order;
  };
  const Row rows[] = {
      {box(true), 1, true, 1},  {box(false), 0, false, 0}, {box(2), 2, true, 2},
      {box(-1), -1, true, -1},  {box(0), 0, false, 0},     {box(-0.0), 0, false, 0},
      {box(0.5), 0.5, true, 0}, {box(3.9), 3.9, true, 3},  {box(-3.9), -3.9, true, -3}};
  for (const Row& row : rows) {
    const auto info = infoOf(row.number);
    EXPECT_EQ(info->defaultWidth(), row.width) << row.number->description();
    EXPECT_EQ(info->minimumWidth(), row.width) << row.number->description();
    EXPECT_EQ(info->autoresize(), row.autoresize) << row.number->description();
    EXPECT_EQ(info->listOrder(), row.order) << row.number->description();
  }
}

TEST_F(RVFColumnWidthRegistryTest, AValueThatCannotBeReadIsNotTakenFromTheTable) {
  for (const char* unreadable : {"( 5 )", "{ a = 5; }", "<05>", "wide"}) {
    ASSERT_TRUE(load(std::string("{ t = { \"Default Column Width\" = 80; Columns = { c = {"
                                 "\"Default Column Width\" = ") +
                     unreadable + "; }; }; }; }"));
    EXPECT_EQ(summary(registry_, "t", "c"), "0 0 no 0") << unreadable;
    EXPECT_EQ(summary(registry_, "t", "d"), "80 0 no 0") << unreadable;
  }
}

TEST_F(RVFColumnWidthRegistryTest, WhatIsLoadedCannotBeChanged) {
  const id root = parsed(kOlderText);
  for (const auto format : {NSPropertyListFormat::xml, NSPropertyListFormat::binary}) {
    ASSERT_TRUE(
        load(NSPropertyListSerialization::dataWithPropertyList(root, format)->characters()));
    EXPECT_EQ(std::dynamic_pointer_cast<NSMutableDictionary>(registry_.registry()), nullptr);
    const id table = registry_.registry()->objectForKey("orders");
    EXPECT_EQ(std::dynamic_pointer_cast<NSMutableDictionary>(table), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<NSDictionary>(table), nullptr);
  }
}

TEST_F(RVFColumnWidthRegistryTest, AFileThatWasCutShortKeepsTheOldRegistry) {
  constexpr std::string_view kSmall =
      "{ t = { \"List Order\" = 1; Columns = { c = { a = <0102>; }; }; }; }";
  const id root = parsed(kSmall);
  const auto written = [&root](NSPropertyListFormat format) {
    return std::string(
        NSPropertyListSerialization::dataWithPropertyList(root, format)->characters());
  };
  ASSERT_TRUE(load(kOlderText));
  const auto before = registry_.registry();
  for (std::string bytes : {std::string(kSmall), written(NSPropertyListFormat::xml),
                            written(NSPropertyListFormat::binary)}) {
    while (!bytes.empty() && bytes.back() == '\n')
      bytes.pop_back();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      Ref<NSError> error;
      ASSERT_FALSE(load(bytes.substr(0, length), &error)) << bytes.substr(0, length);
      EXPECT_EQ(error->code(), NSPropertyListReadCorruptError) << length;
      ASSERT_EQ(registry_.registry(), before) << length;
    }
  }
}

TEST_F(RVFColumnWidthRegistryTest, AnswersZerosBeforeAnythingIsLoaded) {
  EXPECT_EQ(registry_.registry(), nullptr);
  EXPECT_EQ(summary(registry_, "orders", "number"), "0 0 no 0");
  EXPECT_NE(registry_.columnWidthInfoForKey("a", "b"), registry_.columnWidthInfoForKey("a", "b"));
}

TEST_F(RVFColumnWidthRegistryTest, KeepsTheOldRegistryIfLoadingFails) {
  ASSERT_TRUE(load(kOlderText));
  const auto before = registry_.registry();
  for (const char* damaged : {"", " ", "bplist00 damaged", "<plist><dict>",
                              "{ a = ", "{ a = b; } x", R"({"orders": {"List Order": 1}})"}) {
    Ref<NSError> error;
    EXPECT_FALSE(load(damaged, &error)) << damaged;
    ASSERT_NE(error, nullptr) << damaged;
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSPropertyListReadCorruptError) << damaged;
    EXPECT_EQ(registry_.registry(), before) << damaged;
    EXPECT_FALSE(load(damaged)) << damaged;
  }
  EXPECT_EQ(summary(registry_, "orders", "number"), "60.25 30.5 yes -3");
}

TEST_F(RVFColumnWidthRegistryTest, ARootThatIsNoDictionaryIsDamage) {
  ASSERT_TRUE(load(kOlderText));
  const auto before = registry_.registry();
  for (const char* other :
       {"word", "( a, b )", "<plist version=\"1.0\"><integer>1</integer></plist>"}) {
    Ref<NSError> error;
    EXPECT_FALSE(load(other, &error)) << other;
    EXPECT_EQ(error->code(), NSPropertyListReadCorruptError) << other;
    EXPECT_FALSE(load(other)) << other;
    EXPECT_EQ(registry_.registry(), before);
  }
}

TEST_F(RVFColumnWidthRegistryTest, AFileThatCannotBeReadGivesThePlatformsError) {
  ASSERT_TRUE(load(kOlderText));
  const auto before = registry_.registry();
  EXPECT_EQ(codeOfLoading(NSURL::fileURLWithPath(folder_.file("missing"))),
            NSFileReadNoSuchFileError);
  EXPECT_EQ(codeOfLoading(NSURL::fileURLWithPath(folder_.path().string())), NSFileReadUnknownError);
  EXPECT_EQ(codeOfLoading(NSURL::URLWithString("http://host/columns.plist")),
            NSFileReadUnknownError);
  EXPECT_EQ(codeOfLoading(NSURL::URLWithString("file:///tmp%00/x")), NSFileReadUnknownError);
  EXPECT_EQ(codeOfLoading(nullptr), NSFileReadUnknownError);
  EXPECT_EQ(registry_.registry(), before);
}

TEST_F(RVFColumnWidthRegistryTest, AFileThatMayNotBeReadHasACodeOfItsOwn) {
  constexpr uid_t kNobody = 65534;
  ASSERT_TRUE(load(kOlderText));
  const auto before = registry_.registry();
  const auto location = NSURL::fileURLWithPath(folder_.file("columns.plist"));
  ASSERT_EQ(chmod(folder_.file("columns.plist").c_str(), 0), 0);
  // Root may read everything; its file accesses alone can be another user's.
  const auto user = static_cast<uid_t>(setfsuid(kNobody));
  const long code = codeOfLoading(location);
  setfsuid(user);
  EXPECT_EQ(code, NSFileReadNoPermissionError);
  EXPECT_EQ(code, 257);
  EXPECT_EQ(registry_.registry(), before);
}

TEST_F(RVFColumnWidthRegistryTest, TheErrorOfAMissingFileNamesItsPathAndCause) {
  const std::string path = folder_.file("missing");
  Ref<NSError> error;
  EXPECT_FALSE(registry_.loadFromFile(NSURL::fileURLWithPath(path), &error));
  EXPECT_EQ(error->userInfo()->textForKey("NSFilePath"), path);
  ASSERT_NE(error->underlyingError(), nullptr);
  EXPECT_EQ(error->underlyingError()->domain(), NSPOSIXErrorDomain);
  EXPECT_EQ(error->underlyingError()->code(), ENOENT);
}

TEST_F(RVFColumnWidthRegistryTest, AnErrorIsWrittenOnlyOnFailure) {
  const auto untouched = NSError::errorWithDomain("untouched", 1);
  Ref<NSError> error = untouched;
  EXPECT_TRUE(load(kOlderText, &error));
  EXPECT_EQ(error, untouched);
}

TEST_F(RVFColumnWidthRegistryTest, ALaterFileTakesThePlaceOfTheEarlier) {
  ASSERT_TRUE(load(kOlderText));
  ASSERT_TRUE(load("{ other = { \"List Order\" = 1; }; }"));
  EXPECT_EQ(summary(registry_, "orders", "number"), "0 0 no 0");
  EXPECT_EQ(summary(registry_, "other", "any"), "0 0 no 1");
}

TEST_F(RVFColumnWidthRegistryTest, TheFirstDictionarysValueCounts) {
  const auto first = NSDictionary::dictionaryWithEntries({{"a", box(1)}});
  const auto second = NSDictionary::dictionaryWithEntries({{"a", box(2)}, {"b", box(3)}});
  EXPECT_TRUE(objectsAreEqual(registry_.objectForKey("a", first, second), box(1)));
  EXPECT_TRUE(objectsAreEqual(registry_.objectForKey("b", first, second), box(3)));
  EXPECT_EQ(registry_.objectForKey("c", first, second), nullptr);
  EXPECT_TRUE(objectsAreEqual(registry_.objectForKey("b", nullptr, second), box(3)));
  EXPECT_TRUE(objectsAreEqual(registry_.objectForKey("a", first, nullptr), box(1)));
  EXPECT_EQ(registry_.objectForKey("a", nullptr, nullptr), nullptr);
}

TEST_F(RVFColumnWidthRegistryTest, AnswersMessages) {
  const auto registry = std::make_shared<RVFColumnWidthRegistry>();
  registry->setRegistry(std::dynamic_pointer_cast<NSDictionary>(parsed(kOlderText)));
  const auto info =
      send<Ref<RVFColumnWidthInfo>>(registry, SEL("columnWidthInfoForKey:andTableIdentifier:"),
                                    std::string_view("number"), std::string_view("orders"));
  EXPECT_EQ(send<double>(info, SEL("defaultWidth")), 60.25);
  EXPECT_EQ(send<bool>(info, SEL("autoresize")), true);
}

TEST(RVFColumnWidthInfo, HoldsWhatIsSetAndNothingAtFirst) {
  RVFColumnWidthInfo info;
  EXPECT_EQ(info.defaultWidth(), 0);
  EXPECT_EQ(info.minimumWidth(), 0);
  EXPECT_FALSE(info.autoresize());
  EXPECT_EQ(info.listOrder(), 0);
  info.setDefaultWidth(1.5);
  info.setMinimumWidth(0.5);
  info.setAutoresize(true);
  info.setListOrder(std::numeric_limits<long>::min());
  EXPECT_EQ(info.defaultWidth(), 1.5);
  EXPECT_EQ(info.minimumWidth(), 0.5);
  EXPECT_TRUE(info.autoresize());
  EXPECT_EQ(info.listOrder(), std::numeric_limits<long>::min());
}

}  // namespace
}  // namespace rvf
