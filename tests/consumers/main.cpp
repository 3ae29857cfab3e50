// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Values/NSError.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/CoreServices/RVFRecoveryAttempterBlock.h"

// Uses a class of each layer, so that both libraries must be found, linked and loaded.
int main() {
  const rvf::NSAutoreleasePool pool;
  const auto error =
      rvf::NSError::errorWithDomain(rvf::RVFErrorDomain, rvf::RVFExpiryDateFormatError);
  const auto attempter = rvf::RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [](const rvf::Ref<rvf::NSError>& failure, std::size_t option, rvf::Ref<rvf::NSError>*) {
        return failure->code() == rvf::RVFExpiryDateFormatError && option == 1;
      });
  const bool recovered = attempter->attemptRecoveryFromError(error, 1);
  std::cout << error->domain() << (recovered ? " recovered\n" : " not recovered\n");
  return recovered ? 0 : 1;
}
