// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFUppercaseFormatter.h"

#include <gtest/gtest.h>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(RVFUppercaseFormatter, RaisesTextInEveryLocaleAlike) {
  RVFUppercaseFormatter formatter;
  for (const char* locale : {"en_US", "tr_TR", "lt_LT"}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    EXPECT_EQ(formatter.stringForObjectValue(box("straße i")), "STRASSE I") << locale;
  }
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(box("")), "");
}

TEST(RVFUppercaseFormatter, KeepsBytesThatBelongToNoCharacter) {
  RVFUppercaseFormatter formatter;
  EXPECT_EQ(formatter.stringForObjectValue(box("a\xFF"
                                               "é\xC3")),
            "A\xFF"
            "É\xC3");
}

TEST(RVFUppercaseFormatter, WhatIsNoTextHasNone) {
  RVFUppercaseFormatter formatter;
  EXPECT_EQ(formatter.stringForObjectValue(box(1)), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(nullptr), std::nullopt);
}

}  // namespace
}  // namespace rvf
