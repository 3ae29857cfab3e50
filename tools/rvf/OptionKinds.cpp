// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/OptionKinds.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace rvf::tool {
namespace {

/// Refuses what no timer can wait for: text, less than nothing, infinity, no number.
std::string durationProblem(std::string& text) {
  char* end = nullptr;
  const double seconds = std::strtod(text.c_str(), &end);
  const bool isRead = end != text.c_str() && *end == '\0';
  if (isRead && std::isfinite(seconds) && seconds >= 0) return {};
  return "\"" + text + "\" is no number of seconds";
}

/// The same for what must not be over at once.
std::string timeoutProblem(std::string& text) {
  std::string problem = durationProblem(text);
  if (problem.empty() && std::strtod(text.c_str(), nullptr) == 0) {
    problem = "the time must be longer than 0 seconds";
  }
  return problem;
}

bool contains(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

void addJsonFlag(CLI::App& command, bool& isJson, const std::string& description) {
  command.add_flag("--json", isJson, description);
}

void addEndOption(CLI::App& command, std::optional<double>& seconds) {
  command.add_option("--for", seconds, "Stop after this many seconds; default: when interrupted")
      ->check(CLI::Validator(&durationProblem, ""))
      ->type_name("SECONDS");
}

void addTimeoutOption(CLI::App& command, double& seconds, const std::string& description) {
  command.add_option("--timeout", seconds, description)
      ->check(CLI::Validator(&timeoutProblem, ""))
      ->type_name("SECONDS")
      ->capture_default_str();
}

void addLocaleOption(CLI::App& command, std::optional<std::string>& locale) {
  command.add_option("--locale", locale, "For example de_DE; default: the environment's")
      ->type_name("LOCALE");
}

CLI::Validator isOneOf(const std::vector<std::string>& words,
                       const std::vector<std::string>& others) {
  const std::string shown = "{" + CLI::detail::join(words, ",") + "}";
  return {[words, others, shown](std::string& word) -> std::string {
            if (contains(words, word) || contains(others, word)) return {};
            return "\"" + word + "\" is not one of " + shown;
          },
          shown, kChoiceValidator};
}

}  // namespace rvf::tool
