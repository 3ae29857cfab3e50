// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSDecimalNumberHandler.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

/// What the handler raises for the error, or nothing.
std::string raisedBy(const NSDecimalNumberHandler& handler, NSCalculationError error) {
  try {
    handler.valueOf({NSDecimal(), error});
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "";
}

TEST(NSDecimalNumberHandler, RaisesWhatItIsToldTo) {
  for (unsigned flags = 0; flags < 16; ++flags) {
    const auto raises = [flags](unsigned bit) { return (flags & bit) != 0; };
    const NSDecimalNumberHandler handler(NSRoundPlain, 2, raises(1), raises(2), raises(4),
                                         raises(8));
    const auto expected = [](bool isRaised, std::string_view name) {
      return std::string(isRaised ? name : "");
    };
    EXPECT_EQ(raisedBy(handler, NSCalculationNoError), "");
    EXPECT_EQ(raisedBy(handler, NSCalculationLossOfPrecision),
              expected(raises(1), "NSDecimalNumberExactnessException"));
    EXPECT_EQ(raisedBy(handler, NSCalculationOverflow),
              expected(raises(2), "NSDecimalNumberOverflowException"));
    EXPECT_EQ(raisedBy(handler, NSCalculationUnderflow),
              expected(raises(4), "NSDecimalNumberUnderflowException"));
    EXPECT_EQ(raisedBy(handler, NSCalculationDivideByZero),
              expected(raises(8), "NSDecimalNumberDivideByZeroException"));
  }
}

TEST(NSDecimalNumberHandler, TheDefaultRaisesAllButInexactness) {
  const auto handler = NSDecimalNumberHandler::defaultDecimalNumberHandler();
  EXPECT_EQ(handler->roundingMode(), NSRoundPlain);
  EXPECT_EQ(handler->scale(), NSDecimalNoScale);
  EXPECT_EQ(raisedBy(*handler, NSCalculationLossOfPrecision), "");
  EXPECT_NE(raisedBy(*handler, NSCalculationOverflow), "");
  EXPECT_NE(raisedBy(*handler, NSCalculationUnderflow), "");
  EXPECT_NE(raisedBy(*handler, NSCalculationDivideByZero), "");
}

}  // namespace
}  // namespace rvf
