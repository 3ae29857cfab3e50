// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct ColumnsOptions {
  std::string file;  ///< a property list of column widths
  std::string table;
  std::string column;
  bool asJson = false;
};

/// "rvf columns": prints the widths, growing and order of a table's column.
ExitCode columnsCommand(const ColumnsOptions& options);

}  // namespace rvf::tool
