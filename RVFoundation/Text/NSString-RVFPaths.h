// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Text/Format.h"
#include "Platform/Text/PathText.h"

namespace rvf {

/// The path with the filled format as one more component (see `formatText`, which raises for a
/// wrong format, and `appendPathComponent`).
///
///     relativePathWithFormat("/tmp", "till-%d.txt", 7)   // "/tmp/till-7.txt"
template <class... Arguments>
std::string relativePathWithFormat(std::string_view path, std::string_view format,
                                   const Arguments&... arguments) {
  return appendPathComponent(path, stringWithFormat(format, arguments...));
}

}  // namespace rvf
