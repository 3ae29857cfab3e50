// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ExpiryCommand.h"

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include "RVFoundation/Text/NSString-RVFExtensions.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct ExpiryOptions {
  std::string text;
  bool asJson = false;
};

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

ExitCode expiryCommand(const ExpiryOptions& options) {
  std::int32_t month = 0;
  std::int32_t year = 0;
  Ref<NSError> error;
  const bool isRead = getExpiryMonth(options.text, &month, &year, &error);
  if (!isRead) {
    printError(*error, options.asJson);
  } else if (options.asJson) {
    std::cout << jsonText({{"month", month}, {"year", year}}) << "\n";
  } else {
    std::cout << "month        " << month << "\nyear         " << year << "\n";
  }
  if (!std::cout.flush()) return ExitCode::ioError;
  return isRead ? ExitCode::ok : ExitCode::dataError;
}

}  // namespace

void addExpiryCommand(CommandLine& line) {
  const auto options = std::make_shared<ExpiryOptions>();
  CLI::App& command = line.addCommand("expiry", "Read a typed expiry date: MMYY, MM/YY or MM/YYYY",
                                      [options] { return expiryCommand(*options); });
  command.add_option("TEXT", options->text, "The date as it was typed")->required();
  addJsonFlag(command, options->asJson);
}

}  // namespace rvf::tool
