// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFPhoneNumberFormatter.h"

#include <gtest/gtest.h>

#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(RVFPhoneNumberFormatter, GroupsByLength) {
  const std::pair<const char*, const char*> rows[] = {
      {"5551234", "555-1234"},
      {"6045551234", "(604) 555-1234"},
      {"16045551234", "1 (604) 555-1234"},
      {"160455512345", "160455512345"},
      {"", ""},
      {"123456", "123456"},
      {"12345678", "12345678"},
      {"555-123", "555--123"},
      {"%@%d%n1", "%@%-d%n1"},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(RVFPhoneNumberFormatter::stringFromPhoneNumber(text), expected) << text;
}

TEST(RVFPhoneNumberFormatter, CountsUTF16Units) {
  EXPECT_EQ(RVFPhoneNumberFormatter::stringFromPhoneNumber("äöü1234"), "äöü-1234");
  EXPECT_EQ(RVFPhoneNumberFormatter::stringFromPhoneNumber("5\U0001F6001234"), "5\U0001F600-1234");
}

TEST(RVFPhoneNumberFormatter, LeavesOutACharacterThatAGroupHalves) {
  EXPECT_EQ(RVFPhoneNumberFormatter::stringFromPhoneNumber("55\U0001F600123"), "55-123");
}

TEST(RVFPhoneNumberFormatter, WhatIsNoTextIsEmpty) {
  RVFPhoneNumberFormatter formatter;
  EXPECT_EQ(formatter.stringForObjectValue(box("5551234")), "555-1234");
  EXPECT_EQ(formatter.stringForObjectValue(box(5551234)), "");
  EXPECT_EQ(formatter.stringForObjectValue(nullptr), "");
  EXPECT_EQ(RVFPhoneNumberFormatter::stringFromPhoneNumber(std::nullopt), "");
}

TEST(RVFPhoneNumberFormatter, BytesThatAreNoTextAreCountedAndKept) {
  EXPECT_EQ(RVFPhoneNumberFormatter::stringFromPhoneNumber("\xFF\xFF\xFF"
                                                           "1234"),
            "\xFF\xFF\xFF-1234");
}

}  // namespace
}  // namespace rvf
