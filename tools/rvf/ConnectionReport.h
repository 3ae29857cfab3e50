// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tools/rvf/AnswerReader.h"
#include "tools/rvf/Finding.h"

namespace rvf::tool {

/// What "rvf connect" tells about one answer.
struct ConnectionReport {
  const Finding& finding;
  std::string url;
  const AnswerReader& answer;
  double seconds;
};

/// Writes the report to standard output, as aligned lines or as one JSON object.
void print(const ConnectionReport& report, bool asJson);

}  // namespace rvf::tool
