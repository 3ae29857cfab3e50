// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/LogCommand.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "RVFoundation/CoreServices/RVFLogger.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct LogOptions {
  std::vector<std::string> words;  ///< none: the lines of standard input
  std::string level = "notice";
  std::string name;  ///< empty: the process's
  std::string facility = "user";
  bool isCopied = false;  ///< to standard error
};

/// As logger(1) names them: a level's number is its place.
const std::vector<std::string>& levelNames() {
  static const std::vector<std::string> kNames = {"emerg",   "alert",  "crit", "err",
                                                  "warning", "notice", "info", "debug"};
  return kNames;
}

/// Numbers, and older names.
const std::map<std::string, int>& otherLevelNames() {
  static const std::map<std::string, int> kLevels = {
      {"panic", 0}, {"error", 3}, {"warn", 4}, {"0", 0}, {"1", 1}, {"2", 2},
      {"3", 3},     {"4", 4},     {"5", 5},    {"6", 6}, {"7", 7},
  };
  return kLevels;
}

constexpr int kLeastSevere = 7;

CLI::Validator isLevel() {
  std::vector<std::string> others;
  for (const auto& [name, level] : otherLevelNames())
    others.push_back(name);
  return isOneOf(levelNames(), others);
}

int levelNamed(const std::string& name) {
  const auto found = std::ranges::find(levelNames(), name);
  return found == levelNames().end() ? otherLevelNames().at(name)
                                     : static_cast<int>(found - levelNames().begin());
}

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

ExitCode logCommand(const LogOptions& options) {
  const auto logger = std::make_shared<RVFLogger>();
  const std::uint32_t copied = options.isCopied ? std::uint32_t{ASL_OPT_STDERR} : 0;
  logger->startLoggingUsingName(options.name, options.facility, copied);
  if (!logger->client()) return unavailable("no system log can be reached");
  logger->setTresholdLevel(kLeastSevere);
  const int level = levelNamed(options.level);
  if (options.words.empty()) return logStandardInput(*logger, level);
  return logLine(*logger, level, joined(options.words));
}

}  // namespace

void addLogCommand(CommandLine& line) {
  const auto options = std::make_shared<LogOptions>();
  CLI::App& command =
      line.addCommand("log", "Write to the system log", [options] { return logCommand(*options); });
  command.add_option("TEXT", options->words,
                     "One line, words joined by blanks; default: the lines of standard input");
  command
      .add_option("-l,--level", options->level,
                  "How severe it is, also as a number from 0, emerg, to 7, debug")
      ->check(isLevel())
      ->type_name("LEVEL")
      ->capture_default_str();
  command.add_option("-t,--name", options->name, "The sender; default: rvf")->type_name("NAME");
  command.add_option("-f,--facility", options->facility, "For example local0")
      ->type_name("FACILITY")
      ->capture_default_str();
  command.add_flag("-s,--stderr", options->isCopied,
                   "Also to standard error, which then suffices if no log is reachable");
}

}  // namespace rvf::tool
