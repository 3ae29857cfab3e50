// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFBooleanFormatter.h"

#include <gtest/gtest.h>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"

namespace rvf {
namespace {

TEST(RVFBooleanFormatter, WritesWhateverAnswersATruthValue) {
  NSLocale::setCurrentLocaleIdentifier("en_US");
  const std::pair<id, std::optional<std::string>> rows[] = {
      {box(true), "true"},
      {box(false), "false"},
      {box(0), "false"},
      {box(-7), "true"},
      {box(0.5), "true"},
      {NSDecimalNumber::decimalNumberWithString("0.1"), "true"},
      {box("yes"), "true"},
      {box("no"), "false"},
      {box("\n1"), "false"},
      {NSDate::dateWithTimeIntervalSinceReferenceDate(1), std::nullopt},
      {NSNull::null(), std::nullopt},
      {nullptr, std::nullopt},
  };
  RVFBooleanFormatter formatter;
  for (const auto& [value, expected] : rows)
    EXPECT_EQ(formatter.stringForObjectValue(value), expected);
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
}

TEST(RVFBooleanFormatter, SpeaksTheUsersLanguage) {
  RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  EXPECT_EQ(RVFBooleanFormatter().stringForObjectValue(box(1)), "wahr");
  EXPECT_EQ(RVFBooleanFormatter().stringForObjectValue(box(0)), "falsch");
  EXPECT_EQ(RVFStringFromBool(true), "true");
  EXPECT_EQ(RVFStringFromBool(false), "false");
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
}

}  // namespace
}  // namespace rvf
