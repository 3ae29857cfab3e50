// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSDecimalNumberHandler.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSDecimalNumberHandler::classObject);

}  // namespace

NSDecimalNumberHandler::NSDecimalNumberHandler(NSRoundingMode roundingMode, int scale,
                                               bool raiseOnExactness, bool raiseOnOverflow,
                                               bool raiseOnUnderflow, bool raiseOnDivideByZero)
    : roundingMode_(roundingMode),
      scale_(scale),
      raiseOnExactness_(raiseOnExactness),
      raiseOnOverflow_(raiseOnOverflow),
      raiseOnUnderflow_(raiseOnUnderflow),
      raiseOnDivideByZero_(raiseOnDivideByZero) {}

Ref<NSDecimalNumberHandler> NSDecimalNumberHandler::defaultDecimalNumberHandler() {
  static const auto kHandler =
      decimalNumberHandlerWithRoundingMode(NSRoundPlain, NSDecimalNoScale, false, true, true, true);
  return kHandler;
}

Ref<NSDecimalNumberHandler> NSDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(
    NSRoundingMode roundingMode, int scale, bool raiseOnExactness, bool raiseOnOverflow,
    bool raiseOnUnderflow, bool raiseOnDivideByZero) {
  return std::make_shared<NSDecimalNumberHandler>(roundingMode, scale, raiseOnExactness,
                                                  raiseOnOverflow, raiseOnUnderflow,
                                                  raiseOnDivideByZero);
}

Class NSDecimalNumberHandler::classObject() {
  static const Class kClass =
      ClassBuilder<NSDecimalNumberHandler>("NSDecimalNumberHandler", NSObject::classObject())
          .method<&NSDecimalNumberHandler::roundingMode>("roundingMode")
          .method<&NSDecimalNumberHandler::scale>("scale")
          .registered();
  return kClass;
}

Class NSDecimalNumberHandler::isa() const {
  return classObject();
}

NSDecimal NSDecimalNumberHandler::valueOf(const NSDecimalResult& result) const {
  switch (result.error) {
    case NSCalculationNoError:
      break;
    case NSCalculationLossOfPrecision:
      if (raiseOnExactness_)
        NSException::raise(NSDecimalNumberExactnessException,
                           "NSDecimalNumber exactness exception");
      break;
    case NSCalculationUnderflow:
      if (raiseOnUnderflow_)
        NSException::raise(NSDecimalNumberUnderflowException,
                           "NSDecimalNumber underflow exception");
      break;
    case NSCalculationOverflow:
      if (raiseOnOverflow_)
        NSException::raise(NSDecimalNumberOverflowException, "NSDecimalNumber overflow exception");
      break;
    case NSCalculationDivideByZero:
      if (raiseOnDivideByZero_)
        NSException::raise(NSDecimalNumberDivideByZeroException,
                           "NSDecimalNumber divide by zero exception");
      break;
  }
  return result.value;
}

}  // namespace rvf
