// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace rvf::tool {

/// Options that several commands have.
void addJsonFlag(CLI::App& command, bool& isJson,
                 const std::string& description = "Print a JSON object");
/// "--for SECONDS": when a command ends by itself.
void addEndOption(CLI::App& command, std::optional<double>& seconds);
/// "--timeout SECONDS", more than none.
void addTimeoutOption(CLI::App& command, double& seconds, const std::string& description);
void addLocaleOption(CLI::App& command, std::optional<std::string>& locale);

/// The name of the validator that holds the words of a fixed choice.
inline constexpr const char* kChoiceValidator = "choice";
/// Takes one of `words`, which help and completions show, or of `others`, which they do not.
CLI::Validator isOneOf(const std::vector<std::string>& words,
                       const std::vector<std::string>& others = {});
/// The names of a table's rows, in their order.
template <class Rows>
std::vector<std::string> namesOf(const Rows& rows) {
  std::vector<std::string> names;
  for (const auto& row : rows)
    names.emplace_back(row.name);
  return names;
}

}  // namespace rvf::tool
