// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFSecondsToHoursFormatter.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

Ref<NSNumberFormatter> decimals(const char* pattern) {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setLocale(NSLocale::localeWithLocaleIdentifier("en_US"));
  formatter->setPositiveFormat(pattern);
  return formatter;
}

/// Shows what it is given.
class ExactFormatter final : public NSFormatter {
 public:
  std::optional<std::string> stringForObjectValue(const id& value) override {
    return std::dynamic_pointer_cast<NSDecimalNumber>(value)->stringValue();
  }
};

TEST(RVFSecondsToHoursFormatter, WritesHoursThroughItsDecimalFormatter) {
  RVFSecondsToHoursFormatter formatter;
  formatter.setDecimalFormatter(decimals("0.#"));
  EXPECT_EQ(formatter.stringForObjectValue(box(5400)), "1.5");
  EXPECT_EQ(formatter.stringForObjectValue(box(-5400.0)), "-1.5");
  EXPECT_EQ(formatter.stringForObjectValue(box("5400")), "0");
  EXPECT_EQ(formatter.stringForObjectValue(NSNull::null()), "0");
  EXPECT_EQ(formatter.stringForObjectValue(NSDate::dateWithTimeIntervalSinceReferenceDate(5400)),
            "0");
  EXPECT_EQ(formatter.stringForObjectValue(nullptr), "0");
}

TEST(RVFSecondsToHoursFormatter, HandsOverTheShortestDecimalOfTheQuotient) {
  RVFSecondsToHoursFormatter formatter;
  formatter.setDecimalFormatter(std::make_shared<ExactFormatter>());
  const std::pair<double, const char*> rows[] = {{1260, "0.35"},
                                                 {3600, "1"},
                                                 {1, "0.0002777777777777778"},
                                                 {std::numeric_limits<double>::quiet_NaN(), "NaN"},
                                                 {1e300, "NaN"}};
  for (const auto& [seconds, expected] : rows)
    EXPECT_EQ(formatter.stringForObjectValue(box(seconds)), expected) << seconds;
}

TEST(RVFSecondsToHoursFormatter, HasNoTextWithoutADecimalFormatter) {
  RVFSecondsToHoursFormatter formatter;
  EXPECT_EQ(formatter.decimalFormatter(), nullptr);
  EXPECT_EQ(formatter.stringForObjectValue(box(5400)), std::nullopt);
}

TEST(RVFSecondsToHoursFormatter, ConcurrentThreadsMaySetAndReadTheDecimalFormatter) {
  RVFSecondsToHoursFormatter formatter;
  std::thread setter([&formatter] {
    for (int i = 0; i < 1000; ++i)
      formatter.setDecimalFormatter(i % 2 == 0 ? decimals("0") : nullptr);
  });
  for (int i = 0; i < 1000; ++i) {
    const auto current = formatter.decimalFormatter();
    EXPECT_TRUE(!current || std::dynamic_pointer_cast<NSNumberFormatter>(current));
  }
  setter.join();
  EXPECT_EQ(formatter.decimalFormatter(), nullptr);
}

TEST(RVFSecondsToHoursFormatter, TheDecimalFormatterIsAnAtomicProperty) {
  const auto properties = class_copyPropertyList(objc_getClass("RVFSecondsToHoursFormatter"));
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "decimalFormatter");
  EXPECT_EQ(properties[0].attributes, "T@\"NSFormatter\",&,V_decimalFormatter");
}

}  // namespace
}  // namespace rvf
