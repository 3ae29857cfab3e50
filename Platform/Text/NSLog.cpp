// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NSLog.h"

#include <cstdio>
#include <string>

namespace rvf {

void logLine(std::string_view line) {
  const std::string whole = std::string(line) + '\n';
  std::fwrite(whole.data(), 1, whole.size(), stderr);
}

}  // namespace rvf
