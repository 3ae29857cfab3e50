// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/LogCommand.h"

#include <cstdint>
#include <iostream>
#include <memory>
#include <string_view>

#include "RVFoundation/CoreServices/RVFLogger.h"
#include "tools/rvf/Finding.h"

namespace rvf::tool {
namespace {

constexpr int kLeastSevere = 7;

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (&word == &words.front() ? "" : " ") + word;
  return text;
}

ExitCode unavailable(std::string_view problem) {
  complain(problem);
  return ExitCode::unavailable;
}

ExitCode logLine(RVFLogger& logger, int level, const std::string& line) {
  if (logger.logOfLevel(level, "%@", line)) return ExitCode::ok;
  return unavailable("the system log did not take the message");
}

ExitCode logStandardInput(RVFLogger& logger, int level) {
  std::ios::sync_with_stdio(false);
  ExitCode result = ExitCode::ok;
  std::string line;
  while (result == ExitCode::ok && std::getline(std::cin, line))
    result = logLine(logger, level, line);
  if (!std::cin.bad()) return result;
  complain("standard input cannot be read");
  return ExitCode::noInput;
}

}  // namespace

const std::map<std::string, int>& logLevels() {
  static const std::map<std::string, int> kLevels = {
      {"emerg", 0}, {"panic", 0},   {"alert", 1}, {"crit", 2},   {"err", 3},
      {"error", 3}, {"warning", 4}, {"warn", 4},  {"notice", 5}, {"info", 6},
      {"debug", 7}, {"0", 0},       {"1", 1},     {"2", 2},      {"3", 3},
      {"4", 4},     {"5", 5},       {"6", 6},     {"7", 7},
  };
  return kLevels;
}

ExitCode logCommand(const LogOptions& options) {
  const auto logger = std::make_shared<RVFLogger>();
  const std::uint32_t copied = options.isCopied ? std::uint32_t{ASL_OPT_STDERR} : 0;
  logger->startLoggingUsingName(options.name, options.facility, copied);
  if (!logger->client()) return unavailable("no system log can be reached");
  logger->setTresholdLevel(kLeastSevere);
  if (options.words.empty()) return logStandardInput(*logger, options.level);
  return logLine(*logger, options.level, joined(options.words));
}

}  // namespace rvf::tool
