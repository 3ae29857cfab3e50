// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"

#include <errno.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Storage/FileContents.h"
#include "Platform/Storage/NSPropertyListSerialization.h"
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

TEST_F(RVFColumnWidthRegistryTest, AnswersZerosBeforeAnythingIsLoaded) {
  EXPECT_EQ(registry_.registry(), nullptr);
  EXPECT_EQ(summary(registry_, "orders", "number"), "0 0 no 0");
  EXPECT_NE(registry_.columnWidthInfoForKey("a", "b"), registry_.columnWidthInfoForKey("a", "b"));
}

TEST_F(RVFColumnWidthRegistryTest, KeepsTheOldRegistryIfLoadingFails) {
  ASSERT_TRUE(load(kOlderText));
  const auto before = registry_.registry();
  for (const char* damaged : {"bplist00 damaged", "<plist><dict>", "{ a = ", "{ a = b; } x"}) {
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
