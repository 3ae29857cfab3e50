// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/ErrorWithCode.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(ErrorWithCode, HoldsMessageAndSuggestion) {
  const auto error = ErrorWithCode(304, "The month is out of range.", "Type 1 to 12.");
  EXPECT_EQ(error->domain(), "RVFErrorDomain");
  EXPECT_EQ(error->code(), 304);
  EXPECT_EQ(error->userInfo()->count(), 2U);
  EXPECT_EQ(error->localizedDescription(), "The month is out of range.");
  EXPECT_EQ(error->localizedRecoverySuggestion(), "Type 1 to 12.");
}

TEST(ErrorWithCode, HoldsTheMessageOnlyWithoutSuggestion) {
  const auto error = ErrorWithCode(304, "The month is out of range.");
  EXPECT_EQ(error->userInfo()->count(), 1U);
  EXPECT_EQ(error->userInfo()->textForKey("NSLocalizedDescription"), "The month is out of range.");
  EXPECT_EQ(error->userInfo()->objectForKey("NSLocalizedRecoverySuggestion"), nullptr);
}

TEST(ErrorWithCode, EmptyTextsAreTexts) {
  const auto error = ErrorWithCode(303, "", "");
  EXPECT_EQ(error->userInfo()->textForKey("NSLocalizedDescription"), "");
  EXPECT_EQ(error->userInfo()->textForKey("NSLocalizedRecoverySuggestion"), "");
}

TEST(ErrorWithCodeDeathTest, AnAbsentMessageStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(ErrorWithCode(303, std::nullopt, "Type a date."),
               "message!=nil.*RVFoundation/NSString-RVFExtensions");
}

}  // namespace
}  // namespace rvf
