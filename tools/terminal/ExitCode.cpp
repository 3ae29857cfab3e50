// SPDX-License-Identifier: Apache-2.0
#include "tools/terminal/ExitCode.h"

std::string exitCodeText() {
  std::string text = "Exit codes:";
  for (const ExitCodeMeaning& row : kExitCodes) {
    const std::string number = std::to_string(static_cast<int>(row.code));
    text += "\n  " + std::string(2 - number.size(), ' ') + number + "  " + row.meaning;
  }
  return text;
}
