// SPDX-License-Identifier: Apache-2.0
//
// The command-line tool: the library's operations for people and scripts.

#include <curl/curl.h>

#include <csignal>
#include <cstdio>
#include <exception>

#include "tools/rvf/CommandLine.h"

int main(int argc, char** argv) {
  ExitCode result = ExitCode::software;
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write, exit code 74
  curl_global_init(CURL_GLOBAL_DEFAULT);
  try {
    result = rvf::tool::CommandLine().run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "rvf: %s\n", error.what());
  }
  curl_global_cleanup();
  return static_cast<int>(result);
}
