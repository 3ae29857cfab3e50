// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// Every command of the tool with its options. The parser, the help, the manual page and the
/// completions of the shells are all made from `app()`, so there is one place where an option is
/// told.
///
/// What the generators read from it besides names and descriptions: an option's type name, or an
/// argument's name, says what its value is ("FILE" and "FOLDER" are completed as such); the words
/// of a fixed choice are in the validator that `isOneOf` made; a command's footer is its prose.
class CommandLine final {
 public:
  using Action = std::function<ExitCode()>;

  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  CLI::App& app() noexcept { return app_; }
  /// Adds a command, which does `action` once its options are read. It belongs to `app()`, or to
  /// the command `parent`.
  CLI::App& addCommand(const std::string& name, const std::string& description, Action action);
  CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& description,
                       Action action);
  /// Does what the arguments say. What is wrong with them is told on standard error.
  ExitCode run(int argc, const char* const* argv);

 private:
  CLI::App app_;
  ExitCode result_ = ExitCode::ok;
};

}  // namespace rvf::tool
