// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSException.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace rvf {
namespace {

TEST(NSException, CarriesNameReasonAndBothAsItsText) {
  try {
    NSException::raise(NSRangeException, "index 2 beyond bounds [0 .. 1]");
    FAIL() << "nothing was raised";
  } catch (const std::exception& exception) {
    EXPECT_STREQ(exception.what(), "NSRangeException: index 2 beyond bounds [0 .. 1]");
  }
}

TEST(NSException, MayHaveAnEmptyReason) {
  const NSException exception(NSGenericException, "");
  EXPECT_EQ(exception.name(), "NSGenericException");
  EXPECT_EQ(exception.reason(), "");
}

TEST(NSException, CopiesWithoutFailing) {
  static_assert(std::is_nothrow_copy_constructible_v<NSException>);
  const NSException exception("Name", "reason");
  const NSException copy = exception;
  EXPECT_EQ(copy.reason(), exception.reason());
}

TEST(NSException, NamesEqualTheirOwnConstants) {
  EXPECT_EQ(NSRangeException, "NSRangeException");
  EXPECT_EQ(NSInvalidArgumentException, "NSInvalidArgumentException");
  EXPECT_EQ(NSGenericException, "NSGenericException");
  EXPECT_EQ(NSInternalInconsistencyException, "NSInternalInconsistencyException");
  EXPECT_EQ(NSDestinationInvalidException, "NSDestinationInvalidException");
}

}  // namespace
}  // namespace rvf
