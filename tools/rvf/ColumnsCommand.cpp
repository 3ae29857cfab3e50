// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ColumnsCommand.h"

#include <cmath>
#include <iostream>
#include <string>

#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSNumber.h"
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct ColumnsOptions {
  std::string file;  ///< a property list of column widths
  std::string table;
  std::string column;
  bool asJson = false;
};

Failure failureOf(const std::string& file, const NSError& error) {
  const auto problem =
      error.userInfo() ? error.userInfo()->textForKey("NSDebugDescription") : std::nullopt;
  const auto cause = error.underlyingError();
  return {
      error.code() == NSPropertyListReadCorruptError ? ExitCode::dataError : ExitCode::noInput,
      file + ": " +
          problem.value_or(cause ? cause->localizedDescription() : error.localizedDescription()),
      numberOf(error)};
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

ExitCode columnsCommand(const ColumnsOptions& options) {
  RVFColumnWidthRegistry registry;
  Ref<NSError> error;
  if (!registry.loadFromFile(NSURL::fileURLWithPath(options.file), &error))
    return report(failureOf(options.file, *error), options.asJson);
  const auto info = registry.columnWidthInfoForKey(options.column, options.table);
  if (options.asJson && !areNumbers(*info)) {
    return report({ExitCode::dataError, options.file + ": a width is infinite or no number"}, true);
  }
  if (options.asJson) {
    printJson(*info);
  } else {
    print(*info);
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addColumnsCommand(CommandLine& line) {
  const auto options = std::make_shared<ColumnsOptions>();
  CLI::App& command = line.addCommand("columns", "Print the widths and order of a table's column",
                                      [options] { return columnsCommand(*options); });
  command.add_option("FILE", options->file, "A property list of column widths")->required();
  command.add_option("TABLE", options->table, "The table's identifier")->required();
  command.add_option("COLUMN", options->column, "The column's key")->required();
  addJsonFlag(command, options->asJson);
}

}  // namespace rvf::tool
