// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Text/Format.h"

namespace rvf {

/// Writes one line to standard error, in one piece, so that lines of several threads do not mix.
RVF_EXPORT void logLine(std::string_view line);

/// The platform log, for remarks to people who debug: fills the format as `stringWithFormat` does,
/// and raises as it does, then writes the result as one line to standard error.
template <class... Arguments>
void NSLog(std::string_view format, const Arguments&... arguments) {
  logLine(stringWithFormat(format, arguments...));
}

}  // namespace rvf
