// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct PeriodOptions {
  std::string period;
  std::optional<long> delta;        ///< years, for "first-day-of-year-with-delta"; default: 0
  std::optional<std::string> date;  ///< "2024-03-12", with a time and its distance; default: now
  std::optional<std::string> zone;  ///< default: the device's
  std::optional<std::string> calendar;  ///< an identifier; default: the user's
  bool asJson = false;
};

/// The boundary days that there are: "first-day-of-week"…
const std::vector<std::string>& periodNames();

/// "rvf period": prints the boundary day of a period around a date, with its time of day.
ExitCode periodCommand(const PeriodOptions& options);

}  // namespace rvf::tool
