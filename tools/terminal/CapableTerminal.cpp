// SPDX-License-Identifier: Apache-2.0
#include "tools/terminal/CapableTerminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

bool isCapableTerminal(int descriptor) {
  const char* kind = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nothing sets it here
  if (!kind || std::string_view(kind).empty() || std::string_view(kind) == "dumb") return false;
  return isatty(descriptor) == 1;
}
