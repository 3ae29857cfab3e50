// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ColumnsCommand.h"

#include <cmath>
#include <iostream>

#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSNumber.h"
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"
#include "tools/rvf/Finding.h"

namespace rvf::tool {
namespace {

ExitCode fail(const std::string& file, const NSError& error) {
  const auto problem =
      error.userInfo() ? error.userInfo()->textForKey("NSDebugDescription") : std::nullopt;
  const auto cause = error.underlyingError();
  complain(file + ": " +
           problem.value_or(cause ? cause->localizedDescription() : error.localizedDescription()));
  return error.code() == NSPropertyListReadCorruptError ? ExitCode::dataError : ExitCode::noInput;
}

void print(const RVFColumnWidthInfo& info) {
  std::cout << "default width   " << box(info.defaultWidth())->stringValue() << "\n"
            << "minimum width   " << box(info.minimumWidth())->stringValue() << "\n"
            << "auto-resize     " << (info.autoresize() ? "yes" : "no") << "\n"
            << "list order      " << info.listOrder() << "\n";
}

/// JSON has no number for the others.
bool areNumbers(const RVFColumnWidthInfo& info) {
  return std::isfinite(info.defaultWidth()) && std::isfinite(info.minimumWidth());
}

void printJson(const RVFColumnWidthInfo& info) {
  std::cout << jsonText({{"defaultWidth", info.defaultWidth()},
                         {"minimumWidth", info.minimumWidth()},
                         {"autoresize", info.autoresize()},
                         {"listOrder", info.listOrder()}})
            << "\n";
}

}  // namespace

ExitCode columnsCommand(const ColumnsOptions& options) {
  RVFColumnWidthRegistry registry;
  Ref<NSError> error;
  if (!registry.loadFromFile(NSURL::fileURLWithPath(options.file), &error))
    return fail(options.file, *error);
  const auto info = registry.columnWidthInfoForKey(options.column, options.table);
  if (options.asJson && !areNumbers(*info)) {
    complain(options.file + ": a width is infinite or no number");
    return ExitCode::dataError;
  }
  if (options.asJson) {
    printJson(*info);
  } else {
    print(*info);
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace rvf::tool
