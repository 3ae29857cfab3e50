// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace rvf::tool {

/// What may be written for an argument, or behind an option.
struct ValueRow {
  std::string name;                  ///< a placeholder such as "SECONDS"
  std::vector<std::string> choices;  ///< empty: anything

  bool isFile() const { return name == "FILE"; }
  bool isFolder() const { return name == "FOLDER"; }
};

struct OptionRow {
  std::vector<std::string> names;  ///< "-l", "--level"
  std::string description;
  std::string defaultText;  ///< empty: none
  bool hasValue = false;
  bool isRepeatable = false;
  ValueRow value;
};

struct ArgumentRow {
  std::string description;
  bool isRequired = false;
  bool isRepeatable = false;
  ValueRow value;
};

/// A command, as its users see it.
struct CommandRow {
  std::string path;  ///< "rvf servers add"
  std::string name;  ///< "add"
  std::string description;
  std::string prose;  ///< more about it; may be empty
  std::vector<OptionRow> options;
  std::vector<ArgumentRow> arguments;
  std::vector<CommandRow> subcommands;
};

/// Reads what an `App` parses. The option that prints the help comes first.
CommandRow commandTable(CLI::App& app, const std::string& path);

}  // namespace rvf::tool
