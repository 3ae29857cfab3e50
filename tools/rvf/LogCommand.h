// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct LogOptions {
  std::vector<std::string> words;  ///< none: the lines of standard input
  int level = 5;
  std::string name;  ///< empty: the process's
  std::string facility = "user";
  bool isCopied = false;  ///< to standard error
};

/// Names and numbers of levels, as logger(1) takes them.
const std::map<std::string, int>& logLevels();

/// "rvf log": writes one message, or each line of standard input as it comes.
ExitCode logCommand(const LogOptions& options);

}  // namespace rvf::tool
