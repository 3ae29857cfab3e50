// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/Failure.h"

#include <iostream>

#include "tools/rvf/Finding.h"

namespace rvf::tool {

ErrorNumber numberOf(const NSError& error) {
  return {error.domain(), error.code()};
}

ExitCode report(const Failure& failure, bool asJson) {
  if (asJson) {
    const ErrorNumber number =
        failure.origin.value_or(ErrorNumber{"rvf", static_cast<int>(failure.exitCode)});
    std::cout << jsonText({{"domain", number.domain},
                           {"code", number.code},
                           {"message", failure.message}})
              << std::endl;
  }
  complain(failure.message);
  return failure.exitCode;
}

}  // namespace rvf::tool
