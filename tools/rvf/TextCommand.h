// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct TextOptions {
  std::string operation;
  std::string text;
  std::vector<std::string> values;    ///< "key=value", for "fill"
  std::optional<std::string> locale;  ///< absent: the environment's
};

/// The operations: "escape-xml", "words", …
const std::vector<std::string>& textOperations();

/// "rvf text": prints what the operation makes of the text, words one a line.
ExitCode textCommand(const TextOptions& options);

}  // namespace rvf::tool
