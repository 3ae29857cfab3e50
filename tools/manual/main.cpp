// SPDX-License-Identifier: Apache-2.0
//
// Writes what is told about the tool from what the tool itself reads: the manual page, and the
// completions of bash and zsh.
//
// usage: rvf-manual VERSION DATE PAGE BASH_COMPLETION ZSH_COMPLETION

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "tools/manual/BashCompletion.h"
#include "tools/manual/ManualPage.h"
#include "tools/manual/ZshCompletion.h"
#include "tools/rvf/CommandLine.h"

namespace {

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  if (!(file << text).flush()) throw std::runtime_error(path + " cannot be written");
}

void writeAll(const char* const* arguments) {
  rvf::tool::CommandLine line;
  const auto tool = rvf::tool::commandTable(line.app(), "rvf");
  write(arguments[3], rvf::tool::manualPage(tool, {arguments[1], arguments[2]}));
  write(arguments[4], rvf::tool::bashCompletion(tool));
  write(arguments[5], rvf::tool::zshCompletion(tool));
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kArgumentCount = 6;
  try {
    if (argc != kArgumentCount) throw std::runtime_error("five arguments are needed");
    writeAll(argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "rvf-manual: %s\n", error.what());
    return 1;
  }
  return 0;
}
