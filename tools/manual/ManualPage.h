// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/manual/CommandTable.h"

namespace rvf::tool {

/// Which edition of the page it is.
struct Edition {
  std::string version;
  std::string date;  ///< "2026-11-21"
};

/// The manual page rvf(1), in roff with the macros of man(7).
std::string manualPage(const CommandRow& tool, const Edition& edition);

}  // namespace rvf::tool
