// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ExpiryCommand.h"

#include <cstdint>
#include <iostream>

#include "RVFoundation/Text/NSString-RVFExtensions.h"
#include "tools/rvf/Finding.h"

namespace rvf::tool {
namespace {

void printError(const NSError& error, bool asJson) {
  const std::string suggestion = error.localizedRecoverySuggestion().value_or("");
  if (asJson) {
    std::cout << jsonText({{"domain", error.domain()},
                           {"code", error.code()},
                           {"message", error.localizedDescription()},
                           {"suggestion", suggestion}})
              << "\n";
  } else {
    std::cerr << error.localizedDescription() << "\n" << suggestion << "\n";
  }
}

}  // namespace

ExitCode expiryCommand(const std::string& text, bool asJson) {
  std::int32_t month = 0;
  std::int32_t year = 0;
  Ref<NSError> error;
  const bool isRead = getExpiryMonth(text, &month, &year, &error);
  if (!isRead) {
    printError(*error, asJson);
  } else if (asJson) {
    std::cout << jsonText({{"month", month}, {"year", year}}) << "\n";
  } else {
    std::cout << "month        " << month << "\nyear         " << year << "\n";
  }
  if (!std::cout.flush()) return ExitCode::ioError;
  return isRead ? ExitCode::ok : ExitCode::dataError;
}

}  // namespace rvf::tool
