// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Platform/Values/NSError.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

/// An error's number, and who counts it: an error domain, "libcurl" or "HTTP".
struct ErrorNumber {
  std::string domain;
  std::int64_t code = 0;
};

ErrorNumber numberOf(const NSError& error);

/// Why a command could not do what it was asked for.
struct Failure {
  ExitCode exitCode = ExitCode::ok;
  std::string message;                     ///< for people, one line
  std::optional<ErrorNumber> origin = {};  ///< absent: the tool itself, counted as its exit codes
};

/// Tells the failure on standard error, and also as a JSON object on standard output if `asJson`.
/// Answers its exit code.
ExitCode report(const Failure& failure, bool asJson);

}  // namespace rvf::tool
