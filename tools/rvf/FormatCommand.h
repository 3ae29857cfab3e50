// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct FormatOptions {
  std::string kind;
  std::string value;
  std::optional<std::string> locale;  ///< absent: the environment's
  bool isReading = false;             ///< from text to value
};

/// The kinds of values: "money", "currency", …
const std::vector<std::string>& formatKinds();

/// "rvf format": prints nothing but the text of the value, or the value that the text is.
ExitCode formatCommand(const FormatOptions& options);

}  // namespace rvf::tool
